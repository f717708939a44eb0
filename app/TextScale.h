#pragma once

#include <QSize>
#include <QVector>

/*!
    Has Qt scale the whole program by the text scale that the user has chosen for the desktop: the X
    resource Xft.dpi, of which 96 means a scale of 1.

    Create one before the application object, and call keepFromChildren() once that exists. In
    between, QT_SCALE_FACTOR (for a scale other than 1) and QT_FONT_DPI (where it isn't set) tell Qt
    the scale. Neither is set where the environment already has Qt scale or names a scale:
    QT_SCALE_FACTOR, QT_SCREEN_SCALE_FACTORS or QT_DEVICE_PIXEL_RATIO with a number above 0, the
    last one also with "auto", QT_AUTO_SCREEN_SCALE_FACTOR with a whole number above 0, and
    QT_ENABLE_HIGHDPI_SCALING with any whole number, 0 included.

    A resource below 110 counts as 96. So does the resolution that the X server computes by itself
    from the size of the monitor, which Qt would take for the user's choice. The scale is fixed from
    then on: a later change of the resource shows at the next start.
*/
class TextScale
{
public:
    /*!
        Asks the X server that Qt will use, which \a argv (\a argc arguments, the program's own name
        first) names with -display and DISPLAY otherwise, and sets the variables. A scale at which a
       window of \a windowSize (in pixels at a scale of 1) would not fit into the primary monitor's
       work area is reduced, see forWindow(). Without a server there is no scaling.
    */
    TextScale(const QSize &windowSize, int argc, char **argv);

    //! Removes from the environment what the constructor has set.
    void keepFromChildren();

    /*!
        The scale for a desktop with the text resolution \a dpi (dots per inch, 0 where the user has
        chosen none): \a dpi / 96, or 1 below 110. Where a window of \a windowSize would then exceed
        \a workArea (device pixels; empty means unlimited), the largest multiple of a quarter that
        fits, but at least 1.
    */
    static qreal forWindow(qreal dpi, const QSize &windowSize, const QSize &workArea);

private:
    void set(const char *variable, const QByteArray &value);

    QVector<const char *> m_variables;
};
