#include "tests/support/realInput.h"
#include "tests/support/waits.h"
#include "tests/windowkit/AgentWindow.h"

#include <QWKWidgets/widgetwindowagent.h>

#include <QMenu>
#include <QMouseEvent>
#include <QPushButton>
#include <QScopedPointer>
#include <QSignalSpy>
#include <QTest>
#include <QWindow>

#include <algorithm>
#include <array>
#include <new>

Q_DECLARE_METATYPE(Qt::MouseButton)

class tst_WidgetWindowAgent : public QObject
{
    Q_OBJECT

private slots:
    void cleanup();

    void setsUpOnce();
    void keepsTheWindowFrameless();
    void keepsAVisibleWindowAsItIs();
    void signalAnswersFalseWithoutReceiver();
    void asksOnlyOnLeftPressAndDoubleClick();
    void swallowsTheWholeDrag();
    void changesNothingOnAMereClick();
    void swallowsDoubleClicks();
    void dragsFromADoubleClick();
    void leavesOtherPointsAlone();
    void leavesOtherButtonsAlone_data();
    void leavesOtherButtonsAlone();
    void leavesAllAloneWithoutReceiver();
    void endsTheDragOnAMotionWithoutButton();
    void letsAPressCloseAPopup();
    void isAliveRightAfterADrag();
    void outlivesItsWindow();
    void mayBeDeletedByTheAnswer_data();
    void mayBeDeletedByTheAnswer();
};

void tst_WidgetWindowAgent::cleanup()
{
    // A failed test may have left the button down.
    xdotool(release());
}

void tst_WidgetWindowAgent::setsUpOnce()
{
    QWK::WidgetWindowAgent agent;
    QWidget window;
    QWidget other;

    QVERIFY(!agent.setup(nullptr));
    QVERIFY(agent.setup(&window));
    QVERIFY(!window.windowHandle());
    QVERIFY(!agent.setup(&window));
    QVERIFY(!agent.setup(&other));
    QVERIFY(!agent.setup(nullptr));
    QVERIFY(!other.windowFlags().testFlag(Qt::FramelessWindowHint));
}

void tst_WidgetWindowAgent::keepsTheWindowFrameless()
{
    QWidget window;
    QWK::WidgetWindowAgent agent;
    QVERIFY(agent.setup(&window));
    QVERIFY(window.windowFlags().testFlag(Qt::FramelessWindowHint));

    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window, WindowTimeoutMs));
    QVERIFY(window.windowHandle()->flags().testFlag(Qt::FramelessWindowHint));

    window.setWindowFlags(Qt::Window | Qt::WindowStaysOnTopHint);
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window, WindowTimeoutMs));
    const Qt::WindowFlags expected =
            Qt::Window | Qt::WindowStaysOnTopHint | Qt::FramelessWindowHint;
    QCOMPARE(window.windowFlags() & expected, expected);
    QCOMPARE(window.windowHandle()->flags() & expected, expected);
}

void tst_WidgetWindowAgent::keepsAVisibleWindowAsItIs()
{
    QWidget window;
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window, WindowTimeoutMs));
    const WId id = window.winId();

    QWK::WidgetWindowAgent agent;
    QVERIFY(agent.setup(&window));
    QVERIFY(window.isVisible());
    QCOMPARE(window.winId(), id);
    QVERIFY(window.windowFlags().testFlag(Qt::FramelessWindowHint));
    QVERIFY(window.windowHandle()->flags().testFlag(Qt::FramelessWindowHint));
}

void tst_WidgetWindowAgent::signalAnswersFalseWithoutReceiver()
{
    QWK::WidgetWindowAgent agent;
    QVERIFY(!emit agent.inTitleBarDraggableArea(HeaderPoint));

    const Answer answer(&agent);
    QVERIFY(emit agent.inTitleBarDraggableArea(HeaderPoint));
    QVERIFY(!emit agent.inTitleBarDraggableArea(PagePoint));
}

void tst_WidgetWindowAgent::asksOnlyOnLeftPressAndDoubleClick()
{
    ServedWindow window;
    QVERIFY(window.present());

    xdotool(moveTo(WindowPosition + HeaderPoint) + click(3) + click(2) + click(4)
            + moveTo(WindowPosition + PagePoint) + click(3, 2));
    QVERIFY(settle(window));
    QCOMPARE(window.answer.questions, QVector<QPoint>());

    const QPoint place = WindowPosition + QPoint(9, 9);
    xdotool(drag(WindowPosition + HeaderPoint, place + HeaderPoint));
    QVERIFY(comesTo(window, place));
    QVERIFY(settle(window));
    QCOMPARE(window.answer.questions, QVector<QPoint>({HeaderPoint}));

    window.answer.questions.clear();
    xdotool(moveTo(place + PagePoint) + click(1));
    QVERIFY(settle(window));
    QCOMPARE(window.answer.questions, QVector<QPoint>({PagePoint}));

    // The press and the double click that Qt makes of it.
    window.answer.questions.clear();
    QMouseEvent press(QEvent::MouseButtonPress, QPoint(1, 2), Qt::LeftButton, Qt::LeftButton,
                      Qt::NoModifier);
    QCoreApplication::sendEvent(window.windowHandle(), &press);
    QMouseEvent doubleClick(QEvent::MouseButtonDblClick, QPoint(3, 4), Qt::LeftButton,
                            Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(window.windowHandle(), &doubleClick);
    QCOMPARE(window.answer.questions, QVector<QPoint>({{1, 2}, {3, 4}}));
}

void tst_WidgetWindowAgent::swallowsTheWholeDrag()
{
    ServedWindow window;
    QVERIFY(window.present());

    xdotool(moveTo(WindowPosition + HeaderPoint));
    QTRY_COMPARE(window.header->lastMotion, HeaderPoint);
    // The header sees no motion of the drag, which passes over the button and the page.
    xdotoolBeside(press() + moveTo(WindowPosition + ButtonRect.center())
                  + moveTo(WindowPosition + PagePoint) + release());
    QVERIFY(comesTo(window, WindowPosition + PagePoint - HeaderPoint));
    QCOMPARE(window.header->lastMotion, HeaderPoint);
    QVERIFY(settle(window));
    QVERIFY(window.header->events.isEmpty());
    QVERIFY(window.page->events.isEmpty());
    QVERIFY(!window.button->isDown());
}

void tst_WidgetWindowAgent::changesNothingOnAMereClick()
{
    ServedWindow window;
    QVERIFY(window.present());

    xdotool(moveTo(WindowPosition + HeaderPoint) + click(1));
    QVERIFY(settle(window));
    QCOMPARE(window.answer.questions.size(), 1);
    QVERIFY(comesTo(window, WindowPosition));
    QVERIFY(window.header->events.isEmpty());
}

void tst_WidgetWindowAgent::swallowsDoubleClicks()
{
    ServedWindow window;
    QVERIFY(window.present());
    QSignalSpy clicks(window.button, &QPushButton::clicked);

    xdotool(moveTo(WindowPosition + HeaderPoint) + click(1, 2));
    QVERIFY(settle(window));
    QVERIFY(window.header->events.isEmpty());
    QVERIFY(comesTo(window, WindowPosition));
    QVERIFY(!QWidget::mouseGrabber());

    // Nothing is left pressed: the next click counts at once.
    xdotool(moveTo(WindowPosition + ButtonRect.center()) + click(1));
    QTRY_COMPARE(clicks.size(), 1);

    const auto doubleClickOnPage = moveTo(WindowPosition + PagePoint) + click(1, 2);
    xdotool(doubleClickOnPage);
    QVERIFY(settle(window));
    QVERIFY(window.page->events.contains(QEvent::MouseButtonDblClick));
    QCOMPARE(window.page->events.last(), QEvent::MouseButtonRelease);
}

void tst_WidgetWindowAgent::dragsFromADoubleClick()
{
    ServedWindow window;
    QVERIFY(window.present());

    const QPoint distance(60, 70);
    xdotool(moveTo(WindowPosition + HeaderPoint) + click(1) + press()
            + moveTo(WindowPosition + HeaderPoint + distance) + release());
    QVERIFY(comesTo(window, WindowPosition + distance));
    QVERIFY(settle(window));
    QVERIFY(window.header->events.isEmpty());
}

void tst_WidgetWindowAgent::leavesOtherPointsAlone()
{
    ServedWindow window;
    QVERIFY(window.present());

    const QPoint end = PagePoint + QPoint(30, 20);
    xdotool(drag(WindowPosition + PagePoint, WindowPosition + end));
    QTRY_COMPARE(window.page->events, PressAndRelease);
    QCOMPARE(window.page->lastMotion, end - PageRect.topLeft());
    QVERIFY(comesTo(window, WindowPosition));
}

void tst_WidgetWindowAgent::leavesOtherButtonsAlone_data()
{
    QTest::addColumn<int>("number");
    QTest::addColumn<Qt::MouseButton>("button");
    QTest::addColumn<bool>("isDuringADrag");
    QTest::newRow("middle") << 2 << Qt::MiddleButton << false;
    QTest::newRow("right") << 3 << Qt::RightButton << false;
    QTest::newRow("middle, during a drag") << 2 << Qt::MiddleButton << true;
    QTest::newRow("right, during a drag") << 3 << Qt::RightButton << true;
}

void tst_WidgetWindowAgent::leavesOtherButtonsAlone()
{
    QFETCH(const int, number);
    QFETCH(const Qt::MouseButton, button);
    QFETCH(const bool, isDuringADrag);
    Window window;
    QVERIFY(window.present());
    const Observer observer(window.windowHandle());
    QWK::WidgetWindowAgent agent;
    const Answer answer(&agent);
    agent.setup(&window);

    QPoint place = WindowPosition;
    xdotool(moveTo(place + HeaderPoint));
    if (isDuringADrag) {
        place += QPoint(20, 10);
        xdotool(press() + moveTo(place + HeaderPoint));
        QVERIFY(comesTo(window, place));
    }
    xdotool(click(number));
    QTRY_COMPARE(observer.events, PressAndRelease);
    QCOMPARE(observer.buttons, QVector<Qt::MouseButton>({button, button}));
    QCOMPARE(window.header->events.first(), QEvent::MouseButtonPress);

    if (isDuringADrag) {
        // The drag goes on.
        place += QPoint(-50, 30);
        xdotool(moveTo(place + HeaderPoint));
        QVERIFY(comesTo(window, place));
        xdotool(release());
    } else {
        QCOMPARE(window.header->events, PressAndRelease);
        xdotool(press(number));
        xdotool(moveTo(place + HeaderPoint + QPoint(30, 15)));
        QTRY_COMPARE(window.header->lastMotion, HeaderPoint + QPoint(30, 15));
        xdotool(release(number));
    }
    QVERIFY(settle(window));
    QVERIFY(comesTo(window, place));
    QVERIFY(!observer.buttons.contains(Qt::LeftButton));
}

void tst_WidgetWindowAgent::leavesAllAloneWithoutReceiver()
{
    Window window;
    QWK::WidgetWindowAgent agent;
    agent.setup(&window);
    QVERIFY(window.present());

    xdotool(drag(WindowPosition + HeaderPoint, WindowPosition + HeaderPoint + QPoint(30, 10)));
    QTRY_COMPARE(window.header->events, PressAndRelease);
    QCOMPARE(window.header->lastMotion, HeaderPoint + QPoint(30, 10));
    QVERIFY(comesTo(window, WindowPosition));
}

void tst_WidgetWindowAgent::endsTheDragOnAMotionWithoutButton()
{
    Window window;
    QVERIFY(window.present());
    const Observer observer(window.windowHandle());
    QWK::WidgetWindowAgent agent;
    const Answer answer(&agent);
    agent.setup(&window);

    xdotool(moveTo(WindowPosition + HeaderPoint) + press());
    QTRY_COMPARE(answer.questions.size(), 1);

    // As after a release that went elsewhere. The motion itself is the widgets' again.
    const QPoint local(33, 22);
    QMouseEvent motion(QEvent::MouseMove, local, local, WindowPosition + QPoint(60, 60),
                       Qt::NoButton, Qt::NoButton, Qt::NoModifier);
    QCoreApplication::sendEvent(window.windowHandle(), &motion);
    QCOMPARE(window.header->lastMotion, local);

    xdotool(moveTo(WindowPosition + HeaderPoint + QPoint(40, 10)) + release());
    QVERIFY(settle(window));
    QVERIFY(comesTo(window, WindowPosition));
    QCOMPARE(observer.events, QVector<QEvent::Type>({QEvent::MouseButtonRelease}));
}

void tst_WidgetWindowAgent::letsAPressCloseAPopup()
{
    ServedWindow window;
    QVERIFY(window.present());

    QMenu menu;
    menu.addAction(QStringLiteral("action"));
    menu.popup(WindowPosition + PagePoint);
    QVERIFY(QTest::qWaitForWindowExposed(&menu, WindowTimeoutMs));
    xdotool(moveTo(WindowPosition + HeaderPoint) + click(1));
    QTRY_VERIFY(!menu.isVisible());
    QVERIFY(settle(window));
    QVERIFY(isDraggedByItsHeaderOnly(window));
}

void tst_WidgetWindowAgent::isAliveRightAfterADrag()
{
    ServedWindow window;
    QVERIFY(window.present());
    QSignalSpy clicks(window.button, &QPushButton::clicked);

    QPoint place = WindowPosition;
    for (int i = 1; i <= 10; ++i) {
        const QPoint next = WindowPosition + QPoint(i * 53, i * 31);
        xdotoolBeside(drag(place + HeaderPoint, next + HeaderPoint));
        QVERIFY(comesTo(window, next));
        place = next;

        xdotool(moveTo(place + HeaderPoint + QPoint(i, 1)));
        QTRY_COMPARE(window.header->lastMotion, HeaderPoint + QPoint(i, 1));
        QVERIFY(window.header->underMouse());
        xdotool(moveTo(place + ButtonRect.center()));
        QTRY_VERIFY(window.button->underMouse());
        QVERIFY(!window.header->underMouse());
        xdotool(click(1));
        QTRY_COMPARE(clicks.size(), i);
    }
}

void tst_WidgetWindowAgent::outlivesItsWindow()
{
    QWK::WidgetWindowAgent agent;
    const Answer answer(&agent);
    {
        Window window;
        agent.setup(&window);
        QVERIFY(window.present());
        xdotool(moveTo(WindowPosition + HeaderPoint) + press());
        QTRY_COMPARE(answer.questions.size(), 1);
    }
    Window other;
    QVERIFY(!agent.setup(&other));

    // And the window outlives its agent.
    QScopedPointer<QWK::WidgetWindowAgent> second(new QWK::WidgetWindowAgent);
    xdotool(release());
    QVERIFY(second->setup(&other));
    QVERIFY(other.present());
    second.reset();
    xdotool(moveTo(WindowPosition + PagePoint) + click(1));
    QTRY_COMPARE(other.page->events.size(), 2);
}

void tst_WidgetWindowAgent::mayBeDeletedByTheAnswer_data()
{
    QTest::addColumn<bool>("mayDrag");
    QTest::newRow("may drag") << true;
    QTest::newRow("may not drag") << false;
}

void tst_WidgetWindowAgent::mayBeDeletedByTheAnswer()
{
    QFETCH(bool, mayDrag);
    constexpr char Trace = 'x';
    // In memory of the test, so that a later touch shows.
    alignas(QWK::WidgetWindowAgent) std::array<char, sizeof(QWK::WidgetWindowAgent)> memory {};
    auto *agent = new (memory.data()) QWK::WidgetWindowAgent;
    Window window;
    agent->setup(&window);
    QVERIFY(window.present());
    int questions = 0;
    const auto answer = [&] {
        ++questions;
        agent->~WidgetWindowAgent();
        memory.fill(Trace);
        return mayDrag;
    };
    connect(agent, &QWK::WindowAgentBase::inTitleBarDraggableArea, &window, answer);

    xdotool(moveTo(WindowPosition + HeaderPoint) + press() + release());

    QTRY_COMPARE(questions, 1);
    if (!mayDrag)
        QTRY_COMPARE(window.header->events, PressAndRelease);
    QVERIFY(settle(window));
    QVERIFY(std::all_of(memory.begin(), memory.end(), [](char byte) { return byte == Trace; }));
}

QTEST_MAIN(tst_WidgetWindowAgent)
#include "tst_WidgetWindowAgent.moc"
