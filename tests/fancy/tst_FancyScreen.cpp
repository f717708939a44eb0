#include "tests/fancy/privates.h"

#include <QGuiApplication>
#include <QScreen>
#include <QTest>

namespace {
const QList<QRect> Row {QRect(0, 0, 1280, 1024), QRect(1280, 0, 800, 600),
                        QRect(2080, 0, 640, 480)};
}

// Runs on two screens, of 801 by 600 pixels and to its right of 1280 by 1025.
class tst_FancyScreen : public QObject
{
    Q_OBJECT

private slots:
    void takesDownTheVirtualDesktopOfEachScreen();
    void findsTheCurrentScreen_data();
    void findsTheCurrentScreen();
    void givesRectanglesByIndex_data();
    void givesRectanglesByIndex();
    void normalRectIsTwoThirdsOfTheVirtualDesktop();
};

void tst_FancyScreen::takesDownTheVirtualDesktopOfEachScreen()
{
    const FancyScreen screen;

    QCOMPARE(QGuiApplication::screens().size(), 2);
    QCOMPARE(QGuiApplication::screens().at(0)->geometry(), QRect(0, 0, 801, 600));
    const QRect desktop(0, 0, 2081, 1025);
    QCOMPARE(ScreenRects::of(screen), QList<QRect>({desktop, desktop}));
}

void tst_FancyScreen::findsTheCurrentScreen_data()
{
    QTest::addColumn<QList<QRect>>("rects");
    QTest::addColumn<int>("x");
    QTest::addColumn<int>("index");

    const QList<QRect> none;
    QTest::newRow("no screen") << none << /*x*/ 0 << /*index*/ 0;
    QTest::newRow("no screen, right") << none << /*x*/ 5000 << /*index*/ 0;
    QTest::newRow("left of all") << Row << /*x*/ -1 << /*index*/ 0;
    QTest::newRow("first") << Row << /*x*/ 640 << /*index*/ 0;
    QTest::newRow("last column of the first") << Row << /*x*/ 1279 << /*index*/ 0;
    QTest::newRow("one beyond the first") << Row << /*x*/ 1280 << /*index*/ 0;
    QTest::newRow("two beyond the first") << Row << /*x*/ 1281 << /*index*/ 1;
    QTest::newRow("one beyond the second") << Row << /*x*/ 2080 << /*index*/ 1;
    QTest::newRow("two beyond the second") << Row << /*x*/ 2081 << /*index*/ 2;
    QTest::newRow("one beyond the last") << Row << /*x*/ 2720 << /*index*/ 2;
    QTest::newRow("right of all") << Row << /*x*/ 2721 << /*index*/ 0;
    QTest::newRow("one screen, right of it") << Row.mid(0, 1) << /*x*/ 3000 << /*index*/ 0;
}

void tst_FancyScreen::findsTheCurrentScreen()
{
    QFETCH(QList<QRect>, rects);
    QFETCH(int, x);
    QFETCH(int, index);
    FancyScreen screen;
    ScreenRects::of(screen) = rects;

    QCOMPARE(screen.currentScreen(x), index);
}

void tst_FancyScreen::givesRectanglesByIndex_data()
{
    QTest::addColumn<QList<QRect>>("rects");
    QTest::addColumn<int>("index");
    QTest::addColumn<QRect>("rect");

    QTest::newRow("first") << Row << /*index*/ 0 << Row.at(0);
    QTest::newRow("last") << Row << /*index*/ 2 << Row.at(2);
    QTest::newRow("the count") << Row << /*index*/ 3 << Row.at(0);
    QTest::newRow("beyond the count") << Row << /*index*/ 100 << Row.at(0);
    QTest::newRow("negative") << Row << /*index*/ -1 << Row.at(0);
    QTest::newRow("very negative") << Row << /*index*/ -2 << Row.at(0);
    QTest::newRow("no screen") << QList<QRect>() << /*index*/ 0 << QRect();
    QTest::newRow("no screen, negative") << QList<QRect>() << /*index*/ -1 << QRect();
}

void tst_FancyScreen::givesRectanglesByIndex()
{
    QFETCH(QList<QRect>, rects);
    QFETCH(int, index);
    QFETCH(QRect, rect);
    FancyScreen screen;
    ScreenRects::of(screen) = rects;

    QCOMPARE(screen.screenRect(index), rect);
}

void tst_FancyScreen::normalRectIsTwoThirdsOfTheVirtualDesktop()
{
    QCOMPARE(QGuiApplication::primaryScreen()->geometry(), QRect(0, 0, 801, 600));
    // 2081 * 2 / 3 and 1025 * 2 / 3, rounded down: dividing first gives one less.
    QCOMPARE(FancyScreen::normalRect(), QRect(100, 100, 1387, 683));
}

QTEST_MAIN(tst_FancyScreen)
#include "tst_FancyScreen.moc"
