#pragma once

#include <QRect>
#include <QTransform>
#include <QtGlobal>

class QColor;
class QPainter;

/*!
    Has a painter paint in device pixels for as long as it lives. Nothing comes out blurred or
    uneven then, also where the device pixel ratio is no whole number.

    Create one beside the painter, and paint what rect() and length() return. A painter that is
    rotated or sheared has no edges to snap to: it stays as it is, and a device pixel is then one of
    its own units.
*/
class DevicePixels
{
public:
    //! Takes \a painter over, which must outlive this object.
    explicit DevicePixels(QPainter *painter);
    //! Gives the painter its transformation back.
    ~DevicePixels();
    Q_DISABLE_COPY_MOVE(DevicePixels)

    /*!
        \a rect, in the painter's former coordinates, in device pixels: each edge is the nearest
        one. Rectangles that touch still touch, and a widget's own is what Qt clips it to.
    */
    QRect rect(const QRect &rect) const;

    //! How many device pixels are nearest to \a pixels of the painter's former ones; at least 1.
    int length(int pixels) const;

    /*!
        Fills lines of \a width device pixels along \a edges inside \a outer, which is in device
        pixels as well.
    */
    void fillFrame(const QRect &outer, int width, const QColor &color,
                   Qt::Edges edges = Qt::LeftEdge | Qt::TopEdge | Qt::RightEdge
                                     | Qt::BottomEdge) const;

private:
    QPainter *m_painter;
    QTransform m_formerTransform;
    QTransform m_toDevice;
};
