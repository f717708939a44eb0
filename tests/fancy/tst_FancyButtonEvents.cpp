#include "tests/fancy/privates.h"

#include <QAction>
#include <QCursor>
#include <QMenu>
#include <QMouseEvent>
#include <QScreen>
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
} // namespace

class tst_FancyButtonEvents : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();

    void realPointerBringsAndTakesTheHoverColor_data();
    void realPointerBringsAndTakesTheHoverColor();
    void entersOnlyWhenEnabled();
    void disabledUnderThePointerLosesTheHoverColor();
    void pressesWithTheLeftButtonOnly_data();
    void pressesWithTheLeftButtonOnly();
    void pressDoesNotReachTheBase();
    void releasesAtAPoint_data();
    void releasesAtAPoint();
    void releaseWithoutAPressClicks();
    void staysPressedWhenDisabledMeanwhile();
    void staysSelectedWhenDisabled();
    void otherButtonsReleaseNothing_data();
    void otherButtonsReleaseNothing();
    void doubleClicksWithTheLeftButtonOnly_data();
    void doubleClicksWithTheLeftButtonOnly();
    void menuIsTriggeredByThePress_data();
    void menuIsTriggeredByThePress();
    void menuIsNotTriggered_data();
    void menuIsNotTriggered();
    void mayBeDestroyedWhileItsMenuIsTriggered();
    void clicksByTheKeyboard();
    void neverOpensAMenuItself_data();
    void neverOpensAMenuItself();

private:
    QRgb centre() const;
    FancyButtonPrivate &data() const { return *ButtonData::of(*button); }

    QScopedPointer<QWidget> window;
    FancyButton *button = nullptr;
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
    button = new FancyButton(window.data());
    button->setGeometry(QRect(ButtonPosition, ButtonSize));
    button->setHasBorder(false);
    button->setHoverColor(QColor(HoverRgb));
    button->setPressColor(QColor(PressRgb));
    button->setNormalColor(QColor(NormalRgb));
    window->move(100, 100);
    window->show();
    QVERIFY(QTest::qWaitForWindowActive(window.data()));
    QTest::mouseMove(window.data(), Aside);
    QTRY_VERIFY(window->underMouse());
    QTRY_VERIFY(!data().m_bMouseHover);
}

void tst_FancyButtonEvents::cleanup()
{
    window.reset();
}

// What the screen shows in the middle of the button.
QRgb tst_FancyButtonEvents::centre() const
{
    const QPoint position = window->mapToGlobal(ButtonPosition + Inside);
    return window->screen()->grabWindow(0, position.x(), position.y(), 1, 1).toImage().pixel(0, 0);
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

void tst_FancyButtonEvents::entersOnlyWhenEnabled()
{
    button->setEnabled(false);

    QTest::mouseMove(button, Inside);
    QTRY_VERIFY(button->underMouse());

    QVERIFY(!data().m_bMouseHover);
    QTRY_COMPARE(centre(), NormalRgb);
}

void tst_FancyButtonEvents::disabledUnderThePointerLosesTheHoverColor()
{
    QTest::mouseMove(button, Inside);
    QTRY_COMPARE(centre(), HoverRgb);

    button->setEnabled(false);
    QTRY_COMPARE(centre(), NormalRgb);

    button->setEnabled(true);
    QTRY_COMPARE(centre(), HoverRgb);
}

void tst_FancyButtonEvents::pressesWithTheLeftButtonOnly_data()
{
    QTest::addColumn<Qt::MouseButton>("mouseButton");
    QTest::addColumn<bool>("enabled");
    QTest::addColumn<bool>("acts");

    QTest::newRow("left") << Qt::LeftButton << true << true;
    QTest::newRow("right") << Qt::RightButton << true << false;
    QTest::newRow("middle") << Qt::MiddleButton << true << false;
    QTest::newRow("back") << Qt::BackButton << true << false;
    QTest::newRow("left, disabled") << Qt::LeftButton << false << false;
}

void tst_FancyButtonEvents::pressesWithTheLeftButtonOnly()
{
    QFETCH(Qt::MouseButton, mouseButton);
    QFETCH(bool, enabled);
    QFETCH(bool, acts);
    button->setEnabled(enabled);

    QTest::mousePress(button, mouseButton, Qt::NoModifier, Inside);

    QCOMPARE(data().m_bMousePress, acts);
    QTRY_COMPARE(centre(), acts ? PressRgb : NormalRgb);
}

void tst_FancyButtonEvents::pressDoesNotReachTheBase()
{
    const QSignalSpy pressed(button, &FancyButton::pressed);
    const QSignalSpy released(button, &FancyButton::released);

    QTest::mousePress(button, Qt::LeftButton, Qt::NoModifier, Inside);
    QVERIFY(!button->isDown());
    QTest::mouseRelease(button, Qt::LeftButton, Qt::NoModifier, Inside);

    QCOMPARE(pressed.count(), 0);
    QCOMPARE(released.count(), 0);
}

void tst_FancyButtonEvents::releasesAtAPoint_data()
{
    QTest::addColumn<QPointF>("position");
    QTest::addColumn<int>("clicks");

    const qreal width = ButtonSize.width();
    const qreal height = ButtonSize.height();
    QTest::newRow("middle") << QPointF(30, 15) << 1;
    QTest::newRow("first pixel") << QPointF(0, 0) << 1;
    QTest::newRow("last pixel") << QPointF(width - 1, height - 1) << 1;
    QTest::newRow("left of it") << QPointF(-1, 15) << 0;
    QTest::newRow("above it") << QPointF(30, -1) << 0;
    QTest::newRow("right of it") << QPointF(width, 15) << 0;
    QTest::newRow("below it") << QPointF(30, height) << 0;
    QTest::newRow("rounded to the first pixel") << QPointF(-0.4, -0.4) << 1;
    QTest::newRow("rounded out at the left") << QPointF(-0.6, 15) << 0;
    QTest::newRow("rounded to the last pixel") << QPointF(width - 0.6, height - 0.6) << 1;
    QTest::newRow("rounded out at the right") << QPointF(width - 0.4, 15) << 0;
}

void tst_FancyButtonEvents::releasesAtAPoint()
{
    QFETCH(QPointF, position);
    QFETCH(int, clicks);
    const QSignalSpy clicked(button, &FancyButton::clicked);
    button->setCheckable(true);
    QTest::mousePress(button, Qt::LeftButton, Qt::NoModifier, Inside);
    QTRY_COMPARE(centre(), PressRgb);

    QMouseEvent release(QEvent::MouseButtonRelease, position, Qt::LeftButton, Qt::NoButton,
                        Qt::NoModifier);
    QCoreApplication::sendEvent(button, &release);

    QCOMPARE(clicked.count(), clicks);
    if (clicks > 0)
        QCOMPARE(clicked.first(), QVariantList {false});
    QVERIFY(!button->isChecked());
    QVERIFY(!data().m_bMousePress);
    QTRY_COMPARE(centre(), NormalRgb);
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

void tst_FancyButtonEvents::staysSelectedWhenDisabled()
{
    button->select(true);

    button->setEnabled(false);
    QVERIFY(data().m_bMousePress);
    QTRY_COMPARE(centre(), PressRgb);
    button->setEnabled(true);

    QVERIFY(data().m_bMousePress);
    button->select(false);
    QTRY_COMPARE(centre(), NormalRgb);
}

void tst_FancyButtonEvents::otherButtonsReleaseNothing_data()
{
    QTest::addColumn<Qt::MouseButton>("mouseButton");
    QTest::addColumn<bool>("enabled");

    for (const bool enabled : {true, false}) {
        const char *state = enabled ? "enabled" : "disabled";
        QTest::addRow("right, %s", state) << Qt::RightButton << enabled;
        QTest::addRow("middle, %s", state) << Qt::MiddleButton << enabled;
    }
}

void tst_FancyButtonEvents::otherButtonsReleaseNothing()
{
    QFETCH(Qt::MouseButton, mouseButton);
    QFETCH(bool, enabled);
    const QSignalSpy clicked(button, &FancyButton::clicked);
    button->select(true);
    button->setEnabled(enabled);

    QTest::mouseRelease(button, mouseButton, Qt::NoModifier, Inside);

    QVERIFY(data().m_bMousePress);
    QCOMPARE(clicked.count(), 0);
}

void tst_FancyButtonEvents::doubleClicksWithTheLeftButtonOnly_data()
{
    pressesWithTheLeftButtonOnly_data();
}

void tst_FancyButtonEvents::doubleClicksWithTheLeftButtonOnly()
{
    QFETCH(Qt::MouseButton, mouseButton);
    QFETCH(bool, enabled);
    QFETCH(bool, acts);
    const QSignalSpy doubleClicked(button, &FancyButton::doubleClicked);
    button->setEnabled(enabled);

    QMouseEvent event(QEvent::MouseButtonDblClick, Inside, mouseButton, mouseButton,
                      Qt::NoModifier);
    QCoreApplication::sendEvent(button, &event);

    QCOMPARE(doubleClicked.count(), acts ? 1 : 0);
    QVERIFY(!data().m_bMousePress);
}

void tst_FancyButtonEvents::menuIsTriggeredByThePress_data()
{
    QTest::addColumn<bool>("flag");
    QTest::addColumn<bool>("actionMenu");

    QTest::newRow("by the flag") << true << false;
    QTest::newRow("by the default action's menu") << false << true;
    QTest::newRow("by both") << true << true;
}

void tst_FancyButtonEvents::menuIsTriggeredByThePress()
{
    QFETCH(bool, flag);
    QFETCH(bool, actionMenu);
    QMenu menu;
    menu.addAction(QStringLiteral("entry"));
    QAction action(QStringLiteral("action"));
    if (actionMenu) {
        action.setMenu(&menu);
        button->setDefaultAction(&action);
    }
    button->setHasMenu(flag);
    const QMouseEvent *received = nullptr;
    int count = 0;
    bool pressedMeanwhile = false;
    const QObject watcher;
    connect(button, &FancyButton::menuTriggered, &watcher, [&](QMouseEvent *event) {
        received = event;
        ++count;
        pressedMeanwhile = data().m_bMousePress;
    });

    QMouseEvent press(QEvent::MouseButtonPress, Inside, Qt::LeftButton, Qt::LeftButton,
                      Qt::NoModifier);
    QCoreApplication::sendEvent(button, &press);

    QCOMPARE(count, 1);
    QCOMPARE(received, &press);
    QVERIFY(pressedMeanwhile);
    QVERIFY(!menu.isVisible());
    QVERIFY(!QApplication::activePopupWidget());
    QVERIFY(!button->isDown());
}

void tst_FancyButtonEvents::menuIsNotTriggered_data()
{
    QTest::addColumn<Qt::MouseButton>("mouseButton");
    QTest::addColumn<bool>("enabled");
    QTest::addColumn<bool>("flag");

    QTest::newRow("without a menu") << Qt::LeftButton << true << false;
    QTest::newRow("by the right button") << Qt::RightButton << true << true;
    QTest::newRow("on a disabled button") << Qt::LeftButton << false << true;
}

void tst_FancyButtonEvents::menuIsNotTriggered()
{
    QFETCH(Qt::MouseButton, mouseButton);
    QFETCH(bool, enabled);
    QFETCH(bool, flag);
    QAction action(QStringLiteral("action"));
    button->setDefaultAction(&action);
    button->setHasMenu(flag);
    button->setEnabled(enabled);
    const QSignalSpy menuTriggered(button, &FancyButton::menuTriggered);

    QTest::mousePress(button, mouseButton, Qt::NoModifier, Inside);

    QCOMPARE(menuTriggered.count(), 0);
}

void tst_FancyButtonEvents::mayBeDestroyedWhileItsMenuIsTriggered()
{
    struct Opener : FancyButton
    {
        using FancyButton::FancyButton;
        using FancyButton::mousePressEvent;
    };
    auto *opener = new Opener(nullptr);
    opener->setHasMenu(true);
    bool destroyed = false;
    const QObject watcher;
    connect(opener, &FancyButton::menuTriggered, &watcher, [&] {
        delete opener;
        destroyed = true;
    });

    QMouseEvent press(QEvent::MouseButtonPress, QPointF(1, 1), Qt::LeftButton, Qt::LeftButton,
                      Qt::NoModifier);
    opener->mousePressEvent(&press);

    QVERIFY(destroyed);
}

void tst_FancyButtonEvents::clicksByTheKeyboard()
{
    button->setHasMenu(true);
    const QSignalSpy clicked(button, &FancyButton::clicked);
    const QSignalSpy menuTriggered(button, &FancyButton::menuTriggered);

    QTest::keyPress(button, Qt::Key_Space);
    QVERIFY(!data().m_bMousePress);
    QCOMPARE(clicked.count(), 0);
    QTest::keyRelease(button, Qt::Key_Space);

    QCOMPARE(clicked.count(), 1);
    QCOMPARE(clicked.first(), QVariantList {false});
    QCOMPARE(menuTriggered.count(), 0);
}

void tst_FancyButtonEvents::neverOpensAMenuItself_data()
{
    QTest::addColumn<bool>("byAction");
    QTest::addColumn<bool>("byKeyboard");

    QTest::newRow("own menu, keyboard") << false << true;
    QTest::newRow("own menu, click()") << false << false;
    QTest::newRow("menu of the action, keyboard") << true << true;
    QTest::newRow("menu of the action, click()") << true << false;
}

void tst_FancyButtonEvents::neverOpensAMenuItself()
{
    QFETCH(bool, byAction);
    QFETCH(bool, byKeyboard);
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
    const QSignalSpy clicked(button, &FancyButton::clicked);

    if (byKeyboard)
        QTest::keyClick(button, Qt::Key_Space);
    else
        button->click();

    QCOMPARE(opened.count(), 0);
    QCOMPARE(clicked.count(), 1);
}

QTEST_MAIN(tst_FancyButtonEvents)
#include "tst_FancyButtonEvents.moc"
