#include "fancy/clearWhenDestroyed_p.h"
#include "tests/fancy/privates.h"
#include "tests/support/waits.h"

#include <QAction>
#include <QHBoxLayout>
#include <QHash>
#include <QMenu>
#include <QPointer>
#include <QTest>
#include <QVBoxLayout>

/*
    Bar, window, title bar and buttons in every order of destruction. The sanitizers watch for leaks
    and dangling pointers; the tests use what is left.
*/

namespace {
//! Exposes the protected receivers().
struct Opener : QObject
{
    using QObject::receivers;
};

//! How many wait for the end of \a object.
int watchers(const QObject &object)
{
    return (object.*&Opener::receivers)(SIGNAL(destroyed(QObject *)));
}
} // namespace

class tst_FancyLifetime : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void everyOrderIsSafe_data();
    void everyOrderIsSafe();
    void titleBarForgetsWhatIsGone();
    void titleBarForgetsItsTitleWidgetOnly();
    void titleBarWatchesItsTitleWidgetOnce();
    void buttonsOutliveTheTitleBar();
    void barForgetsItsRows();
    void barForgetsItsButtons();
    void barForgetsTheButtonOfTheOpenMenu();
    void buttonOutlivesItsAction();
    void whatIsPlacedOutlivesTheBar_data();
    void whatIsPlacedOutlivesTheBar();
    void privatePartAloneCleansUp();
    void nullFieldIsLeftAloneInSilence();

private:
    void useWhatIsLeft();

    QPointer<QWidget> window;
    QPointer<FancyBar> bar;
    QPointer<FancyTitleBar> titleBar;
    QPointer<QWidget> group;
    QScopedPointer<QMenu> menu;
    QScopedPointer<QAction> action;
};

void tst_FancyLifetime::init()
{
    menu.reset(new QMenu);
    menu->addAction(QStringLiteral("Entry"));
    action.reset(new QAction(QStringLiteral("Action")));
    action->setMenu(menu.data());

    window = new QWidget(nullptr, Qt::Window | Qt::FramelessWindowHint);
    bar = new FancyBar(window);
    titleBar = bar->titleBar();
    group = titleBar->systemGroup();
    auto *layout = new QVBoxLayout(window);
    layout->addWidget(bar);
    bar->addAdditionalControl(action.data(), FancyBar::TitlePosition, 0);
    bar->addAdditionalControl(action.data(), FancyBar::MenuPosition, 0);
    connect(titleBar.data(), &FancyTitleBar::closeClicked, window.data(), &QWidget::close);
    window->show();
    QVERIFY(QTest::qWaitForWindowExposed(window, WindowTimeoutMs));
}

void tst_FancyLifetime::cleanup()
{
    delete bar;
    delete titleBar;
    delete window;
    delete group;
    menu.reset();
    action.reset();
}

// Everything that a program could still call.
void tst_FancyLifetime::useWhatIsLeft()
{
    QIcon icon;
    if (bar) {
        bar->updateWidgetFlags();
        bar->setWidgetResizable(true);
        bar->setTitleBarHeight(40);
        bar->setTextColor(Qt::red);
        BarData::of(*bar)->showQuickAccessBar(true);
        BarData::of(*bar)->aboutToShowMenu();
        BarData::of(*bar)->aboutToHideMenu();
        bar->grab();
    }
    if (titleBar) {
        FancyTitleBarPrivate *d = TitleBarData::of(*titleBar);
        titleBar->setNormalIcon(icon);
        titleBar->setCloseIcon(icon);
        titleBar->updateWidgetFlags();
        d->setIconDark(false);
        d->windowStateChange(nullptr);
        d->maximizeWidget(d->m_mainWidget);
        d->restoreWidget(d->m_mainWidget);
        d->slotSysButtonClicked();
        d->m_restoreAction->trigger();
        d->m_closeAction->trigger();
    }
    if (window)
        window->setWindowState(Qt::WindowMaximized);
    if (group) {
        const auto buttons = group->findChildren<FancyButton *>();
        for (FancyButton *button : buttons)
            QTest::mouseClick(button, Qt::LeftButton);
    }
}

void tst_FancyLifetime::everyOrderIsSafe_data()
{
    QTest::addColumn<QString>("order");

    // b: bar, t: title bar, w: window, g: group of the system buttons; detached first or not.
    QString order = QStringLiteral("bgtw");
    do {
        QTest::newRow(qPrintable(order)) << order;
        QTest::newRow(qPrintable(QLatin1Char('-') + order)) << QLatin1Char('-') + order;
    } while (std::next_permutation(order.begin(), order.end()));
}

void tst_FancyLifetime::everyOrderIsSafe()
{
    QFETCH(QString, order);
    const QHash<QChar, QPointer<QObject>> objects {
            {'b', bar.data()}, {'t', titleBar.data()}, {'w', window.data()}, {'g', group.data()}};
    for (const QChar step : qAsConst(order)) {
        if (step == QLatin1Char('-')) {
            bar->setParent(nullptr);
            titleBar->setParent(nullptr);
            group->setParent(nullptr);
        } else {
            delete objects.value(step);
        }
        useWhatIsLeft();
    }
    QVERIFY(!bar);
    QVERIFY(!titleBar);
    QVERIFY(!window);
    QVERIFY(!group);
}

void tst_FancyLifetime::titleBarForgetsWhatIsGone()
{
    const FancyTitleBarPrivate &d = *TitleBarData::of(*titleBar);

    delete bar;
    QVERIFY(!titleBar->systemGroup());
    QVERIFY(!d.m_titleWidget);
    QVERIFY(!d.m_minimizeButton);
    QVERIFY(!d.m_maximizeButton);
    QVERIFY(!d.m_closeButton);
    QCOMPARE(titleBar->mainWidget(), window.data());

    delete d.m_menu;
    QVERIFY(!d.m_menu);
    QVERIFY(d.m_closeAction);

    titleBar->setParent(nullptr);
    delete window;
    QVERIFY(!titleBar->mainWidget());
}

void tst_FancyLifetime::titleBarForgetsItsTitleWidgetOnly()
{
    const FancyTitleBarPrivate &d = *TitleBarData::of(*titleBar);
    auto *strip = new QWidget;
    auto *later = new QWidget;
    titleBar->setTitleWidget(strip);
    titleBar->setTitleWidget(later);

    delete strip;
    QCOMPARE(d.m_titleWidget, later);
    delete later;
    QVERIFY(!d.m_titleWidget);
}

void tst_FancyLifetime::titleBarWatchesItsTitleWidgetOnce()
{
    QWidget first;
    QWidget second;
    const int before = watchers(first);
    for (int i = 0; i < 3; ++i) {
        titleBar->setTitleWidget(&first);
        titleBar->setTitleWidget(&first);
        QCOMPARE(watchers(first), before + 1);
        QCOMPARE(watchers(second), before);
        titleBar->setTitleWidget(&second);
        QCOMPARE(watchers(first), before);
        QCOMPARE(watchers(second), before + 1);
    }

    // The main widget may be its own title widget. Giving that up, the bar still watches for its
    // end.
    const FancyTitleBarPrivate &d = *TitleBarData::of(*titleBar);
    const int mainBefore = watchers(*d.m_mainWidget);
    titleBar->setTitleWidget(d.m_mainWidget);
    titleBar->setTitleWidget(nullptr);
    QVERIFY(!d.m_titleWidget);
    QCOMPARE(watchers(second), before);
    QCOMPARE(watchers(*d.m_mainWidget), mainBefore);
}

void tst_FancyLifetime::buttonsOutliveTheTitleBar()
{
    FancyButton *close = TitleBarData::of(*titleBar)->m_closeButton;
    QMenu *systemMenu = TitleBarData::of(*titleBar)->m_menu;

    delete titleBar;
    QTest::mouseClick(close, Qt::LeftButton);
    close->setToolTip(QStringLiteral("other"));

    QVERIFY(window->isVisible());
    QCOMPARE(systemMenu->actions().size(), 1);
    QVERIFY(systemMenu->actions().constFirst()->isSeparator());
}

void tst_FancyLifetime::barForgetsItsRows()
{
    FancyBarPrivate &d = *BarData::of(*bar);
    d.createMenuWidget();

    delete d.m_titleWidget;
    QVERIFY(!d.m_titleWidget);
    QVERIFY(!d.m_leftSpacerItem);
    QVERIFY(!d.m_titleAdditionalControlArea);
    QVERIFY(!d.m_systemGroup);
    delete d.m_menuWidget;
    QVERIFY(!d.m_menuWidget);
    QVERIFY(!d.m_middleSpacerItem);
    QVERIFY(!d.m_menuAdditionalControlArea);
    QVERIFY(!d.m_appButtonLayout);
    QVERIFY(!d.m_menuBarArea);
    delete d.m_logoLayout;
    QVERIFY(!d.m_logoLayout);
    useWhatIsLeft();
}

void tst_FancyLifetime::barForgetsItsButtons()
{
    FancyBarPrivate &d = *BarData::of(*bar);
    QCOMPARE(d.m_additionalButtons.size(), 2);
    FancyButton *second = d.m_additionalButtons.at(1);

    delete d.m_additionalButtons.at(0);

    QCOMPARE(d.m_additionalButtons, QList<FancyButton *>({second}));
}

void tst_FancyLifetime::barForgetsTheButtonOfTheOpenMenu()
{
    FancyBarPrivate &d = *BarData::of(*bar);
    FancyButton *button = d.m_additionalButtons.at(0);
    const int before = watchers(*button);
    for (int i = 0; i < 3; ++i) {
        menu->hide();
        d.m_menuButton = nullptr;
        QTest::mousePress(button, Qt::LeftButton);
        QTRY_VERIFY(menu->isVisible());
        QCOMPARE(watchers(*button), before + 1);
        QCOMPARE(d.m_menuButton, button);
    }

    delete button;
    QVERIFY(!d.m_menuButton);
    menu->hide();

    QVERIFY(!menu->isVisible());
}

void tst_FancyLifetime::buttonOutlivesItsAction()
{
    FancyButton *button = BarData::of(*bar)->m_additionalButtons.at(0);

    action.reset();
    QVERIFY(!button->defaultAction());
    QTest::mouseClick(button, Qt::LeftButton);

    QVERIFY(!BarData::of(*bar)->m_menuButton);
}

void tst_FancyLifetime::whatIsPlacedOutlivesTheBar_data()
{
    QTest::addColumn<bool>("isPlaced");

    QTest::newRow("placed") << true;
    QTest::newRow("not placed") << false;
}

void tst_FancyLifetime::whatIsPlacedOutlivesTheBar()
{
    QFETCH(bool, isPlaced);
    FancyBarPrivate &d = *BarData::of(*bar);
    d.createMenuWidget();
    const QPointer<FancyButton> button = d.m_additionalButtons.at(1);
    const QPointer<QWidget> menuRow = d.m_menuWidget;
    const QPointer<QHBoxLayout> logo = d.m_logoLayout;
    QVERIFY(!button->parent());
    if (isPlaced) {
        window->layout()->addWidget(button);
        window->layout()->addWidget(menuRow);
    }

    delete bar;
    QCOMPARE(!button.isNull(), isPlaced);
    QCOMPARE(!menuRow.isNull(), isPlaced);
    QVERIFY(!logo);

    if (isPlaced)
        QTest::mouseClick(button.data(), Qt::LeftButton);
    delete window;
    QVERIFY(!button);
    QVERIFY(!menuRow);
}

void tst_FancyLifetime::privatePartAloneCleansUp()
{
    QPointer<FancyTitleBar> inert;
    QPointer<QWidget> row;
    {
        FancyBarPrivate d;
        d.init();
        d.createTitleWidget();
        QVERIFY(!d.m_logoLayout);
        QVERIFY(!d.m_titleWidget);

        d.registerWidget(nullptr);
        d.createTitleWidget();
        inert = d.m_titleBar;
        row = d.m_titleWidget;
        QVERIFY(inert);
        QVERIFY(row);
    }

    QVERIFY(!inert);
    QVERIFY(!row);
}

void tst_FancyLifetime::nullFieldIsLeftAloneInSilence()
{
    static int messages = 0;
    const auto count = [](QtMsgType, const QMessageLogContext &, const QString &) { ++messages; };
    QObject holder;
    QObject *field = nullptr;

    const QtMessageHandler former = qInstallMessageHandler(count);
    clearWhenDestroyed(&holder, field);
    qInstallMessageHandler(former);

    QCOMPARE(messages, 0);
    QVERIFY(!field);
}

QTEST_MAIN(tst_FancyLifetime)
#include "tst_FancyLifetime.moc"
