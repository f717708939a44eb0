#include "tests/fancy/privates.h"

#include <QAction>
#include <QMetaMethod>
#include <QSignalSpy>
#include <QTest>

#include <algorithm>
#include <initializer_list>
#include <utility>

/*
    The shape of the kit's classes: their signals and slots, the fields of their private parts in
    order, with their initial values, and what they do without a private part.
*/

namespace {
using ColorSetter = void (FancyButton::*)(const QColor &);
using ColorGetter = QColor (FancyButton::*)() const;
using IconSetter = void (FancyTitleBar::*)(QIcon &);
using FlagSetter = void (FancyTitleBar::*)(bool);

//! The own methods of a class, of one kind, in meta-object order.
QStringList ownMethods(const QMetaObject &meta, QMetaMethod::MethodType type)
{
    QStringList signatures;
    for (int i = meta.methodOffset(); i < meta.methodCount(); ++i) {
        if (meta.method(i).methodType() == type)
            signatures << QString::fromLatin1(meta.method(i).methodSignature());
    }
    return signatures;
}

//! Whether \a fields of one object stand there in the order in which they are given.
template<typename... Fields>
bool areDeclaredInOrder(const Fields &...fields)
{
    const std::initializer_list<quintptr> addresses {quintptr(&fields)...};
    return std::is_sorted(addresses.begin(), addresses.end());
}
} // namespace

class tst_FancyPrivates : public QObject
{
    Q_OBJECT

private slots:
    void declaresMethodsAndEnums();
    void buttonFields();
    void titleBarFields();
    void barFields();
    void buttonWithoutPrivatePart();
    void titleBarWithoutPrivatePart();
    void barWithoutPrivatePart();
};

void tst_FancyPrivates::declaresMethodsAndEnums()
{
    const QStringList none;
    const auto signal = QMetaMethod::Signal;
    const auto slot = QMetaMethod::Slot;
    QCOMPARE(ownMethods(FancyButton::staticMetaObject, signal),
             QStringList({"menuTriggered(QMouseEvent*)", "doubleClicked()"}));
    QCOMPARE(ownMethods(FancyButton::staticMetaObject, slot), none);
    QCOMPARE(ownMethods(FancyTitleBar::staticMetaObject, signal),
             QStringList({"windowResizable(bool)", "windowMovable(bool)",
                          "windowIconChanged(QIcon&)", "closeClicked()", "moveContinousOver()"}));
    QCOMPARE(ownMethods(FancyTitleBar::staticMetaObject, slot), none);
    QCOMPARE(ownMethods(FancyTitleBarPrivate::staticMetaObject, slot),
             QStringList({"slotSysButtonClicked()", "systemMenuTriggered(QMouseEvent*)"}));
    QCOMPARE(ownMethods(FancyTitleBarPrivate::staticMetaObject, signal), none);
    QCOMPARE(ownMethods(FancyBar::staticMetaObject, signal),
             QStringList({"maximizationChanged(bool)"}));
    QCOMPARE(ownMethods(FancyBar::staticMetaObject, slot), none);
    QCOMPARE(ownMethods(FancyBarPrivate::staticMetaObject, slot),
             QStringList({"aboutToShowMenu()", "aboutToHideMenu()", "menuTriggered(QMouseEvent*)",
                          "slotWindowIconChange(QIcon&)"}));

    static_assert(FancyBar::TitlePosition == 0);
    static_assert(FancyBar::MenuPosition == 1);
    static_assert(FancyBar::WindowStyle == 0);
    static_assert(FancyBar::ClassicStyle == 1);
    static_assert(FancyBar::MergedStyle == 2);
    static_assert(FancyBar::DialogStyle == 3);
}

void tst_FancyPrivates::buttonFields()
{
    const FancyButtonPrivate d;

    QVERIFY(areDeclaredInOrder(d.q, d.m_hoverColor, d.m_pressColor, d.m_textColor, d.m_normalColor,
                               d.m_bMouseHover, d.m_bMousePress, d.m_hasBorder, d.m_bRound,
                               d.m_hasMenu));
    QVERIFY(!d.q);
    QVERIFY(!d.m_bMouseHover);
    QVERIFY(!d.m_bMousePress);
    QVERIFY(!d.m_bRound);
    QVERIFY(!d.m_hasMenu);
    QCOMPARE(d.m_hoverColor, QColor(255, 255, 255, 50));
    QCOMPARE(d.m_pressColor, QColor(0, 0, 0, 50));
    QCOMPARE(d.m_textColor, QColor(255, 255, 255));
    QCOMPARE(d.m_normalColor, QColor());
    QCOMPARE(d.m_hasBorder, true);
}

void tst_FancyPrivates::titleBarFields()
{
    const FancyTitleBarPrivate d;

    QVERIFY(areDeclaredInOrder(
            d.q, d.m_mainWidget, d.m_titleWidget, d.m_systemGroup, d.m_maximizeButton,
            d.m_minimizeButton, d.m_closeButton, d.m_menu, d.m_maximizeAction, d.m_minimizeAction,
            d.m_restoreAction, d.m_closeAction, d.m_closeIcon, d.m_minimizeIcon, d.m_maximizeIcon,
            d.m_normalIcon, d.m_bDarkIcon, d.m_windowFlags, d.m_currentScreen,
            d.m_bLeftButtonPressed, d.m_bLeftButtonDbClicked, d.m_bLeftButtonTitlePressed,
            d.m_bCursorShapeChanged, d.m_bWidgetMaximizable, d.m_bWidgetResizable,
            d.m_bWidgetMovable, d.m_movePoint, d._eventContinous));
    QVERIFY(!d.q);
    QVERIFY(!d.m_mainWidget);
    QVERIFY(!d.m_titleWidget);
    QVERIFY(!d.m_systemGroup);
    QVERIFY(!d.m_maximizeButton);
    QVERIFY(!d.m_minimizeButton);
    QVERIFY(!d.m_closeButton);
    QVERIFY(!d.m_menu);
    QVERIFY(!d.m_maximizeAction);
    QVERIFY(!d.m_minimizeAction);
    QVERIFY(!d.m_restoreAction);
    QVERIFY(!d.m_closeAction);
    QVERIFY(!d._eventContinous);
    QVERIFY(!d.m_bDarkIcon);
    QVERIFY(!d.m_windowFlags);
    QVERIFY(!d.m_currentScreen);
    QVERIFY(!d.m_bLeftButtonPressed);
    QVERIFY(!d.m_bLeftButtonDbClicked);
    QVERIFY(!d.m_bCursorShapeChanged);
    QVERIFY(!d.m_bWidgetMaximizable);
    QVERIFY(!d.m_bWidgetResizable);
    QCOMPARE(d.m_bLeftButtonTitlePressed, true);
    QCOMPARE(d.m_bWidgetMovable, true);
    QCOMPARE(d.m_movePoint, QPoint(0, 0));
}

void tst_FancyPrivates::barFields()
{
    const FancyBarPrivate d;

    QVERIFY(areDeclaredInOrder(
            d.q, d.m_logoLayout, d.m_titleWidget, d.m_titleBar, d.m_logoButton, d.m_leftSpacerItem,
            d.m_rightSpacerItem, d.m_titleAdditionalControlArea, d.m_systemGroup, d.m_menuWidget,
            d.m_appButtonLayout, d.m_menuBar, d.m_menuAdditionalControlArea, d.m_menuBarArea,
            d.m_middleSpacerItem, d.m_additionalButtons, d.m_menuButton, d.m_style,
            d.m_menuTextColor, d.m_menuHoverColor, d.m_menuPressColor, d.m_titleBarHeight,
            d.m_bQuickAccessVisible, d.m_bMenuBarVisible, d.m_bMenuWidgetVisible));
    QVERIFY(!d.q);
    QVERIFY(!d.m_logoLayout);
    QVERIFY(!d.m_titleWidget);
    QVERIFY(!d.m_titleBar);
    QVERIFY(!d.m_logoButton);
    QVERIFY(!d.m_leftSpacerItem);
    QVERIFY(!d.m_rightSpacerItem);
    QVERIFY(!d.m_titleAdditionalControlArea);
    QVERIFY(!d.m_systemGroup);
    QVERIFY(!d.m_menuWidget);
    QVERIFY(!d.m_appButtonLayout);
    QVERIFY(!d.m_menuBar);
    QVERIFY(!d.m_menuAdditionalControlArea);
    QVERIFY(!d.m_menuBarArea);
    QVERIFY(!d.m_middleSpacerItem);
    QVERIFY(!d.m_menuButton);
    QVERIFY(!d.m_bQuickAccessVisible);
    QVERIFY(!d.m_bMenuBarVisible);
    QVERIFY(!d.m_bMenuWidgetVisible);
    QCOMPARE(d.m_additionalButtons, QList<FancyButton *>());
    QCOMPARE(d.m_style, FancyBar::WindowStyle);
    QCOMPARE(d.m_menuTextColor, QColor(250, 250, 250));
    QCOMPARE(d.m_menuHoverColor, QColor(255, 255, 255, 50));
    QCOMPARE(d.m_menuPressColor, QColor(255, 255, 255, 50));
    QCOMPARE(d.m_titleBarHeight, 32);
}

void tst_FancyPrivates::buttonWithoutPrivatePart()
{
    FancyButton button(nullptr);
    const QString sheet = button.styleSheet();
    const QScopedPointer<FancyButtonPrivate> kept(std::exchange(ButtonData::of(button), nullptr));
    const QSignalSpy clicks(&button, &FancyButton::clicked);
    const QSignalSpy doubleClicks(&button, &FancyButton::doubleClicked);

    for (const ColorSetter set :
         {&FancyButton::setHoverColor, &FancyButton::setPressColor, &FancyButton::setTextColor,
          &FancyButton::setNormalColor, &FancyButton::setColor})
        (button.*set)(Qt::red);
    for (const ColorGetter get : {&FancyButton::hoverColor, &FancyButton::pressColor,
                                  &FancyButton::textColor, &FancyButton::normalColor})
        QVERIFY(!(button.*get)().isValid());
    button.select(true);
    button.setHasMenu(true);
    button.setHasBorder(false);
    button.setRound(true);
    QTest::mouseClick(&button, Qt::LeftButton);
    QTest::mouseDClick(&button, Qt::LeftButton);
    for (const QEvent::Type type : {QEvent::Enter, QEvent::Leave}) {
        QEvent event(type);
        QCoreApplication::sendEvent(&button, &event);
    }
    QVERIFY(!button.grab().isNull());

    QVERIFY(!button.hasMenu());
    QCOMPARE(button.styleSheet(), sheet);
    QCOMPARE(clicks.count(), 0);
    QCOMPARE(doubleClicks.count(), 0);
}

void tst_FancyPrivates::titleBarWithoutPrivatePart()
{
    QWidget window;
    FancyTitleBar bar(&window);
    const QScopedPointer<FancyTitleBarPrivate> kept(std::exchange(TitleBarData::of(bar), nullptr));
    QIcon icon;

    bar.setTitleWidget(&window);
    for (const IconSetter set : {&FancyTitleBar::setCloseIcon, &FancyTitleBar::setMinimizeIcon,
                                 &FancyTitleBar::setMaximizeIcon, &FancyTitleBar::setNormalIcon})
        (bar.*set)(icon);
    for (const FlagSetter set :
         {&FancyTitleBar::setIconDark, &FancyTitleBar::setWidgetResizable,
          &FancyTitleBar::setWidgetMovable, &FancyTitleBar::setWidgetMaximizable})
        (bar.*set)(true);
    bar.updateWidgetFlags();
    QEvent event(QEvent::WindowStateChange);

    QVERIFY(!bar.mainWidget());
    QVERIFY(!bar.systemGroup());
    QVERIFY(!bar.resizable());
    QVERIFY(!bar.eventFilter(&window, &event));
}

void tst_FancyPrivates::barWithoutPrivatePart()
{
    FancyBar bar(nullptr);
    QWidget control;
    QAction action(nullptr);
    FancyBarPrivate *kept = std::exchange(BarData::of(bar), nullptr);

    QVERIFY(!bar.titleBar());
    bar.setTextColor(Qt::red);
    bar.setBackgroundColor(Qt::green);
    bar.addAdditionalControl(&control, FancyBar::TitlePosition, 0);
    QVERIFY(!bar.addAdditionalControl(&action, FancyBar::TitlePosition, 0));
    bar.setWidgetResizable(true);
    bar.setTitleBarHeight(40);
    bar.updateWidgetFlags();

    QCOMPARE(bar.sizeHint(), QSize(-1, -1));
    QCOMPARE(bar.maximumHeight(), QWIDGETSIZE_MAX);
    QVERIFY(!control.parent());
    QCOMPARE(kept->m_menuTextColor, QColor(250, 250, 250));
    BarData::of(bar) = kept;
}

QTEST_MAIN(tst_FancyPrivates)
#include "tst_FancyPrivates.moc"
