#include "tests/fancy/privates.h"

#include <QAction>
#include <QLabel>
#include <QMenu>
#include <QSignalSpy>
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

    // The second is what is measured. The window manager's last words may come within the first.
    QTimer second;
    second.setInterval(WatchedMilliseconds);
    const QSignalSpy gone(&second, &QTimer::timeout);
    second.start();
    QTRY_COMPARE_WITH_TIMEOUT(gone.count(), 1, 5 * WatchedMilliseconds);
    counter.paints = 0;
    QTRY_COMPARE_WITH_TIMEOUT(gone.count(), 2, 5 * WatchedMilliseconds);

    QCOMPARE(counter.paints, 0);

    TitleBarData::of(*bar->titleBar())->m_closeButton->update();
    QTRY_VERIFY(counter.paints > 0);
}

QTEST_MAIN(tst_FancyRest)
#include "tst_FancyRest.moc"
