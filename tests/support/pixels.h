#pragma once

#include <QColor>
#include <QImage>
#include <QPixmap>
#include <QRect>
#include <QRegion>
#include <QString>
#include <QVector>

#include <functional>

// What tests ask of the screen and of images. All sizes are in the image's own pixels, whatever its
// device pixel ratio.

//! What the X server shows on the primary screen, or in \a part of it.
QImage screenshot(const QRect &part = {});

//! The colour that most pixels of \a image have.
QRgb mainColor(const QImage &image);
//! The smallest rectangle around all that stands out from the main colour of \a image: its text.
QRect ink(const QImage &image);
//! The greatest contrast of a pixel of \a image with its main colour.
double greatestContrast(const QImage &image);

QVector<QRgb> column(const QImage &image, int x);
QVector<QRgb> line(const QImage &image, int y);
QVector<QRgb> reversed(QVector<QRgb> pixels);
//! How many of \a pixels, from the first on, have \a color.
int leadingPixels(const QVector<QRgb> &pixels, QRgb color);

//! The pixels whose colour \a matches.
template<typename Predicate>
QRegion pixelsThat(const QImage &image, Predicate matches)
{
    QRegion result;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (matches(image.pixel(x, y)))
                result += QRect(x, y, 1, 1);
        }
    }
    return result;
}

//! How many pixels have a colour that \a matches.
template<typename Predicate>
int countPixels(const QImage &image, Predicate matches)
{
    int result = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x)
            result += matches(image.pixel(x, y)) ? 1 : 0;
    }
    return result;
}

int countPixels(const QImage &image, QRgb color);

/*!
    The pixels in which \a one and \a other, of the same size, differ: in their colour, or where
    \a leastContrast is given, by that contrast at least.
*/
QRegion differingPixels(const QImage &one, const QImage &other, double leastContrast = 0);

//! The most frequent colours of \a image with their numbers of pixels, for a test's message.
QString colorsOf(const QImage &image);

/*!
    Waits until the screen shows each of \a colors somewhere in \a part, which is asked for each
    time anew. Returns an empty string then; else, after \a timeoutMs milliseconds, which colours
    are missing and which were found.
*/
QString waitForColors(const std::function<QRect()> &part, const QVector<QRgb> &colors,
                      int timeoutMs = 5000);

//! A square of one colour.
QPixmap filledPixmap(const QColor &color, int side);
//! Neighbouring pixels differ as much as can be, so any scaling or shift shows.
QPixmap checkeredPixmap(const QSize &size);
