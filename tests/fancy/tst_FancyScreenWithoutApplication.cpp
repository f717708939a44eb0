#include "tests/fancy/privates.h"

#include <QGuiApplication>
#include <QTest>

class tst_FancyScreenWithoutApplication : public QObject
{
    Q_OBJECT

private slots:
    void withoutAnApplicationThereIsNoScreen();
    void applicationWithoutWidgetsHasNoNormalRect();
};

void tst_FancyScreenWithoutApplication::withoutAnApplicationThereIsNoScreen()
{
    const FancyScreen screen;

    QCOMPARE(ScreenRects::of(screen), QList<QRect>());
    QCOMPARE(FancyScreen::normalRect(), QRect(QPoint(0, 0), QPoint(-1, -1)));
}

void tst_FancyScreenWithoutApplication::applicationWithoutWidgetsHasNoNormalRect()
{
    qputenv("QT_QPA_PLATFORM", "minimal");
    int count = 1;
    char name[] = "test"; // NOLINT(modernize-avoid-c-arrays)
    char *arguments[] = {name, nullptr}; // NOLINT(modernize-avoid-c-arrays)
    const QGuiApplication application(count, arguments);

    QCOMPARE(ScreenRects::of(FancyScreen()).size(), 1);
    QCOMPARE(FancyScreen::normalRect(), QRect());
}

QTEST_APPLESS_MAIN(tst_FancyScreenWithoutApplication)
#include "tst_FancyScreenWithoutApplication.moc"
