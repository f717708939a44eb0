#include "fancy/DevicePixels.h"

#include <QImage>
#include <QPainter>
#include <QTest>

namespace {

constexpr QSize LogicalSize(40, 30);
constexpr QRgb Background = qRgb(255, 255, 255);
constexpr QRgb Foreground = qRgb(0, 120, 212);

//! An image of LogicalSize at a device pixel \a ratio, in one colour.
QImage canvas(qreal ratio)
{
    QImage image(LogicalSize * ratio, QImage::Format_RGB32);
    image.setDevicePixelRatio(ratio);
    image.fill(Background);
    return image;
}

} // namespace

class tst_DevicePixels : public QObject
{
    Q_OBJECT

private slots:
    void roundsEdges_data();
    void roundsEdges();
    void roundsLengths_data();
    void roundsLengths();
    void goesByThePaintersOwnTransformation();
    void fillsFrames_data();
    void fillsFrames();
    void paintsWholePixels();
    void givesTheTransformationBack();
    void leavesARotatedPainterAlone();
};

void tst_DevicePixels::roundsEdges_data()
{
    QTest::addColumn<qreal>("ratio");
    QTest::addColumn<QRect>("rect");
    QTest::addColumn<QRect>("expected");

    const QRect rect(1, 2, 3, 5);
    QTest::newRow("1") << 1.0 << rect << rect;
    QTest::newRow("1.25") << 1.25 << rect << QRect(1, 3, 4, 6);
    QTest::newRow("1.5") << 1.5 << rect << QRect(2, 3, 4, 8);
    QTest::newRow("1.75") << 1.75 << rect << QRect(2, 4, 5, 8);
    QTest::newRow("2") << 2.0 << rect << QRect(2, 4, 6, 10);
    QTest::newRow("3") << 3.0 << rect << QRect(3, 6, 9, 15);
    // The same width, one pixel to the right: the edges count, not the width.
    QTest::newRow("neighbour at 1.25") << 1.25 << QRect(2, 2, 3, 5) << QRect(3, 3, 3, 6);
    QTest::newRow("touching at 1.25") << 1.25 << QRect(4, 2, 3, 5) << QRect(5, 3, 4, 6);
}

void tst_DevicePixels::roundsEdges()
{
    QFETCH(const qreal, ratio);
    QFETCH(const QRect, rect);
    QFETCH(const QRect, expected);
    QImage image = canvas(ratio);
    QPainter painter(&image);
    const DevicePixels pixels(&painter);
    QCOMPARE(pixels.rect(rect), expected);
}

void tst_DevicePixels::roundsLengths_data()
{
    QTest::addColumn<qreal>("ratio");
    QTest::addColumn<int>("length");
    QTest::addColumn<int>("expected");

    QTest::newRow("1 at 1") << 1.0 << 1 << 1;
    QTest::newRow("1 at 1.25") << 1.25 << 1 << 1;
    QTest::newRow("1 at 1.5") << 1.5 << 1 << 2;
    QTest::newRow("2 at 1.25") << 1.25 << 2 << 3;
    QTest::newRow("2 at 1.75") << 1.75 << 2 << 4;
    QTest::newRow("3 at 3") << 3.0 << 3 << 9;
    QTest::newRow("never vanishes") << 0.25 << 1 << 1;
}

void tst_DevicePixels::roundsLengths()
{
    QFETCH(const qreal, ratio);
    QFETCH(const int, length);
    QFETCH(const int, expected);
    QImage image = canvas(1);
    QPainter painter(&image);
    painter.scale(ratio, ratio);
    const DevicePixels pixels(&painter);
    QCOMPARE(pixels.length(length), expected);
}

void tst_DevicePixels::goesByThePaintersOwnTransformation()
{
    QImage image = canvas(1.5);
    QPainter painter(&image);
    painter.translate(10, 4);
    painter.scale(2, 2);
    const DevicePixels pixels(&painter);
    QCOMPARE(pixels.rect({1, 1, 2, 3}), QRect(18, 9, 6, 9));
    QCOMPARE(pixels.length(1), 3);

    painter.fillRect(QRect(0, 0, 1, 1), QColor(Foreground));
    QCOMPARE(image.pixel(0, 0), Foreground);
    QCOMPARE(image.pixel(1, 1), Background);
}

void tst_DevicePixels::fillsFrames_data()
{
    QTest::addColumn<Qt::Edges>("edges");

    QTest::newRow("all") << Qt::Edges(Qt::LeftEdge | Qt::TopEdge | Qt::RightEdge | Qt::BottomEdge);
    QTest::newRow("left") << Qt::Edges(Qt::LeftEdge);
    QTest::newRow("top") << Qt::Edges(Qt::TopEdge);
    QTest::newRow("right") << Qt::Edges(Qt::RightEdge);
    QTest::newRow("bottom") << Qt::Edges(Qt::BottomEdge);
    QTest::newRow("but the top") << Qt::Edges(Qt::LeftEdge | Qt::RightEdge | Qt::BottomEdge);
    QTest::newRow("none") << Qt::Edges();
}

void tst_DevicePixels::fillsFrames()
{
    QFETCH(const Qt::Edges, edges);
    constexpr QRect Outer(4, 6, 20, 12);
    constexpr int Width = 3;
    QImage image = canvas(1.25);
    {
        QPainter painter(&image);
        const DevicePixels pixels(&painter);
        pixels.fillFrame(Outer, Width, QColor(Foreground), edges);
    }

    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            const bool isOnEdge = (edges.testFlag(Qt::LeftEdge) && x < Outer.left() + Width)
                                  || (edges.testFlag(Qt::RightEdge) && x > Outer.right() - Width)
                                  || (edges.testFlag(Qt::TopEdge) && y < Outer.top() + Width)
                                  || (edges.testFlag(Qt::BottomEdge) && y > Outer.bottom() - Width);
            const bool isFilled = Outer.contains(x, y) && isOnEdge;
            QCOMPARE(image.pixel(x, y), isFilled ? Foreground : Background);
        }
    }
}

//! A line that stands between device pixels, which Qt alone would paint two of them thick or none.
void tst_DevicePixels::paintsWholePixels()
{
    for (int place = 0; place < 8; ++place) {
        QImage image = canvas(1.25);
        {
            QPainter painter(&image);
            const DevicePixels pixels(&painter);
            const QRect line = pixels.rect({0, place, 10, 1});
            painter.fillRect(QRect(line.topLeft(), QSize(line.width(), pixels.length(1))),
                             QColor(Foreground));
        }
        int count = 0;
        for (int y = 0; y < image.height(); ++y)
            count += image.pixel(5, y) == Foreground ? 1 : 0;
        QCOMPARE(count, 1);
    }
}

void tst_DevicePixels::givesTheTransformationBack()
{
    QImage image = canvas(1.5);
    QPainter painter(&image);
    painter.translate(3, 5);
    const QTransform former = painter.worldTransform();
    {
        const DevicePixels pixels(&painter);
        QVERIFY(painter.worldTransform() != former);
    }
    QCOMPARE(painter.worldTransform(), former);
}

void tst_DevicePixels::leavesARotatedPainterAlone()
{
    QImage image = canvas(1.5);
    QPainter painter(&image);
    painter.rotate(30);
    const QTransform former = painter.worldTransform();
    const DevicePixels pixels(&painter);
    QCOMPARE(painter.worldTransform(), former);
    QCOMPARE(pixels.rect({1, 2, 3, 5}), QRect(1, 2, 3, 5));
    QCOMPARE(pixels.length(2), 2);
}

QTEST_APPLESS_MAIN(tst_DevicePixels)
#include "tst_DevicePixels.moc"
