#include "fancy/FancyBar.h"
#include "shell/ServiceContainer.h"

#include <QLayout>
#include <QTest>

// The linker hands every call of FancyBar::titleBar() to this function, see CMakeLists.txt: a bar
// that has no title bar.
extern "C" FancyTitleBar *
noTitleBar(const FancyBar *bar) __asm__("__wrap__ZNK8FancyBar8titleBarEv");
FancyTitleBar *noTitleBar(const FancyBar * /*bar*/)
{
    return nullptr;
}

/*!
    What there is of the window when its bar has no title bar.
*/
class tst_ServiceContainerBare : public QObject
{
    Q_OBJECT

private slots:
    void stopsBehindTheBar();
};

void tst_ServiceContainerBare::stopsBehindTheBar()
{
    ServiceContainer window;

    QVERIFY(window.windowFlags() & Qt::FramelessWindowHint);
    QCOMPARE(window.size(), QSize(800, 600));
    QCOMPARE(window.minimumSize(), QSize(0, 0));
    QCOMPARE(window.maximumSize(), QSize(QWIDGETSIZE_MAX, QWIDGETSIZE_MAX));
    QVERIFY(window.findChild<FancyBar *>(QStringLiteral("fancy_titlebar")));
    QCOMPARE(window.layout()->count(), 1);
    QVERIFY(!window.findChild<QWidget *>(QStringLiteral("TabTitle")));
    QVERIFY(!window.findChild<QWidget *>(QStringLiteral("OverviewForm")));
    QVERIFY(!window.findChild<QWidget *>(QStringLiteral("SettingsForm")));
    for (const QObject *child : window.children())
        QVERIFY(!child->inherits("QWK::WindowAgentBase"));
    // Nothing can be dragged by a header that isn't there.
    QVERIFY(!window.inTitleBarDraggableArea(QPoint(400, 16)));
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
}

QTEST_MAIN(tst_ServiceContainerBare)
#include "tst_ServiceContainerBare.moc"
