#include "tests/fancy/privates.h"
#include "tests/support/PaintCounter.h"

#include <QAction>
#include <QLabel>
#include <QMenu>
#include <QTest>
#include <QTimer>
#include <QVBoxLayout>

namespace {
constexpr int WatchedMilliseconds = 1000;
} // namespace

class tst_FancyIdleRepaint : public QObject
{
    Q_OBJECT

private slots:
    void untouchedBarPaintsNothing();
};

void tst_FancyIdleRepaint::untouchedBarPaintsNothing()
{
    QMenu menu;
    QAction action(QStringLiteral("Action"));
    action.setMenu(&menu);
    QWidget window(nullptr, Qt::Window | Qt::WindowMinMaxButtonsHint);
    auto *bar = new FancyBar(&window);
    auto *layout = new QVBoxLayout(&window);
    layout->addWidget(bar);
    layout->addStretch();
    const QPixmap pixmap(16, 16);
    action.setIcon(pixmap);
    bar->addAdditionalControl(&action, FancyBar::TitlePosition, 0);
    bar->updateWidgetFlags();
    bar->setTitleBarHeight(40);

    const PaintCounter counter;
    window.resize(400, 200);
    window.show();
    QVERIFY(QTest::qWaitForWindowActive(&window));
    QTRY_VERIFY(counter.total() >= 6);

    // The window manager may cause some late paints, so any second may be the one without a paint.
    int before = -1;
    bool isIdle = false;
    QTimer second;
    connect(&second, &QTimer::timeout, &counter,
            [&] { isIdle = std::exchange(before, counter.total()) == counter.total(); });
    second.start(WatchedMilliseconds);
    QTRY_VERIFY_WITH_TIMEOUT(isIdle, 10 * WatchedMilliseconds);
    second.stop();

    TitleBarData::of(*bar->titleBar())->m_closeButton->update();
    QTRY_VERIFY(counter.total() > before);
}

QTEST_MAIN(tst_FancyIdleRepaint)
#include "tst_FancyIdleRepaint.moc"
