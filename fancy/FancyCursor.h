#pragma once

class QPoint;
class QRect;

/*!
    Tells on which resize edges and corners of a window a mouse position lies.

    For windows that resize themselves; the panel doesn't. A plain value: ask with recalculate(),
    then read the flags. Several can be set at once; a corner is set together with both of its
    edges. The class changes no cursor and keeps no window.
*/
class FancyCursor
{
public:
    //! No flag is set and the bands are 8 pixels wide.
    FancyCursor();

    //! Clears all flags. The border width is kept.
    void reset();

    /*!
        Sets all flags for the position \a pos and the window rectangle \a rect, both in the same
        coordinates, in pixels. The band along an edge takes in both of its ends, so it is one pixel
        deeper than m_nBorderWidth, and at the right and at the bottom it reaches one pixel beyond
        \a rect.
    */
    void recalculate(const QPoint &pos, const QRect &rect);

    bool m_bOnEdges : 1;
    bool m_bOnLeftEdge : 1;
    bool m_bOnRightEdge : 1;
    bool m_bOnTopEdge : 1;
    bool m_bOnBottomEdge : 1;
    bool m_bOnTopLeftEdge : 1;
    bool m_bOnBottomLeftEdge : 1;
    bool m_bOnTopRightEdge : 1;
    bool m_bOnBottomRightEdge : 1;
    //! In pixels. Five bits, so that no band can be wider than 15.
    signed int m_nBorderWidth : 5;
};
