#pragma once

#include <QPoint>
#include <QRect>
#include <QSize>
#include <QVector>

/*!
    Where a window of \a size comes up, for which \a screen counts as the one that holds it;
    \a monitors are all there are, the primary one first. All in pixels.

    That is the middle of \a screen as if its top-left corner were (0, 0), wherever it really lies,
    for as long as the window is whole on one monitor there. Else it is the middle of the first
    monitor that is large enough. A window that is too large for all keeps the first place.
*/
QPoint windowPlace(const QSize &size, const QRect &screen, const QVector<QRect> &monitors);
