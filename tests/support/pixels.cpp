#include "tests/support/pixels.h"

#include "tests/support/contrast.h"

#include <QGuiApplication>
#include <QHash>
#include <QScreen>
#include <QStringList>
#include <QTest>

#include <algorithm>

namespace {

//! Contrast with the main colour from which a pixel counts as a part of the text.
constexpr double InkContrast = 2;

constexpr int ListedColors = 8;

QHash<QRgb, int> countColors(const QImage &image)
{
    QHash<QRgb, int> result;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x)
            ++result[image.pixel(x, y)];
    }
    return result;
}

QString nameOf(QRgb color)
{
    return QColor(color).name();
}

} // namespace

QImage screenshot(const QRect &part)
{
    QImage image = QGuiApplication::primaryScreen()->grabWindow(0).toImage().convertToFormat(
            QImage::Format_RGB32);
    image.setDevicePixelRatio(1);
    return part.isNull() ? image : image.copy(part);
}

QRgb mainColor(const QImage &image)
{
    const QHash<QRgb, int> counts = countColors(image);
    return std::max_element(counts.cbegin(), counts.cend()).key();
}

QRect ink(const QImage &image)
{
    const QRgb background = mainColor(image);
    const auto isInk = [background](QRgb color) {
        return contrast(color, background) > InkContrast;
    };
    return pixelsThat(image, isInk).boundingRect();
}

double greatestContrast(const QImage &image)
{
    const QRgb background = mainColor(image);
    const QList<QRgb> colors = countColors(image).keys();
    double result = 1;
    for (const QRgb color : colors)
        result = std::max(result, contrast(color, background));
    return result;
}

QVector<QRgb> column(const QImage &image, int x)
{
    QVector<QRgb> result;
    for (int y = 0; y < image.height(); ++y)
        result.append(image.pixel(x, y));
    return result;
}

QVector<QRgb> line(const QImage &image, int y)
{
    QVector<QRgb> result;
    for (int x = 0; x < image.width(); ++x)
        result.append(image.pixel(x, y));
    return result;
}

QVector<QRgb> reversed(QVector<QRgb> pixels)
{
    std::reverse(pixels.begin(), pixels.end());
    return pixels;
}

int leadingPixels(const QVector<QRgb> &pixels, QRgb color)
{
    const auto end = std::find_if(pixels.begin(), pixels.end(),
                                  [color](QRgb pixel) { return pixel != color; });
    return static_cast<int>(end - pixels.begin());
}

int countPixels(const QImage &image, QRgb color)
{
    return countPixels(image, [color](QRgb pixel) { return pixel == color; });
}

QRegion differingPixels(const QImage &one, const QImage &other, double leastContrast)
{
    QRegion result;
    for (int y = 0; y < one.height(); ++y) {
        for (int x = 0; x < one.width(); ++x) {
            const QRgb first = one.pixel(x, y);
            const QRgb second = other.pixel(x, y);
            if (first != second && contrast(first, second) >= leastContrast)
                result += QRect(x, y, 1, 1);
        }
    }
    return result;
}

QString colorsOf(const QImage &image)
{
    const QHash<QRgb, int> counts = countColors(image);
    QList<QRgb> colors = counts.keys();
    std::sort(colors.begin(), colors.end(),
              [&counts](QRgb one, QRgb other) { return counts[one] > counts[other]; });
    QStringList result;
    const QList<QRgb> listed = colors.mid(0, ListedColors);
    for (const QRgb color : listed)
        result.append(QStringLiteral("%1 (%2)").arg(nameOf(color)).arg(counts[color]));
    if (colors.size() > ListedColors)
        result.append(QStringLiteral("and %1 others").arg(colors.size() - ListedColors));
    return result.join(QStringLiteral(", "));
}

QString waitForColors(const std::function<QRect()> &part, const QVector<QRgb> &colors,
                      int timeoutMs)
{
    QImage shown;
    QStringList missing;
    const auto areShown = [&] {
        shown = screenshot(part());
        missing.clear();
        for (const QRgb color : colors) {
            if (countPixels(shown, color) == 0)
                missing.append(nameOf(color));
        }
        return missing.isEmpty();
    };
    if (QTest::qWaitFor(areShown, timeoutMs))
        return {};
    return QStringLiteral("no %1, but %2")
            .arg(missing.join(QStringLiteral(" and ")), colorsOf(shown));
}

QPixmap filledPixmap(const QColor &color, int side)
{
    QPixmap pixmap(side, side);
    pixmap.fill(color);
    return pixmap;
}

QPixmap checkeredPixmap(const QSize &size)
{
    QImage image(size, QImage::Format_ARGB32_Premultiplied);
    for (int y = 0; y < size.height(); ++y) {
        for (int x = 0; x < size.width(); ++x)
            image.setPixel(x, y, (x + y) % 2 == 0 ? qRgb(255, 255, 0) : qRgb(0, 0, 128));
    }
    // One corner differs from the others.
    image.setPixel(0, 0, qRgb(255, 0, 0));
    return QPixmap::fromImage(image);
}
