#pragma once

#include <QMenu>
#include <QMouseEvent>
#include <QWidget>

/*!
    Opens \a menu at the bottom left corner of \a button, on which \a press has happened. The place
   is that of the press, so it holds even if the button has moved since.
*/
inline void popUpBelow(const QWidget &button, QMenu &menu, const QMouseEvent &press)
{
    menu.popup(press.screenPos().toPoint() - press.localPos().toPoint()
               + QPoint(0, button.height()));
}
