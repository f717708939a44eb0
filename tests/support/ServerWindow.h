#pragma once

#include <QRect>
#include <QString>

//! A window as the X server has it, which may lag behind what its program believes.
struct ServerWindow
{
    //! Where it is on the screen, without a frame around it. Null where there is no such window.
    QRect geometry;
    bool isViewable = false;
    //! Whether its parent is the root window: no window manager has framed it.
    bool isBelowRoot = false;
};

//! Asks the server of \a display, by default this process's own, for window \a id.
ServerWindow serverWindow(qulonglong id, const QString &display = {});
