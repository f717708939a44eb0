#pragma once

#include <QEvent>
#include <QObject>

//! Counts the paint events of the widgets that it is installed on as an event filter.
class PaintCounter : public QObject
{
public:
    int paints = 0;

    bool eventFilter(QObject *watched, QEvent *event) override
    {
        paints += watched->isWidgetType() && event->type() == QEvent::Paint;
        return false;
    }
};
