#pragma once

#include <QCoreApplication>
#include <QHash>
#include <QPaintEvent>
#include <QRegion>

#include <numeric>

//! Notes what of which widgets of this program is painted while it lives.
class PaintCounter : public QObject
{
public:
    PaintCounter() { QCoreApplication::instance()->installEventFilter(this); }

    //! The paint events of each widget.
    QHash<const QObject *, int> paints;
    int total() const { return std::accumulate(paints.begin(), paints.end(), 0); }
    //! What of each widget was to be painted.
    QHash<const QObject *, QRegion> regions;

protected:
    bool eventFilter(QObject *watched, QEvent *event) override
    {
        if (event->type() == QEvent::Paint) {
            ++paints[watched];
            regions[watched] += static_cast<QPaintEvent *>(event)->region();
        }
        return false;
    }
};
