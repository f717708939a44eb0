#include "tests/fancy/privates.h"

#include <QAction>
#include <QHBoxLayout>
#include <QMenuBar>
#include <QScreen>
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
// What the fixed height of a widget is; -1 where it has none.
int fixedHeight(const QWidget *widget)
{
    return widget->minimumHeight() == widget->maximumHeight() ? widget->minimumHeight() : -1;
}
} // namespace

class tst_FancyBar : public QObject
{
    Q_OBJECT

private slots:
    void firstBarIsRed();
    void init();
    void cleanup();

    void registersItsWindow();
    void relaysTheTitleBarsSignals();
    void buildsTheTitleRow();
    void placesTheSystemButtonsAtTheRight();
    void hasNoSystemButtonsWithoutAWindow();
    void privatePartWithoutABarBuildsNothing();
    void buildsTheMenuRowOnRequest();
    void buildsOneMenuRow();
    void backgroundIsPaintedAndHandedOn();
    void invalidBackgroundIsNotTakenOver();
    void storesTheTextColor();
    void heightIsFixed_data();
    void heightIsFixed();
    void heightOfZeroIsKept();
    void sizeHintFollowsWidthAndHeight();
    void forwardsToTheTitleBar();
    void quickAccessStretchesTheLeftSpacer();
    void quickAccessTakesEffectAtOnce();
    void menuRowIsShown();
    void menuBarBringsTheMenuRow_data();
    void menuBarBringsTheMenuRow();
    void hooksDoNothing();

private:
    FancyBarPrivate &data() const { return *BarData::of(*bar); }

    QScopedPointer<QWidget> window;
    FancyBar *bar = nullptr;
};

// Stands first: it sees the colour that no bar has changed yet.
void tst_FancyBar::firstBarIsRed()
{
    QCOMPARE(bar->palette().color(QPalette::Window), QColor(255, 0, 0, 255));
    QVERIFY(bar->autoFillBackground());
    const QImage image = bar->grab().toImage();
    QCOMPARE(image.pixel(2, 2), qRgb(255, 0, 0));
}

void tst_FancyBar::init()
{
    if (qstrcmp(QTest::currentTestFunction(), "firstBarIsRed") != 0)
        *backgroundColor() = QColor(216, 217, 218);
    window.reset(new QWidget);
    bar = new FancyBar(window.data());
}

void tst_FancyBar::cleanup()
{
    window.reset();
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
    const auto *outer = qobject_cast<QHBoxLayout *>(bar->layout());
    QVERIFY(outer);
    QCOMPARE(outer->contentsMargins(), QMargins());
    QCOMPARE(outer->spacing(), 0);
    QCOMPARE(outer->count(), 1);
    const auto *rows = qobject_cast<QVBoxLayout *>(outer->itemAt(0)->layout());
    QVERIFY(rows);
    QCOMPARE(rows->contentsMargins(), QMargins());
    QCOMPARE(rows->spacing(), 0);
    QCOMPARE(rows->count(), 1);
    QCOMPARE(rows->itemAt(0)->widget(), d.m_titleWidget);
    QCOMPARE(d.m_titleWidget->parentWidget(), bar);
    QCOMPARE(d.m_titleWidget->sizePolicy().horizontalPolicy(), QSizePolicy::Expanding);
    QCOMPARE(d.m_titleWidget->sizePolicy().verticalPolicy(), QSizePolicy::Preferred);

    const auto *row = qobject_cast<QHBoxLayout *>(d.m_titleWidget->layout());
    QVERIFY(row);
    QCOMPARE(row->contentsMargins(), QMargins());
    QCOMPARE(row->spacing(), 0);
    QCOMPARE(row->count(), 4);
    QCOMPARE(row->itemAt(0)->spacerItem(), d.m_leftSpacerItem);
    QCOMPARE(row->itemAt(1)->layout(), d.m_titleAdditionalControlArea);
    QVERIFY(row->itemAt(2)->spacerItem());
    QCOMPARE(row->itemAt(2)->sizeHint(), QSize(0, 0));
    QCOMPARE(row->itemAt(3)->widget(), bar->titleBar()->systemGroup());
    QCOMPARE(d.m_systemGroup, bar->titleBar()->systemGroup());
    for (int i = 0; i < row->count(); ++i)
        QCOMPARE(row->stretch(i), 0);
    QCOMPARE(d.m_titleAdditionalControlArea->contentsMargins(), QMargins());
    QCOMPARE(d.m_titleAdditionalControlArea->count(), 0);

    QCOMPARE(d.m_leftSpacerItem->sizeHint(), QSize(0, 0));
    QCOMPARE(d.m_leftSpacerItem->sizePolicy(),
             QSizePolicy(QSizePolicy::Minimum, QSizePolicy::Minimum));
    QCOMPARE(d.m_rightSpacerItem->sizeHint(), QSize(0, 0));
    QCOMPARE(d.m_rightSpacerItem->sizePolicy(),
             QSizePolicy(QSizePolicy::Expanding, QSizePolicy::Minimum));
    QCOMPARE(d.m_logoLayout->contentsMargins(), QMargins());
    QCOMPARE(d.m_logoLayout->spacing(), 0);
    QVERIFY(!d.m_logoLayout->parent());
    QVERIFY(!d.m_menuWidget && !d.m_menuBar && !d.m_logoButton);
}

void tst_FancyBar::placesTheSystemButtonsAtTheRight()
{
    auto *layout = new QVBoxLayout(window.data());
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(bar);
    auto *control = new QWidget;
    control->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Preferred);
    bar->addAdditionalControl(control, FancyBar::TitlePosition, 6);
    bar->setTitleBarHeight(32);
    window->resize(400, 32);
    window->show();
    QVERIFY(QTest::qWaitForWindowExposed(window.data()));

    const QWidget *close = TitleBarData::of(*bar->titleBar())->m_closeButton;
    QCOMPARE(QRect(close->mapTo(window.data(), QPoint()), close->size()), QRect(350, 0, 50, 32));
    QCOMPARE(QRect(control->mapTo(window.data(), QPoint()), control->size()).right(), 350 - 1 - 1);
    QCOMPARE(control->mapTo(window.data(), QPoint()).x(), 6);
}

void tst_FancyBar::hasNoSystemButtonsWithoutAWindow()
{
    FancyBar alone(nullptr);
    const FancyBarPrivate &d = *BarData::of(alone);

    QVERIFY(alone.titleBar());
    QVERIFY(!alone.titleBar()->parent());
    QVERIFY(!alone.titleBar()->mainWidget());
    QVERIFY(!d.m_systemGroup);
    QCOMPARE(d.m_titleWidget->layout()->count(), 3);
    alone.setTitleBarHeight(40);
    alone.updateWidgetFlags();
    QCOMPARE(fixedHeight(d.m_titleWidget), 40);
}

void tst_FancyBar::privatePartWithoutABarBuildsNothing()
{
    FancyBarPrivate d;

    d.init();
    d.createTitleWidget();

    QVERIFY(!d.m_logoLayout);
    QVERIFY(!d.m_titleWidget);
    d.registerWidget(window.data());
    QCOMPARE(d.m_titleBar->mainWidget(), window.data());
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
    const auto *row = qobject_cast<QHBoxLayout *>(d.m_menuWidget->layout());
    QVERIFY(row);
    QCOMPARE(row->contentsMargins(), QMargins(1, 0, 0, 0));
    QCOMPARE(row->spacing(), 0);
    QCOMPARE(row->count(), 4);
    QCOMPARE(row->itemAt(0)->layout(), d.m_appButtonLayout);
    QCOMPARE(row->itemAt(1)->layout(), d.m_menuBarArea);
    QCOMPARE(row->itemAt(2)->spacerItem(), d.m_middleSpacerItem);
    QCOMPARE(row->itemAt(3)->layout(), d.m_menuAdditionalControlArea);
    QCOMPARE(d.m_appButtonLayout->contentsMargins(), QMargins(0, 2, 0, 2));
    for (const QHBoxLayout *area :
         {d.m_appButtonLayout, d.m_menuBarArea, d.m_menuAdditionalControlArea})
        QCOMPARE(area->spacing(), 0);
    QCOMPARE(d.m_menuBarArea->contentsMargins(), QMargins());
    QCOMPARE(d.m_menuAdditionalControlArea->contentsMargins(), QMargins());
    QCOMPARE(d.m_middleSpacerItem->sizePolicy(),
             QSizePolicy(QSizePolicy::Expanding, QSizePolicy::Minimum));
    QCOMPARE(d.m_middleSpacerItem->sizeHint(), QSize(0, 0));
}

void tst_FancyBar::buildsOneMenuRow()
{
    FancyBarPrivate &d = data();
    d.createMenuWidget();
    const QWidget *row = d.m_menuWidget;
    const QHBoxLayout *area = d.m_menuAdditionalControlArea;

    d.createMenuWidget();

    QCOMPARE(d.m_menuWidget, row);
    QCOMPARE(d.m_menuAdditionalControlArea, area);
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

void tst_FancyBar::storesTheTextColor()
{
    const QPalette before = bar->palette();

    bar->setTextColor(Qt::green);

    QCOMPARE(data().m_menuTextColor, QColor(Qt::green));
    QCOMPARE(bar->palette(), before);
    QCOMPARE(bar->styleSheet(), QString());
}

void tst_FancyBar::heightIsFixed_data()
{
    QTest::addColumn<int>("height");
    QTest::addColumn<int>("stored");

    QTest::newRow("the default") << 32 << 36;
    QTest::newRow("smallest") << 33 << 33;
    QTest::newRow("between") << 40 << 40;
    QTest::newRow("largest") << 47 << 47;
    QTest::newRow("too large") << 48 << 36;
    QTest::newRow("far too large") << 50 << 36;
    QTest::newRow("too small") << 20 << 36;
    QTest::newRow("zero") << 0 << 36;
    QTest::newRow("negative") << -40 << 36;
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

    d.showQuickAccessBar(true);
    QCOMPARE(d.m_bQuickAccessVisible, true);
    QCOMPARE(d.m_leftSpacerItem->sizePolicy(), on);
    QCOMPARE(d.m_leftSpacerItem->sizeHint(), QSize(0, 0));

    d.m_leftSpacerItem->changeSize(5, 5, QSizePolicy::Fixed, QSizePolicy::Fixed);
    d.showQuickAccessBar(true);
    QCOMPARE(d.m_leftSpacerItem->sizeHint(), QSize(5, 5));

    d.showQuickAccessBar(false);
    QCOMPARE(d.m_bQuickAccessVisible, false);
    QCOMPARE(d.m_leftSpacerItem->sizePolicy(), off);
    QCOMPARE(d.m_leftSpacerItem->sizeHint(), QSize(0, 0));

    delete d.m_titleWidget;
    d.showQuickAccessBar(true);
    QCOMPARE(d.m_bQuickAccessVisible, false);
}

void tst_FancyBar::quickAccessTakesEffectAtOnce()
{
    FancyBarPrivate &d = data();
    bar->resize(400, 32);
    window->resize(400, 100);
    window->show();
    QVERIFY(QTest::qWaitForWindowExposed(window.data()));
    const QRect narrow = d.m_leftSpacerItem->geometry();

    d.showQuickAccessBar(true);
    QTRY_VERIFY(d.m_leftSpacerItem->geometry().width() > narrow.width());

    d.showQuickAccessBar(false);
    QTRY_COMPARE(d.m_leftSpacerItem->geometry(), narrow);
}

void tst_FancyBar::menuRowIsShown()
{
    FancyBarPrivate &d = data();
    d.showMenuWidget(true);
    QCOMPARE(d.m_bMenuWidgetVisible, false);

    d.createMenuWidget();
    d.showMenuWidget(true);
    QCOMPARE(d.m_bMenuWidgetVisible, true);
    QVERIFY(!d.m_menuWidget->isHidden());

    d.m_menuWidget->hide();
    d.showMenuWidget(true);
    QVERIFY(d.m_menuWidget->isHidden());

    d.m_menuWidget->show();
    d.showMenuWidget(false);
    QCOMPARE(d.m_bMenuWidgetVisible, false);
    QVERIFY(d.m_menuWidget->isHidden());
}

void tst_FancyBar::menuBarBringsTheMenuRow_data()
{
    QTest::addColumn<int>("style");
    QTest::addColumn<bool>("bringsRow");

    QTest::newRow("window") << int(FancyBar::WindowStyle) << true;
    QTest::newRow("classic") << int(FancyBar::ClassicStyle) << true;
    QTest::newRow("merged") << int(FancyBar::MergedStyle) << false;
    QTest::newRow("dialog") << int(FancyBar::DialogStyle) << false;
}

void tst_FancyBar::menuBarBringsTheMenuRow()
{
    QFETCH(int, style);
    QFETCH(bool, bringsRow);
    FancyBarPrivate &d = data();
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

    menuBar.hide();
    d.showMenuBar(true);
    QVERIFY(menuBar.isHidden());

    menuBar.show();
    d.showMenuBar(false);
    QCOMPARE(d.m_bMenuBarVisible, false);
    QVERIFY(menuBar.isHidden());
    QCOMPARE(d.m_bMenuWidgetVisible, false);
    d.m_menuBar = nullptr;
}

void tst_FancyBar::hooksDoNothing()
{
    FancyBarPrivate &d = data();
    QIcon icon;

    d.setFancyStyle(FancyBar::DialogStyle);
    d.updateMenuColor();
    d.slotWindowIconChange(icon);
    d.aboutToShowMenu();
    d.aboutToHideMenu();

    QCOMPARE(d.m_style, FancyBar::WindowStyle);
}

QTEST_MAIN(tst_FancyBar)
#include "tst_FancyBar.moc"
