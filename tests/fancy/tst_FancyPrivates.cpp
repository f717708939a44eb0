#include "tests/fancy/privates.h"

#include <QAction>
#include <QMetaMethod>
#include <QSignalSpy>
#include <QTest>

#include <algorithm>
#include <initializer_list>

/*
    The shape of the kit's classes: their signals and slots, the fields of their private parts in
    order, with types and initial values, and what they do without a private part.
*/

namespace {
using ColorSetter = void (FancyButton::*)(const QColor &);
using ColorGetter = QColor (FancyButton::*)() const;
using IconSetter = void (FancyTitleBar::*)(QIcon &);
using FlagSetter = void (FancyTitleBar::*)(bool);

struct Button : FancyButton
{
    using FancyButton::enterEvent;
    using FancyButton::FancyButton;
    using FancyButton::leaveEvent;
    using FancyButton::mouseDoubleClickEvent;
    using FancyButton::mousePressEvent;
    using FancyButton::mouseReleaseEvent;
};

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

template<typename Class, typename... Fields>
bool isDeclarationOrder(const Class &object, Fields Class::*...fields)
{
    const std::initializer_list<quintptr> addresses {quintptr(&(object.*fields))...};
    return std::is_sorted(addresses.begin(), addresses.end());
}

//! Whether \a object starts with null in each of these \a fields, all of them of one type.
template<typename Type, typename Class>
bool areNull(const Class &object, std::initializer_list<Type * Class::*> fields)
{
    return std::all_of(fields.begin(), fields.end(),
                       [&object](Type *Class::*field) { return !(object.*field); });
}

template<typename Class>
bool areFalse(const Class &object, std::initializer_list<bool Class::*> fields)
{
    return std::none_of(fields.begin(), fields.end(),
                        [&object](bool Class::*field) { return object.*field; });
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
    void buttonWithoutEvents();
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

    static_assert(FancyBar::TitlePosition == 0 && FancyBar::MenuPosition == 1);
    static_assert(FancyBar::WindowStyle == 0 && FancyBar::ClassicStyle == 1);
    static_assert(FancyBar::MergedStyle == 2 && FancyBar::DialogStyle == 3);
}

void tst_FancyPrivates::buttonFields()
{
    using P = FancyButtonPrivate;
    const P d;

    QVERIFY(isDeclarationOrder(d, &P::q, &P::m_hoverColor, &P::m_pressColor, &P::m_textColor,
                               &P::m_normalColor, &P::m_bMouseHover, &P::m_bMousePress,
                               &P::m_hasBorder, &P::m_bRound, &P::m_hasMenu));
    QVERIFY(areNull<FancyButton>(d, {&P::q}));
    QCOMPARE(d.m_hoverColor, QColor(255, 255, 255, 50));
    QCOMPARE(d.m_pressColor, QColor(0, 0, 0, 50));
    QCOMPARE(d.m_textColor, QColor(255, 255, 255));
    QCOMPARE(d.m_normalColor, QColor());
    QVERIFY(areFalse(d, {&P::m_bMouseHover, &P::m_bMousePress, &P::m_bRound, &P::m_hasMenu}));
    QCOMPARE(d.m_hasBorder, true);
}

void tst_FancyPrivates::titleBarFields()
{
    using P = FancyTitleBarPrivate;
    const P d;

    QVERIFY(isDeclarationOrder(
            d, &P::q, &P::m_mainWidget, &P::m_titleWidget, &P::m_systemGroup, &P::m_maximizeButton,
            &P::m_minimizeButton, &P::m_closeButton, &P::m_menu, &P::m_maximizeAction,
            &P::m_minimizeAction, &P::m_restoreAction, &P::m_closeAction, &P::m_closeIcon,
            &P::m_minimizeIcon, &P::m_maximizeIcon, &P::m_normalIcon, &P::m_bDarkIcon,
            &P::m_windowFlags, &P::m_currentScreen, &P::m_bLeftButtonPressed,
            &P::m_bLeftButtonDbClicked, &P::m_bLeftButtonTitlePressed, &P::m_bCursorShapeChanged,
            &P::m_bWidgetMaximizable, &P::m_bWidgetResizable, &P::m_bWidgetMovable, &P::m_movePoint,
            &P::_eventContinous));
    QVERIFY(areNull<FancyTitleBar>(d, {&P::q}));
    QVERIFY(areNull<QWidget>(d, {&P::m_mainWidget, &P::m_titleWidget, &P::m_systemGroup}));
    QVERIFY(areNull<FancyButton>(d,
                                 {&P::m_maximizeButton, &P::m_minimizeButton, &P::m_closeButton}));
    QVERIFY(areNull<QMenu>(d, {&P::m_menu}));
    QVERIFY(areNull<QAction>(d, {&P::m_maximizeAction, &P::m_minimizeAction, &P::m_restoreAction,
                                 &P::m_closeAction}));
    QVERIFY(areNull<QMouseEvent>(d, {&P::_eventContinous}));
    QVERIFY(areFalse(d, {&P::m_bDarkIcon, &P::m_bLeftButtonPressed, &P::m_bLeftButtonDbClicked,
                         &P::m_bCursorShapeChanged, &P::m_bWidgetMaximizable,
                         &P::m_bWidgetResizable}));
    QCOMPARE(d.m_bLeftButtonTitlePressed, true);
    QCOMPARE(d.m_bWidgetMovable, true);
    QCOMPARE(d.m_windowFlags, Qt::WindowFlags());
    QCOMPARE(d.m_currentScreen, 0);
    QCOMPARE(d.m_movePoint, QPoint(0, 0));
}

void tst_FancyPrivates::barFields()
{
    using P = FancyBarPrivate;
    const P d;

    QVERIFY(isDeclarationOrder(
            d, &P::q, &P::m_logoLayout, &P::m_titleWidget, &P::m_titleBar, &P::m_logoButton,
            &P::m_leftSpacerItem, &P::m_rightSpacerItem, &P::m_titleAdditionalControlArea,
            &P::m_systemGroup, &P::m_menuWidget, &P::m_appButtonLayout, &P::m_menuBar,
            &P::m_menuAdditionalControlArea, &P::m_menuBarArea, &P::m_middleSpacerItem,
            &P::m_additionalButtons, &P::m_menuButton, &P::m_style, &P::m_menuTextColor,
            &P::m_menuHoverColor, &P::m_menuPressColor, &P::m_titleBarHeight,
            &P::m_bQuickAccessVisible, &P::m_bMenuBarVisible, &P::m_bMenuWidgetVisible));
    QVERIFY(areNull<FancyBar>(d, {&P::q}));
    QVERIFY(areNull<FancyTitleBar>(d, {&P::m_titleBar}));
    QVERIFY(areNull<FancyButton>(d, {&P::m_menuButton}));
    QVERIFY(areNull<QToolButton>(d, {&P::m_logoButton}));
    QVERIFY(areNull<QMenuBar>(d, {&P::m_menuBar}));
    QVERIFY(areNull<QWidget>(d, {&P::m_titleWidget, &P::m_systemGroup, &P::m_menuWidget}));
    QVERIFY(areNull<QSpacerItem>(
            d, {&P::m_leftSpacerItem, &P::m_rightSpacerItem, &P::m_middleSpacerItem}));
    QVERIFY(areNull<QHBoxLayout>(d, {&P::m_logoLayout, &P::m_titleAdditionalControlArea,
                                     &P::m_appButtonLayout, &P::m_menuAdditionalControlArea,
                                     &P::m_menuBarArea}));
    QVERIFY(areFalse(d,
                     {&P::m_bQuickAccessVisible, &P::m_bMenuBarVisible, &P::m_bMenuWidgetVisible}));
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

void tst_FancyPrivates::buttonWithoutEvents()
{
    Button button(nullptr);
    const QSignalSpy clicks(&button, &FancyButton::clicked);
    const QSignalSpy doubleClicks(&button, &FancyButton::doubleClicked);

    button.mousePressEvent(nullptr);
    button.mouseReleaseEvent(nullptr);
    button.mouseDoubleClickEvent(nullptr);
    button.enterEvent(nullptr);
    QCOMPARE(ButtonData::of(button)->m_bMouseHover, true);
    button.leaveEvent(nullptr);
    QCOMPARE(ButtonData::of(button)->m_bMouseHover, false);

    QCOMPARE(ButtonData::of(button)->m_bMousePress, false);
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
