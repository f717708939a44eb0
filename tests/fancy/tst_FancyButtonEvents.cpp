#include "tests/fancy/privates.h"
#include "tests/support/pixels.h"
#include "tests/support/waits.h"

#include <QAction>
#include <QMenu>
#include <QMouseEvent>
#include <QSignalSpy>
#include <QTest>

Q_DECLARE_METATYPE(QMouseEvent *)
Q_DECLARE_METATYPE(Qt::MouseButton)

namespace {
constexpr QSize ButtonSize(60, 30);
constexpr QPoint ButtonPosition(40, 40);
constexpr QPoint Aside(5, 5);
constexpr QPoint Inside(30, 15);
constexpr QRgb HoverRgb = qRgb(10, 200, 30);
constexpr QRgb PressRgb = qRgb(200, 10, 30);
constexpr QRgb NormalRgb = qRgb(10, 30, 200);

//! Exposes the protected handlers, for events that Qt would not hand to them.
struct Button : FancyButton
{
    using FancyButton::enterEvent;
    using FancyButton::FancyButton;
    using FancyButton::leaveEvent;
    using FancyButton::mouseDoubleClickEvent;
    using FancyButton::mousePressEvent;
    using FancyButton::mouseReleaseEvent;
};

QMouseEvent mouseEvent(QEvent::Type type, Qt::MouseButton button = Qt::LeftButton,
                       const QPointF &position = Inside)
{
    return {type, position, button, button, Qt::NoModifier};
}
} // namespace

class tst_FancyButtonEvents : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();

    void realPointerBringsAndTakesTheHoverColor_data();
    void realPointerBringsAndTakesTheHoverColor();
    void actsOnTheLeftMouseButtonWhenEnabled_data();
    void actsOnTheLeftMouseButtonWhenEnabled();
    void ignoresMissingEvents();
    void clicksWhereItIsReleased_data();
    void clicksWhereItIsReleased();
    void releaseWithoutAPressClicks();
    void staysPressedWhenDisabledMeanwhile();
    void menuIsTriggeredByThePress_data();
    void menuIsTriggeredByThePress();
    void mayBeDestroyedWhileItsMenuIsTriggered();
    void clicksWithoutTheMouseOpenNoMenu_data();
    void clicksWithoutTheMouseOpenNoMenu();

private:
    QRgb centre() const;
    FancyButtonPrivate &data() const { return *ButtonData::of(*button); }

    QScopedPointer<QWidget> window;
    Button *button = nullptr;
};

void tst_FancyButtonEvents::initTestCase()
{
    qRegisterMetaType<QMouseEvent *>();
}

void tst_FancyButtonEvents::init()
{
    QApplication::setStyle(QStringLiteral("fusion"));
    window.reset(new QWidget);
    window->setFixedSize(200, 120);
    button = new Button(window.data());
    button->setGeometry(QRect(ButtonPosition, ButtonSize));
    button->setHasBorder(false);
    button->setHoverColor(QColor(HoverRgb));
    button->setPressColor(QColor(PressRgb));
    button->setNormalColor(QColor(NormalRgb));
    window->move(100, 100);
    window->show();
    QVERIFY(QTest::qWaitForWindowActive(window.data(), WindowTimeoutMs));
    QTest::mouseMove(window.data(), Aside);
    QTRY_VERIFY(window->underMouse());
    QTRY_VERIFY(!data().m_bMouseHover);
}

// What the screen shows in the middle of the button.
QRgb tst_FancyButtonEvents::centre() const
{
    const QPoint position = window->mapToGlobal(ButtonPosition + Inside);
    return screenshot(QRect(position, QSize(1, 1))).pixel(0, 0);
}

void tst_FancyButtonEvents::realPointerBringsAndTakesTheHoverColor_data()
{
    QTest::addColumn<QString>("style");

    QTest::newRow("Fusion") << "fusion";
    QTest::newRow("Windows") << "windows";
}

void tst_FancyButtonEvents::realPointerBringsAndTakesTheHoverColor()
{
    QFETCH(QString, style);
    QApplication::setStyle(style);
    QTRY_COMPARE(centre(), NormalRgb);

    QTest::mouseMove(button, Inside);
    QTRY_COMPARE(centre(), HoverRgb);
    QVERIFY(data().m_bMouseHover);

    QTest::mouseMove(window.data(), Aside);
    QTRY_COMPARE(centre(), NormalRgb);
    QVERIFY(!data().m_bMouseHover);
}

void tst_FancyButtonEvents::actsOnTheLeftMouseButtonWhenEnabled_data()
{
    QTest::addColumn<Qt::MouseButton>("mouseButton");
    QTest::addColumn<bool>("enabled");
    QTest::addColumn<bool>("acts");

    QTest::newRow("left") << Qt::LeftButton << /*enabled*/ true << /*acts*/ true;
    QTest::newRow("right") << Qt::RightButton << /*enabled*/ true << /*acts*/ false;
    QTest::newRow("middle") << Qt::MiddleButton << /*enabled*/ true << /*acts*/ false;
    QTest::newRow("back") << Qt::BackButton << /*enabled*/ true << /*acts*/ false;
    QTest::newRow("left, disabled") << Qt::LeftButton << /*enabled*/ false << /*acts*/ false;
    QTest::newRow("right, disabled") << Qt::RightButton << /*enabled*/ false << /*acts*/ false;
}

void tst_FancyButtonEvents::actsOnTheLeftMouseButtonWhenEnabled()
{
    QFETCH(Qt::MouseButton, mouseButton);
    QFETCH(bool, enabled);
    QFETCH(bool, acts);
    button->setEnabled(enabled);
    button->setHasMenu(true);
    const QSignalSpy clicked(button, &FancyButton::clicked);
    const QSignalSpy doubleClicked(button, &FancyButton::doubleClicked);
    const QSignalSpy menuTriggered(button, &FancyButton::menuTriggered);
    QMouseEvent press = mouseEvent(QEvent::MouseButtonPress, mouseButton);
    QMouseEvent release = mouseEvent(QEvent::MouseButtonRelease, mouseButton);
    QMouseEvent doubleClick = mouseEvent(QEvent::MouseButtonDblClick, mouseButton);
    const int count = acts ? 1 : 0;

    button->mouseDoubleClickEvent(&doubleClick);
    QCOMPARE(doubleClicked.count(), count);
    QVERIFY(!data().m_bMousePress);
    button->mousePressEvent(&press);
    QCOMPARE(menuTriggered.count(), count);
    QCOMPARE(data().m_bMousePress, acts);
    QTRY_COMPARE(centre(), acts ? PressRgb : NormalRgb);
    QCOMPARE(clicked.count(), 0);

    button->select(true);
    QCoreApplication::sendEvent(button, &release);
    QCOMPARE(data().m_bMousePress, !acts);
    QCOMPARE(clicked.count(), count);
    QCOMPARE(doubleClicked.count(), count);

    button->enterEvent(nullptr);
    QCOMPARE(data().m_bMouseHover, enabled);
}

void tst_FancyButtonEvents::ignoresMissingEvents()
{
    const QSignalSpy clicked(button, &FancyButton::clicked);
    const QSignalSpy doubleClicked(button, &FancyButton::doubleClicked);

    button->mousePressEvent(nullptr);
    button->mouseReleaseEvent(nullptr);
    button->mouseDoubleClickEvent(nullptr);
    button->enterEvent(nullptr);
    QVERIFY(data().m_bMouseHover);
    button->leaveEvent(nullptr);
    QVERIFY(!data().m_bMouseHover);
    QVERIFY(!data().m_bMousePress);
    QCOMPARE(clicked.count(), 0);
    QCOMPARE(doubleClicked.count(), 0);
}

void tst_FancyButtonEvents::clicksWhereItIsReleased_data()
{
    QTest::addColumn<QPointF>("position");
    QTest::addColumn<int>("clicks");

    const qreal width = ButtonSize.width();
    const qreal height = ButtonSize.height();
    QTest::newRow("middle") << QPointF(30, 15) << /*clicks*/ 1;
    QTest::newRow("first pixel") << QPointF(0, 0) << /*clicks*/ 1;
    QTest::newRow("last pixel") << QPointF(width - 1, height - 1) << /*clicks*/ 1;
    QTest::newRow("left of it") << QPointF(-1, 15) << /*clicks*/ 0;
    QTest::newRow("above it") << QPointF(30, -1) << /*clicks*/ 0;
    QTest::newRow("right of it") << QPointF(width, 15) << /*clicks*/ 0;
    QTest::newRow("below it") << QPointF(30, height) << /*clicks*/ 0;
    QTest::newRow("rounded to the first pixel") << QPointF(-0.4, -0.4) << /*clicks*/ 1;
    QTest::newRow("rounded out at the left") << QPointF(-0.6, 15) << /*clicks*/ 0;
    QTest::newRow("rounded to the last pixel")
            << QPointF(width - 0.6, height - 0.6) << /*clicks*/ 1;
    QTest::newRow("rounded out at the right") << QPointF(width - 0.4, 15) << /*clicks*/ 0;
}

void tst_FancyButtonEvents::clicksWhereItIsReleased()
{
    QFETCH(QPointF, position);
    QFETCH(int, clicks);
    const QSignalSpy clicked(button, &FancyButton::clicked);
    const QSignalSpy pressed(button, &FancyButton::pressed);
    const QSignalSpy released(button, &FancyButton::released);
    button->setCheckable(true);
    QTest::mousePress(button, Qt::LeftButton, Qt::NoModifier, Inside);
    QVERIFY(data().m_bMousePress);
    QTRY_COMPARE(centre(), PressRgb);
    QVERIFY(!button->isDown());

    QMouseEvent release = mouseEvent(QEvent::MouseButtonRelease, Qt::LeftButton, position);
    QCoreApplication::sendEvent(button, &release);

    QCOMPARE(clicked.count(), clicks);
    if (clicks > 0)
        QCOMPARE(clicked.first(), QVariantList {false});
    QVERIFY(!button->isChecked());
    QVERIFY(!data().m_bMousePress);
    QTRY_COMPARE(centre(), NormalRgb);
    // The base class never handles the events.
    QCOMPARE(pressed.count(), 0);
    QCOMPARE(released.count(), 0);
}

void tst_FancyButtonEvents::releaseWithoutAPressClicks()
{
    const QSignalSpy clicked(button, &FancyButton::clicked);

    QTest::mousePress(window.data(), Qt::LeftButton, Qt::NoModifier, Aside);
    QTest::mouseRelease(button, Qt::LeftButton, Qt::NoModifier, Inside);

    QCOMPARE(clicked.count(), 1);
}

// What reaches a disabled widget is not handed to its handlers.
void tst_FancyButtonEvents::staysPressedWhenDisabledMeanwhile()
{
    const QSignalSpy clicked(button, &FancyButton::clicked);
    QTest::mousePress(button, Qt::LeftButton, Qt::NoModifier, Inside);

    button->setEnabled(false);
    QTest::mouseRelease(button, Qt::LeftButton, Qt::NoModifier, Inside);
    QVERIFY(data().m_bMousePress);
    QTRY_COMPARE(centre(), PressRgb);
    QCOMPARE(clicked.count(), 0);

    button->setEnabled(true);
    QTest::mouseRelease(button, Qt::LeftButton, Qt::NoModifier, Inside);
    QVERIFY(!data().m_bMousePress);
    QCOMPARE(clicked.count(), 1);
}

void tst_FancyButtonEvents::menuIsTriggeredByThePress_data()
{
    QTest::addColumn<bool>("flag");
    QTest::addColumn<bool>("actionMenu");

    QTest::newRow("by the flag") << /*flag*/ true << /*actionMenu*/ false;
    QTest::newRow("by the default action's menu") << /*flag*/ false << /*actionMenu*/ true;
    QTest::newRow("by both") << /*flag*/ true << /*actionMenu*/ true;
    QTest::newRow("by neither") << /*flag*/ false << /*actionMenu*/ false;
}

void tst_FancyButtonEvents::menuIsTriggeredByThePress()
{
    QFETCH(bool, flag);
    QFETCH(bool, actionMenu);
    QMenu menu;
    menu.addAction(QStringLiteral("entry"));
    QAction action(QStringLiteral("action"));
    if (actionMenu)
        action.setMenu(&menu);
    button->setDefaultAction(&action);
    button->setHasMenu(flag);
    const QSignalSpy menuTriggered(button, &FancyButton::menuTriggered);
    bool wasPressed = false;
    const QObject watcher;
    connect(button, &FancyButton::menuTriggered, &watcher,
            [&] { wasPressed = data().m_bMousePress; });

    QMouseEvent press = mouseEvent(QEvent::MouseButtonPress);
    QCoreApplication::sendEvent(button, &press);

    const bool isTriggered = flag || actionMenu;
    QCOMPARE(menuTriggered.count(), isTriggered ? 1 : 0);
    QCOMPARE(wasPressed, isTriggered);
    if (isTriggered)
        QCOMPARE(menuTriggered.first().first().value<QMouseEvent *>(), &press);
    QVERIFY(!menu.isVisible());
    QVERIFY(!QApplication::activePopupWidget());
    QVERIFY(!button->isDown());
}

void tst_FancyButtonEvents::mayBeDestroyedWhileItsMenuIsTriggered()
{
    auto *opener = new Button(nullptr);
    opener->setHasMenu(true);
    const QSignalSpy destroyed(opener, &QObject::destroyed);
    connect(opener, &FancyButton::menuTriggered, window.data(), [opener] { delete opener; });

    QMouseEvent press = mouseEvent(QEvent::MouseButtonPress);
    opener->mousePressEvent(&press);

    QCOMPARE(destroyed.count(), 1);
}

void tst_FancyButtonEvents::clicksWithoutTheMouseOpenNoMenu_data()
{
    QTest::addColumn<bool>("byAction");

    QTest::newRow("own menu") << false;
    QTest::newRow("menu of the action") << true;
}

void tst_FancyButtonEvents::clicksWithoutTheMouseOpenNoMenu()
{
    QFETCH(bool, byAction);
    QMenu menu;
    menu.addAction(QStringLiteral("Entry"));
    // A tool button would open it within the press, and stay there until it is closed.
    connect(&menu, &QMenu::aboutToShow, &menu, &QMenu::close, Qt::QueuedConnection);
    const QSignalSpy opened(&menu, &QMenu::aboutToShow);
    QAction action(QStringLiteral("Action"));
    if (byAction) {
        action.setMenu(&menu);
        button->setDefaultAction(&action);
    } else {
        button->setMenu(&menu);
    }
    button->setPopupMode(QToolButton::InstantPopup);
    button->setHasMenu(true);
    button->setCheckable(true);
    const QSignalSpy clicked(button, &FancyButton::clicked);
    const QSignalSpy menuTriggered(button, &FancyButton::menuTriggered);

    QTest::keyPress(button, Qt::Key_Space);
    QVERIFY(!data().m_bMousePress);
    QCOMPARE(clicked.count(), 0);
    QTest::keyRelease(button, Qt::Key_Space);
    QCOMPARE(clicked.count(), 1);
    // An action keeps its button from being checked.
    QCOMPARE(clicked.first(), QVariantList {!byAction});
    QCOMPARE(button->isChecked(), !byAction);
    button->click();
    QCOMPARE(clicked.count(), 2);

    QCOMPARE(opened.count(), 0);
    QCOMPARE(menuTriggered.count(), 0);
}

QTEST_MAIN(tst_FancyButtonEvents)
#include "tst_FancyButtonEvents.moc"
