#include "tests/fancy/privates.h"
#include "tests/support/LayoutDump.h"
#include "tests/support/PaintCounter.h"
#include "tests/support/waits.h"

#include <QAction>
#include <QHBoxLayout>
#include <QMenu>
#include <QMenuBar>
#include <QPointer>
#include <QSignalSpy>
#include <QTest>
#include <QVBoxLayout>

// The private colour that all bars share.
QColor *backgroundColor();
template<QColor *Color>
struct ExposeBackgroundColor
{
    friend QColor *backgroundColor() { return Color; }
};
template struct ExposeBackgroundColor<&FancyBar::s_backgroundColor>;

namespace {
constexpr int WatchedMilliseconds = 1000;

//! The fixed height of a widget; -1 where it has none.
int fixedHeight(const QWidget *widget)
{
    return widget->minimumHeight() == widget->maximumHeight() ? widget->minimumHeight() : -1;
}
} // namespace

class tst_FancyBar : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();

    void firstBarIsRed();
    void registersItsWindow();
    void relaysTheTitleBarsSignals();
    void buildsTheTitleRow();
    void hasNoSystemButtonsWithoutAWindow();
    void buildsTheMenuRowOnRequest();
    void backgroundIsPaintedAndHandedOn();
    void invalidBackgroundIsNotTakenOver();
    void heightIsFixed_data();
    void heightIsFixed();
    void heightOfZeroIsKept();
    void sizeHintFollowsWidthAndHeight();
    void forwardsToTheTitleBar();
    void quickAccessStretchesTheLeftSpacer();
    void menuBarBringsTheMenuRow_data();
    void menuBarBringsTheMenuRow();
    void hooksShowNothing();
    void paintsNothingWhenIdle();

private:
    FancyBarPrivate &data() const { return *BarData::of(*bar); }

    //! The shared colour as the program finds it.
    QColor initialBackground;
    QScopedPointer<QWidget> window;
    FancyBar *bar = nullptr;
};

void tst_FancyBar::initTestCase()
{
    initialBackground = *backgroundColor();
}

void tst_FancyBar::init()
{
    *backgroundColor() = initialBackground;
    window.reset(new QWidget);
    bar = new FancyBar(window.data());
}

void tst_FancyBar::firstBarIsRed()
{
    QCOMPARE(bar->palette().color(QPalette::Window), QColor(255, 0, 0, 255));
    QVERIFY(bar->autoFillBackground());
    QCOMPARE(bar->grab().toImage().pixelColor(2, 2), QColor(255, 0, 0));
}

void tst_FancyBar::registersItsWindow()
{
    QCOMPARE(bar->parentWidget(), window.data());
    QCOMPARE(data().q, bar);
    QCOMPARE(data().parent(), bar);
    QCOMPARE(bar->titleBar(), data().m_titleBar);
    QCOMPARE(bar->titleBar()->parent(), window.data());
    QCOMPARE(bar->titleBar()->mainWidget(), window.data());
    QCOMPARE(TitleBarData::of(*bar->titleBar())->m_titleWidget, bar);
}

void tst_FancyBar::relaysTheTitleBarsSignals()
{
    const QSignalSpy maximization(bar, &FancyBar::maximizationChanged);

    emit bar->titleBar()->windowResizable(true);
    emit bar->titleBar()->windowResizable(false);
    QCOMPARE(maximization.count(), 2);
    QCOMPARE(maximization.at(0), QVariantList {true});
    QCOMPARE(maximization.at(1), QVariantList {false});

    QVERIFY(!QObject::disconnect(bar->titleBar(), &FancyTitleBar::windowMovable, nullptr, nullptr));
    QVERIFY(QObject::disconnect(bar->titleBar(), &FancyTitleBar::windowIconChanged, &data(),
                                &FancyBarPrivate::slotWindowIconChange));
}

void tst_FancyBar::buildsTheTitleRow()
{
    FancyBarPrivate &d = data();
    d.m_titleWidget->setObjectName(QStringLiteral("title"));
    d.m_titleAdditionalControlArea->setObjectName(QStringLiteral("controls"));
    d.m_systemGroup->setObjectName(QStringLiteral("system"));
    delete d.m_systemGroup->layout();

    const char *expected = "QHBoxLayout  spacing 0 margins 0,0,0,0\n"
                           "  QVBoxLayout  spacing 0\n"
                           "    QWidget title\n"
                           "      QHBoxLayout  spacing 0 margins 0,0,0,0\n"
                           "        spacer 0×0 Minimum Minimum\n"
                           "        QHBoxLayout controls spacing 0\n"
                           "        spacer 0×0 Fixed Minimum\n"
                           "        QWidget system\n";
    QCOMPARE(dumpLayout(*bar), QString::fromUtf8(expected));
    QCOMPARE(d.m_systemGroup, bar->titleBar()->systemGroup());
    QCOMPARE(d.m_titleWidget->sizePolicy().horizontalPolicy(), QSizePolicy::Expanding);
    QCOMPARE(d.m_titleWidget->sizePolicy().verticalPolicy(), QSizePolicy::Preferred);

    // What is placed nowhere.
    QCOMPARE(d.m_rightSpacerItem->sizeHint(), QSize(0, 0));
    QCOMPARE(d.m_rightSpacerItem->sizePolicy(),
             QSizePolicy(QSizePolicy::Expanding, QSizePolicy::Minimum));
    QCOMPARE(d.m_logoLayout->contentsMargins(), QMargins());
    QCOMPARE(d.m_logoLayout->spacing(), 0);
    QVERIFY(!d.m_logoLayout->parent());
    QVERIFY(!d.m_menuWidget);
    QVERIFY(!d.m_menuBar);
    QVERIFY(!d.m_logoButton);
}

void tst_FancyBar::hasNoSystemButtonsWithoutAWindow()
{
    auto *alone = new FancyBar(nullptr);
    const FancyBarPrivate &d = *BarData::of(*alone);
    const QPointer<FancyTitleBar> inert = alone->titleBar();

    QVERIFY(inert);
    QVERIFY(!inert->parent());
    QVERIFY(!inert->mainWidget());
    QVERIFY(!d.m_systemGroup);
    QCOMPARE(d.m_titleWidget->layout()->count(), 3);
    alone->setTitleBarHeight(40);
    alone->updateWidgetFlags();
    QCOMPARE(fixedHeight(d.m_titleWidget), 40);

    delete alone;
    QVERIFY(!inert);
}

void tst_FancyBar::buildsTheMenuRowOnRequest()
{
    FancyBarPrivate &d = data();

    d.createMenuWidget();

    QVERIFY(!d.m_menuWidget->parent());
    QVERIFY(d.m_menuWidget->isHidden());
    QVERIFY(d.m_menuWidget->testAttribute(Qt::WA_WState_ExplicitShowHide));
    QCOMPARE(d.m_menuWidget->sizePolicy().horizontalPolicy(), QSizePolicy::Expanding);
    QCOMPARE(d.m_menuWidget->sizePolicy().verticalPolicy(), QSizePolicy::Preferred);
    d.m_appButtonLayout->setObjectName(QStringLiteral("buttons"));
    d.m_menuBarArea->setObjectName(QStringLiteral("menu bar"));
    d.m_menuAdditionalControlArea->setObjectName(QStringLiteral("controls"));
    const char *expected = "QHBoxLayout  spacing 0 margins 1,0,0,0\n"
                           "  QHBoxLayout buttons spacing 0 margins 0,2,0,2\n"
                           "  QHBoxLayout menu bar spacing 0\n"
                           "  spacer 0×0 Expanding Minimum\n"
                           "  QHBoxLayout controls spacing 0\n";
    QCOMPARE(dumpLayout(*d.m_menuWidget), QString::fromUtf8(expected));
    QCOMPARE(d.m_menuWidget->layout()->itemAt(2)->spacerItem(), d.m_middleSpacerItem);

    const QWidget *row = d.m_menuWidget;
    d.createMenuWidget();
    QCOMPARE(d.m_menuWidget, row);
}

void tst_FancyBar::backgroundIsPaintedAndHandedOn()
{
    const QColor color(12, 34, 56);
    bar->setBackgroundColor(color);

    for (const QPalette::ColorGroup group :
         {QPalette::Active, QPalette::Inactive, QPalette::Disabled}) {
        QCOMPARE(bar->palette().brush(group, QPalette::Window), QBrush(color));
    }
    QVERIFY(bar->autoFillBackground());
    QCOMPARE(bar->grab().toImage().pixel(1, 1), color.rgb());
    QCOMPARE(*backgroundColor(), color);

    FancyBar later(window.data());
    QCOMPARE(later.palette().color(QPalette::Window), color);
    QVERIFY(later.autoFillBackground());
}

void tst_FancyBar::invalidBackgroundIsNotTakenOver()
{
    bar->setBackgroundColor(QColor());
    QVERIFY(!backgroundColor()->isValid());
    QCOMPARE(bar->grab().toImage().pixelColor(1, 1), QColor(Qt::black));

    const FancyBar later(window.data());

    QVERIFY(!later.autoFillBackground());
    QCOMPARE(later.palette().color(QPalette::Window), window->palette().color(QPalette::Window));
}

void tst_FancyBar::heightIsFixed_data()
{
    QTest::addColumn<int>("height");
    // The height from before, 36, stays where the new one is refused.
    QTest::addColumn<int>("stored");

    QTest::newRow("the default") << 32 << /*stored*/ 36;
    QTest::newRow("smallest") << 33 << /*stored*/ 33;
    QTest::newRow("between") << 40 << /*stored*/ 40;
    QTest::newRow("largest") << 47 << /*stored*/ 47;
    QTest::newRow("too large") << 48 << /*stored*/ 36;
    QTest::newRow("too small") << 20 << /*stored*/ 36;
}

void tst_FancyBar::heightIsFixed()
{
    QFETCH(int, height);
    QFETCH(int, stored);
    QCOMPARE(fixedHeight(bar), -1);
    bar->setTitleBarHeight(32);
    QCOMPARE(fixedHeight(bar), 32);
    QCOMPARE(fixedHeight(data().m_titleWidget), 32);
    bar->setTitleBarHeight(36);
    bar->setFixedHeight(10);
    data().m_titleWidget->setFixedHeight(10);

    bar->setTitleBarHeight(height);

    QCOMPARE(data().m_titleBarHeight, stored);
    QCOMPARE(fixedHeight(bar), stored);
    QCOMPARE(fixedHeight(data().m_titleWidget), stored);
}

void tst_FancyBar::heightOfZeroIsKept()
{
    data().m_titleBarHeight = 0;

    bar->setTitleBarHeight(40);

    QCOMPARE(data().m_titleBarHeight, 0);
    QCOMPARE(fixedHeight(bar), -1);
}

void tst_FancyBar::sizeHintFollowsWidthAndHeight()
{
    bar->resize(321, 77);
    QCOMPARE(bar->sizeHint(), QSize(321, 32));

    bar->setTitleBarHeight(45);
    bar->resize(123, 45);
    QCOMPARE(bar->sizeHint(), QSize(123, 45));
}

void tst_FancyBar::forwardsToTheTitleBar()
{
    bar->setWidgetResizable(true);
    QVERIFY(bar->titleBar()->resizable());
    bar->setWidgetResizable(false);
    QVERIFY(!bar->titleBar()->resizable());

    window->setWindowFlags(Qt::Window | Qt::WindowMaximizeButtonHint);
    bar->updateWidgetFlags();
    QVERIFY(!TitleBarData::of(*bar->titleBar())->m_maximizeButton->isHidden());

    delete bar->titleBar();
    bar->setWidgetResizable(true);
    bar->updateWidgetFlags();
    QVERIFY(!bar->titleBar());
}

void tst_FancyBar::quickAccessStretchesTheLeftSpacer()
{
    FancyBarPrivate &d = data();
    const QSizePolicy on(QSizePolicy::Expanding, QSizePolicy::Minimum);
    const QSizePolicy off(QSizePolicy::Minimum, QSizePolicy::Minimum);
    bar->resize(400, 32);
    window->resize(400, 100);
    window->show();
    QVERIFY(QTest::qWaitForWindowExposed(window.data(), WindowTimeoutMs));
    const QRect narrow = d.m_leftSpacerItem->geometry();

    d.showQuickAccessBar(true);
    QCOMPARE(d.m_bQuickAccessVisible, true);
    QCOMPARE(d.m_leftSpacerItem->sizePolicy(), on);
    QCOMPARE(d.m_leftSpacerItem->sizeHint(), QSize(0, 0));
    QTRY_VERIFY(d.m_leftSpacerItem->geometry().width() > narrow.width());

    d.m_leftSpacerItem->changeSize(5, 5, QSizePolicy::Fixed, QSizePolicy::Fixed);
    d.showQuickAccessBar(true);
    QCOMPARE(d.m_leftSpacerItem->sizeHint(), QSize(5, 5));

    d.showQuickAccessBar(false);
    QCOMPARE(d.m_bQuickAccessVisible, false);
    QCOMPARE(d.m_leftSpacerItem->sizePolicy(), off);
    QCOMPARE(d.m_leftSpacerItem->sizeHint(), QSize(0, 0));
    QTRY_COMPARE(d.m_leftSpacerItem->geometry(), narrow);

    delete d.m_titleWidget;
    d.showQuickAccessBar(true);
    QCOMPARE(d.m_bQuickAccessVisible, false);
}

void tst_FancyBar::menuBarBringsTheMenuRow_data()
{
    QTest::addColumn<int>("style");
    QTest::addColumn<bool>("bringsRow");

    QTest::newRow("window") << int(FancyBar::WindowStyle) << /*bringsRow*/ true;
    QTest::newRow("classic") << int(FancyBar::ClassicStyle) << /*bringsRow*/ true;
    QTest::newRow("merged") << int(FancyBar::MergedStyle) << /*bringsRow*/ false;
    QTest::newRow("dialog") << int(FancyBar::DialogStyle) << /*bringsRow*/ false;
}

void tst_FancyBar::menuBarBringsTheMenuRow()
{
    QFETCH(int, style);
    QFETCH(bool, bringsRow);
    FancyBarPrivate &d = data();
    d.showMenuWidget(true);
    QCOMPARE(d.m_bMenuWidgetVisible, false);
    d.createMenuWidget();
    d.m_style = static_cast<FancyBar::FancyStyle>(style);
    QMenuBar menuBar;
    menuBar.hide();

    d.showMenuBar(false);
    d.m_menuBar = &menuBar;
    d.showMenuBar(true);
    QCOMPARE(d.m_bMenuBarVisible, true);
    QVERIFY(!menuBar.isHidden());
    QCOMPARE(d.m_bMenuWidgetVisible, bringsRow);
    QCOMPARE(d.m_menuWidget->isHidden(), !bringsRow);

    // Calls that change nothing have no effect.
    d.showMenuWidget(true);
    menuBar.hide();
    d.m_menuWidget->hide();
    d.showMenuBar(true);
    d.showMenuWidget(true);
    QVERIFY(menuBar.isHidden());
    QVERIFY(d.m_menuWidget->isHidden());

    menuBar.show();
    d.m_menuWidget->show();
    d.showMenuBar(false);
    QCOMPARE(d.m_bMenuBarVisible, false);
    QVERIFY(menuBar.isHidden());
    QCOMPARE(d.m_bMenuWidgetVisible, !bringsRow);
    QCOMPARE(d.m_menuWidget->isHidden(), bringsRow);
    d.m_menuBar = nullptr;
}

void tst_FancyBar::hooksShowNothing()
{
    FancyBarPrivate &d = data();
    const QPalette before = bar->palette();
    QIcon icon;

    bar->setTextColor(Qt::green);
    d.setFancyStyle(FancyBar::DialogStyle);
    d.updateMenuColor();
    d.slotWindowIconChange(icon);

    QCOMPARE(d.m_menuTextColor, QColor(Qt::green));
    QCOMPARE(d.m_style, FancyBar::WindowStyle);
    QCOMPARE(bar->palette(), before);
    QCOMPARE(bar->styleSheet(), QString());
}

void tst_FancyBar::paintsNothingWhenIdle()
{
    QMenu menu;
    QAction action(QPixmap(16, 16), QStringLiteral("Action"));
    action.setMenu(&menu);
    window->setWindowFlags(Qt::Window | Qt::WindowMinMaxButtonsHint);
    bar->addAdditionalControl(&action, FancyBar::TitlePosition, 0);
    bar->updateWidgetFlags();
    bar->setTitleBarHeight(40);
    auto *layout = new QVBoxLayout(window.data());
    layout->addWidget(bar);
    layout->addStretch();

    // Shown to Qt only: the X server and the window manager ask for paints when they like.
    window->setAttribute(Qt::WA_DontShowOnScreen);
    const PaintCounter counter;
    window->resize(400, 200);
    window->show();
    QTRY_VERIFY(counter.total() >= 6);
    QCoreApplication::sendPostedEvents();

    const int before = counter.total();
    const auto isPainted = [&] { return counter.total() > before; };
    QVERIFY(!QTest::qWaitFor(isPainted, WatchedMilliseconds));

    TitleBarData::of(*bar->titleBar())->m_closeButton->update();
    QVERIFY(QTest::qWaitFor(isPainted));
}

QTEST_MAIN(tst_FancyBar)
#include "tst_FancyBar.moc"
