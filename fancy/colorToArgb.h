#pragma once

#include <QString>

class QColor;

/*!
    Returns \a color as the eight lower-case hexadecimal digits AARRGGBB, without a leading "#": the
    form in which a style sheet takes a colour with its alpha. Opaque white gives "ffffffff". An
    invalid colour gives what QColor reports for it, opaque black.
*/
QString colorToArgb(const QColor &color);
