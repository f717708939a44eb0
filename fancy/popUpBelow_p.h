#pragma once

#include <QMenu>
#include <QMouseEvent>
#include <QWidget>

/*!
    Opens \a menu at the bottom left corner of \a button, where that was at \a press: it may have
    moved since.
*/
inline void popUpBelow(const QWidget &button, QMenu &menu, const QMouseEvent &press)
{
    menu.popup(press.screenPos().toPoint() - press.localPos().toPoint()
               + QPoint(0, button.height()));
}
