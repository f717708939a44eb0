#include "tests/fancy/privates.h"
#include "tests/support/waits.h"

#include <QAction>
#include <QHBoxLayout>
#include <QMenu>
#include <QMouseEvent>
#include <QScreen>
#include <QSignalSpy>
#include <QTest>

/*
    The title bar together with a window that is really shown, under a window manager.
*/

namespace {
//! Records which events of some types reach the objects that it filters.
struct Recorder : QObject
{
    explicit Recorder(const QVector<QEvent::Type> &types)
        : recorded(types)
    {
    }
    const QVector<QEvent::Type> recorded;
    QVector<QEvent::Type> events;
    bool eventFilter(QObject *, QEvent *event) override
    {
        if (recorded.contains(event->type()))
            events << event->type();
        return false;
    }
};

constexpr Qt::WindowFlags Frameless = Qt::Window | Qt::FramelessWindowHint;
constexpr Qt::WindowFlags WithBoth =
        Frameless | Qt::WindowMinimizeButtonHint | Qt::WindowMaximizeButtonHint;
} // namespace

class tst_FancyTitleBarWindow : public QObject
{
    Q_OBJECT

private slots:
    void showsTheButtonsOfTheFlags_data();
    void showsTheButtonsOfTheFlags();
    void passesOtherEventsOn();
    void maximizeButtonFollowsTheState_data();
    void maximizeButtonFollowsTheState();
    void tooltipAndPropertyChangeInOrder();
    void buttonsCommandTheWindow();
    void menuCommandsTheWindow();
    void closeOnlyAsks();
    void otherSendersClickNothing();
    void widgetOperationsEmitResizable();
    void systemMenuOpensAtTheButtonsCorner();
    void systemMenuStaysClosed();

private:
    bool create(Qt::WindowFlags flags);
    FancyTitleBarPrivate &data() const { return *TitleBarData::of(*bar); }

    Recorder stateChanges {{QEvent::WindowStateChange}};
    QScopedPointer<QWidget> window;
    FancyTitleBar *bar = nullptr;
};

//! Shows a new window with a title bar; whether it is active then.
bool tst_FancyTitleBarWindow::create(Qt::WindowFlags flags)
{
    window.reset(new QWidget(nullptr, flags));
    stateChanges.events.clear();
    // Installed first, so that it sees what the bar's filter passes on.
    window->installEventFilter(&stateChanges);
    bar = new FancyTitleBar(window.data());
    auto *row = new QHBoxLayout(window.data());
    row->addStretch();
    row->addWidget(bar->systemGroup());
    window->resize(400, 100);
    window->move(50, 60);
    window->show();
    return QTest::qWaitForWindowActive(window.data(), WindowTimeoutMs);
}

void tst_FancyTitleBarWindow::showsTheButtonsOfTheFlags_data()
{
    QTest::addColumn<Qt::WindowFlags>("flags");
    QTest::addColumn<bool>("minimize");
    QTest::addColumn<bool>("maximize");

    QTest::newRow("none") << Frameless << /*minimize*/ false << /*maximize*/ false;
    QTest::newRow("minimize") << (Frameless | Qt::WindowMinimizeButtonHint) << /*minimize*/ true
                              << /*maximize*/ false;
    QTest::newRow("maximize") << (Frameless | Qt::WindowMaximizeButtonHint) << /*minimize*/ false
                              << /*maximize*/ true;
    QTest::newRow("both") << WithBoth << /*minimize*/ true << /*maximize*/ true;
}

void tst_FancyTitleBarWindow::showsTheButtonsOfTheFlags()
{
    QFETCH(Qt::WindowFlags, flags);
    QFETCH(bool, minimize);
    QFETCH(bool, maximize);
    QVERIFY(create(Frameless));
    const FancyTitleBarPrivate &d = data();
    window->setWindowFlags(WithBoth);
    QVERIFY(d.m_minimizeButton->isHidden());
    QVERIFY(d.m_maximizeButton->isHidden());
    bar->updateWidgetFlags();
    QVERIFY(d.m_bWidgetMaximizable);

    window->setWindowFlags(flags);
    QCOMPARE(d.m_windowFlags, WithBoth);
    bar->updateWidgetFlags();

    QCOMPARE(d.m_windowFlags, window->windowFlags());
    QCOMPARE(d.m_minimizeButton->isHidden(), !minimize);
    QCOMPARE(d.m_maximizeButton->isHidden(), !maximize);
    QVERIFY(!d.m_closeButton->isHidden());
    QCOMPARE(d.m_minimizeAction->isEnabled(), minimize);
    QCOMPARE(d.m_maximizeAction->isEnabled(), maximize);
    QCOMPARE(d.m_restoreAction->isEnabled(), false);
    QCOMPARE(d.m_bWidgetMaximizable, maximize);
}

void tst_FancyTitleBarWindow::passesOtherEventsOn()
{
    QVERIFY(create(WithBoth));
    QEvent change(QEvent::WindowStateChange);
    QEvent other(QEvent::WindowTitleChange);

    QVERIFY(bar->eventFilter(window.data(), &change));
    QVERIFY(!bar->eventFilter(window.data(), &other));
    QVERIFY(!bar->eventFilter(window.data(), nullptr));
}

void tst_FancyTitleBarWindow::maximizeButtonFollowsTheState_data()
{
    QTest::addColumn<Qt::WindowFlags>("flags");
    QTest::addColumn<bool>("dark");
    QTest::addColumn<bool>("maximized");
    QTest::addColumn<bool>("canMaximize");
    QTest::addColumn<bool>("canRestore");

    QTest::newRow("maximized, dark") << WithBoth << /*dark*/ true << /*maximized*/ true
                                     << /*canMaximize*/ false << /*canRestore*/ true;
    QTest::newRow("maximized, light") << WithBoth << /*dark*/ false << /*maximized*/ true
                                      << /*canMaximize*/ false << /*canRestore*/ true;
    QTest::newRow("normal, dark") << WithBoth << /*dark*/ true << /*maximized*/ false
                                  << /*canMaximize*/ true << /*canRestore*/ false;
    QTest::newRow("normal, light") << WithBoth << /*dark*/ false << /*maximized*/ false
                                   << /*canMaximize*/ true << /*canRestore*/ false;
    QTest::newRow("maximized, no hint") << Frameless << /*dark*/ true << /*maximized*/ true
                                        << /*canMaximize*/ false << /*canRestore*/ false;
    QTest::newRow("normal, no hint") << Frameless << /*dark*/ true << /*maximized*/ false
                                     << /*canMaximize*/ false << /*canRestore*/ false;
}

void tst_FancyTitleBarWindow::maximizeButtonFollowsTheState()
{
    QFETCH(Qt::WindowFlags, flags);
    QFETCH(bool, dark);
    QFETCH(bool, maximized);
    QFETCH(bool, canMaximize);
    QFETCH(bool, canRestore);
    QVERIFY(create(flags));
    const FancyTitleBarPrivate &d = data();
    QVERIFY(!d.m_maximizeButton->property("maximizeProperty").isValid());
    bar->setIconDark(dark);
    QCOMPARE(d.m_maximizeButton->icon().cacheKey(), d.m_maximizeIcon[true].cacheKey());

    window->setWindowState(Qt::WindowMaximized);
    if (!maximized)
        window->setWindowState(Qt::WindowNoState);

    QCOMPARE(d.m_maximizeButton->toolTip(),
             maximized ? QStringLiteral("还原") : QStringLiteral("最大化"));
    QCOMPARE(d.m_maximizeButton->property("maximizeProperty"),
             QVariant(maximized ? "restore" : "maximize"));
    QCOMPARE(d.m_maximizeButton->icon().cacheKey(),
             (maximized ? d.m_normalIcon : d.m_maximizeIcon)[dark].cacheKey());
    QCOMPARE(d.m_maximizeAction->isEnabled(), canMaximize);
    QCOMPARE(d.m_restoreAction->isEnabled(), canRestore);
    QVERIFY(d.m_maximizeButton->isHidden());
    QCOMPARE(d.m_closeButton->toolTip(), QStringLiteral("关闭"));
    QCOMPARE(stateChanges.events.count(), 0);
}

void tst_FancyTitleBarWindow::tooltipAndPropertyChangeInOrder()
{
    QVERIFY(create(WithBoth));
    Recorder changes({QEvent::ToolTipChange, QEvent::DynamicPropertyChange});
    data().m_maximizeButton->installEventFilter(&changes);

    window->setWindowState(Qt::WindowMaximized);
    window->setWindowState(Qt::WindowNoState);

    QCOMPARE(changes.events,
             QVector<QEvent::Type>({QEvent::ToolTipChange, QEvent::DynamicPropertyChange,
                                    QEvent::DynamicPropertyChange, QEvent::ToolTipChange}));
}

void tst_FancyTitleBarWindow::buttonsCommandTheWindow()
{
    QVERIFY(create(WithBoth));
    bar->updateWidgetFlags();

    QTest::mouseClick(data().m_maximizeButton, Qt::LeftButton);
    QVERIFY(window->isMaximized());
    QTRY_COMPARE(window->geometry(), window->screen()->availableGeometry());
    QTest::mouseClick(data().m_maximizeButton, Qt::LeftButton);
    QVERIFY(!window->isMaximized());
    QTRY_COMPARE(window->size(), QSize(400, 100));

    QTest::mouseClick(data().m_minimizeButton, Qt::LeftButton);
    QTRY_VERIFY(window->isMinimized());
    QCOMPARE(stateChanges.events.count(), 0);
}

void tst_FancyTitleBarWindow::menuCommandsTheWindow()
{
    QVERIFY(create(WithBoth));
    const QSignalSpy closeClicked(bar, &FancyTitleBar::closeClicked);
    const QSignalSpy clicked(data().m_maximizeButton, &FancyButton::clicked);

    // Without a state change so far, the restore entry is enabled and maximizes.
    data().m_restoreAction->trigger();
    QVERIFY(window->isMaximized());
    QCOMPARE(clicked.count(), 1);
    data().m_restoreAction->trigger();
    QVERIFY(!window->isMaximized());
    QCOMPARE(clicked.count(), 2);
    data().m_maximizeAction->trigger();
    QVERIFY(window->isMaximized());
    QCOMPARE(clicked.count(), 3);

    data().m_closeAction->trigger();
    QCOMPARE(closeClicked.count(), 1);
    data().m_minimizeAction->trigger();
    QTRY_VERIFY(window->isMinimized());
}

void tst_FancyTitleBarWindow::closeOnlyAsks()
{
    QVERIFY(create(WithBoth));
    const QSignalSpy closeClicked(bar, &FancyTitleBar::closeClicked);

    QTest::mouseClick(data().m_closeButton, Qt::LeftButton);
    QCOMPARE(closeClicked.count(), 1);
    QVERIFY(window->isVisible());

    connect(bar, &FancyTitleBar::closeClicked, window.data(), &QWidget::close);
    QTest::mouseClick(data().m_closeButton, Qt::LeftButton);
    QVERIFY(!window->isVisible());

    data().q = nullptr;
    QTest::mouseClick(data().m_closeButton, Qt::LeftButton);
    QCOMPARE(closeClicked.count(), 2);
    data().q = bar;
}

void tst_FancyTitleBarWindow::otherSendersClickNothing()
{
    QVERIFY(create(WithBoth));
    const QSignalSpy closeClicked(bar, &FancyTitleBar::closeClicked);
    FancyButton other(nullptr);
    connect(&other, &FancyButton::clicked, &data(), &FancyTitleBarPrivate::slotSysButtonClicked);
    QToolButton plain;
    connect(&plain, &QToolButton::clicked, &data(), &FancyTitleBarPrivate::slotSysButtonClicked);

    QTest::mouseClick(&other, Qt::LeftButton);
    plain.click();
    delete data().m_minimizeButton;
    data().slotSysButtonClicked();
    plain.click();

    QVERIFY(!window->isMinimized());
    QVERIFY(!window->isMaximized());
    QCOMPARE(closeClicked.count(), 0);
}

void tst_FancyTitleBarWindow::widgetOperationsEmitResizable()
{
    QVERIFY(create(WithBoth));
    const QSignalSpy resizable(bar, &FancyTitleBar::windowResizable);
    data().maximize();
    data().restore();
    QCOMPARE(resizable.count(), 0);

    bool maximizedMeanwhile = false;
    const QObject watcher;
    connect(bar, &FancyTitleBar::windowResizable, &watcher,
            [&] { maximizedMeanwhile = window->isMaximized(); });
    data().maximizeWidget(window.data());
    QVERIFY(window->isMaximized());
    QVERIFY(maximizedMeanwhile);
    QCOMPARE(resizable.count(), 1);
    QCOMPARE(resizable.last(), QVariantList {false});

    data().restoreWidget(window.data());
    QVERIFY(!window->isMaximized());
    QVERIFY(!maximizedMeanwhile);
    QCOMPARE(resizable.count(), 2);
    QCOMPARE(resizable.last(), QVariantList {true});

    data().maximizeWidget(nullptr);
    data().restoreWidget(nullptr);
    QCOMPARE(resizable.count(), 2);
}

void tst_FancyTitleBarWindow::systemMenuOpensAtTheButtonsCorner()
{
    QVERIFY(create(WithBoth));
    FancyButton opener(window.data());
    opener.setHasMenu(true);
    opener.setGeometry(20, 10, 40, 25);
    opener.show();
    connect(&opener, &FancyButton::menuTriggered, &data(),
            &FancyTitleBarPrivate::systemMenuTriggered);

    QTest::mousePress(&opener, Qt::LeftButton, Qt::NoModifier, QPoint(7, 9));

    QTRY_VERIFY(data().m_menu->isVisible());
    QCOMPARE(data().m_menu->pos(), opener.mapToGlobal(QPoint(0, 25)));
    data().m_menu->hide();

    // Coordinates are rounded one by one, 30 - 3 and 41 - 2; the button's height comes on top.
    QMouseEvent fractions(QEvent::MouseButtonPress, QPointF(2.6, 2.4), QPointF(2.6, 2.4),
                          QPointF(30.4, 40.5), Qt::LeftButton, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(&opener, &fractions);
    QTRY_VERIFY(data().m_menu->isVisible());
    QCOMPARE(data().m_menu->pos(), QPoint(27, 39 + 25));
    data().m_menu->hide();
}

void tst_FancyTitleBarWindow::systemMenuStaysClosed()
{
    QVERIFY(create(WithBoth));
    QMouseEvent press(QEvent::MouseButtonPress, QPointF(1, 1), Qt::LeftButton, Qt::LeftButton,
                      Qt::NoModifier);
    data().systemMenuTriggered(&press);
    data().systemMenuTriggered(nullptr);
    QVERIFY(!data().m_menu->isVisible());

    FancyButton opener(window.data());
    connect(&opener, &FancyButton::menuTriggered, &data(),
            &FancyTitleBarPrivate::systemMenuTriggered);
    emit opener.menuTriggered(nullptr);
    QVERIFY(!data().m_menu->isVisible());
    delete data().m_menu;
    emit opener.menuTriggered(&press);
    QVERIFY(!QApplication::activePopupWidget());
}

QTEST_MAIN(tst_FancyTitleBarWindow)
#include "tst_FancyTitleBarWindow.moc"
