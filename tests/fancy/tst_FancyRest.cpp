#include "tests/fancy/privates.h"

#include <QAction>
#include <QLabel>
#include <QMenu>
#include <QTest>
#include <QTimer>
#include <QVBoxLayout>

namespace {
constexpr int WatchedMilliseconds = 1000;

class PaintCounter : public QObject
{
public:
    int paints = 0;

    bool eventFilter(QObject *watched, QEvent *event) override
    {
        paints += watched->isWidgetType() && event->type() == QEvent::Paint;
        return false;
    }
};
} // namespace

class tst_FancyRest : public QObject
{
    Q_OBJECT

private slots:
    void untouchedBarPaintsNothing();
};

void tst_FancyRest::untouchedBarPaintsNothing()
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

    PaintCounter counter;
    qApp->installEventFilter(&counter);
    window.resize(400, 200);
    window.show();
    QVERIFY(QTest::qWaitForWindowActive(&window));
    QTRY_VERIFY(counter.paints >= 6);

    // The window manager may take its time for its last words, so some second must pass without a
    // paint, not the first one. One that paints at rest never has such a second.
    QTimer second;
    second.start(WatchedMilliseconds);
    int atLastSecond = -1;
    bool isAtRest = false;
    connect(&second, &QTimer::timeout, &counter, [&] {
        isAtRest = counter.paints == atLastSecond;
        atLastSecond = counter.paints;
    });
    QTRY_VERIFY_WITH_TIMEOUT(isAtRest, 10 * WatchedMilliseconds);
    second.stop();

    const int atRest = counter.paints;
    TitleBarData::of(*bar->titleBar())->m_closeButton->update();
    QTRY_VERIFY(counter.paints > atRest);
}

QTEST_MAIN(tst_FancyRest)
#include "tst_FancyRest.moc"
