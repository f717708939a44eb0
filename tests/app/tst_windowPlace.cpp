#include "app/windowPlace.h"

#include <QTest>

namespace {
constexpr QSize Window(800, 600);
}

class tst_windowPlace : public QObject
{
    Q_OBJECT

private slots:
    void place_data();
    void place();
};

void tst_windowPlace::place_data()
{
    QTest::addColumn<QRect>("screen");
    QTest::addColumn<QVector<QRect>>("monitors");
    QTest::addColumn<QPoint>("expected");

    const QRect full(0, 0, 1920, 1080);
    const QRect odd(0, 0, 1367, 769);
    const QRect small(0, 0, 641, 481);
    const auto row = [](const char *name, const QRect &screen, const QVector<QRect> &monitors,
                        const QPoint &expected) {
        QTest::newRow(name) << screen << monitors << expected;
    };
    row("one monitor", full, {full}, {560, 240});
    row("odd numbers", odd, {odd}, {283, 84});
    row("too small, rounded towards 0", small, {small}, {-79, -59});

    const QRect right = full.translated(1920, 0);
    row("two monitors", full, {full, right}, {560, 240});
    // Whole, though not on its own monitor.
    row("held by the right one", right, {right, full}, {560, 240});
    const QRect justLarge(0, 0, 1360, 840);
    row("just whole on another", right, {right, justLarge}, {560, 240});
    row("past its right edge", right, {right, justLarge.adjusted(0, 0, -1, 0)}, {2480, 240});
    row("past its bottom edge", right, {right, justLarge.adjusted(0, 0, 0, -1)}, {2480, 240});
    row("too large for its own, the primary is larger", small, {right, small}, {2480, 240});
    row("too large for the primary as well", small, {small, {641, 0, 700, 900}, right},
        {2480, 240});
    row("just fits", small, {small, {700, 40, 800, 600}}, {700, 40});
    row("too large for all", small, {{641, 0, 799, 600}, {641, 0, 800, 599}, small}, {-79, -59});
}

void tst_windowPlace::place()
{
    QFETCH(const QRect, screen);
    QFETCH(const QVector<QRect>, monitors);
    QFETCH(const QPoint, expected);
    QCOMPARE(windowPlace(Window, screen, monitors), expected);
}

QTEST_APPLESS_MAIN(tst_windowPlace)
#include "tst_windowPlace.moc"
