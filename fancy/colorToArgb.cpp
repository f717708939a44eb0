#include "fancy/colorToArgb.h"

#include <QColor>

namespace {
QString twoDigits(int channel)
{
    return QStringLiteral("%1").arg(channel, 2, 16, QLatin1Char('0'));
}
} // namespace

QString colorToArgb(const QColor &color)
{
    return QStringLiteral("%1%2%3%4")
            .arg(twoDigits(color.alpha()), twoDigits(color.red()), twoDigits(color.green()),
                 twoDigits(color.blue()));
}
