#pragma once

#include <QColor>

#include <algorithm>
#include <cmath>

/*!
    The contrast ratio of two colours as WCAG 2.1 defines it: from 1 for the same lightness to 21
    for black and white. 4.5 is asked of text, 3 of large text and of what else must be told apart.
*/
inline double contrast(QRgb one, QRgb other)
{
    const auto linear = [](int channel) {
        const double value = channel / 255.0;
        return value <= 0.04045 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
    };
    const auto luminance = [&](QRgb color) {
        return 0.2126 * linear(qRed(color)) + 0.7152 * linear(qGreen(color))
               + 0.0722 * linear(qBlue(color));
    };
    const double first = luminance(one);
    const double second = luminance(other);
    return (std::max(first, second) + 0.05) / (std::min(first, second) + 0.05);
}
