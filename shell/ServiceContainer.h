#pragma once

#include <QWidget>

/*!
    The panel's one window, of 800 × 600 pixels. It holds the run-status page.
*/
class ServiceContainer : public QWidget
{
    Q_OBJECT

public:
    //! Builds the window and its page. \a parent is the owner, as for any widget.
    explicit ServiceContainer(QWidget *parent = nullptr);
};
