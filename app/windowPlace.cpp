#include "app/windowPlace.h"

#include <algorithm>

QPoint windowPlace(const QSize &size, const QRect &screen, const QVector<QRect> &monitors)
{
    const auto centred = [&size](const QSize &area) {
        return QPoint((area.width() - size.width()) / 2, (area.height() - size.height()) / 2);
    };
    const QRect window(centred(screen.size()), size);
    const bool isWhole =
            std::any_of(monitors.begin(), monitors.end(),
                        [&window](const QRect &monitor) { return monitor.contains(window); });
    const auto fitting =
            std::find_if(monitors.begin(), monitors.end(), [&size](const QRect &monitor) {
                return monitor.width() >= size.width() && monitor.height() >= size.height();
            });
    if (isWhole || fitting == monitors.end())
        return window.topLeft();
    return fitting->topLeft() + centred(fitting->size());
}
