#pragma once

#include <QList>
#include <QRect>

/*!
    A snapshot of the geometry of the screens, for windows that move and resize themselves; the
    panel doesn't use it.

    A plain value: it holds what was so when it was constructed and doesn't follow changes. Without
    an application object it holds no screen. All lengths are in device-independent pixels.
*/
class FancyScreen
{
public:
    /*!
        Records every screen in the order in which the application reports them, each with the
        geometry of the virtual desktop that it belongs to, not with its own.
    */
    FancyScreen();

    /*!
        Returns the index of the first screen whose right edge plus one pixel is not left of \a x:
        the screens are assumed to lie from left to right in their order. Returns 0 where no screen
        matches and where there is none.
    */
    int currentScreen(int x) const;

    /*!
        Returns the rectangle of the screen \a index, or of the first screen where \a index is
        negative or beyond the last. Returns a null rectangle where there is no screen.
    */
    QRect screenRect(int index) const;

    /*!
        Returns a sensible rectangle for a window that is restored and has none of its own: two
        thirds of the primary screen's virtual desktop in each direction, 100 pixels from its left
        and top. Returns a null rectangle without a QApplication or a primary screen.
    */
    static QRect normalRect();

private:
    QList<QRect> m_screenRects;
};
