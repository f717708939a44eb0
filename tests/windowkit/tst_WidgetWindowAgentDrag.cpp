#include "tests/support/realInput.h"
#include "tests/support/waits.h"
#include "tests/windowkit/AgentWindow.h"

#include <QWKWidgets/widgetwindowagent.h>

#include <QGuiApplication>
#include <QMouseEvent>
#include <QPointer>
#include <QScreen>
#include <QTest>
#include <QWindow>

namespace {

//! Does something to a window. Returns whether the window is on the screen then.
using Change = bool (*)(Window &);

//! Counts how often a widget gets another native window.
class WinIdChanges : public QObject
{
public:
    int count = 0;

protected:
    bool eventFilter(QObject * /*watched*/, QEvent *event) override
    {
        count += event->type() == QEvent::WinIdChange;
        return false;
    }
};

//! Has Qt make another native window for the same QWindow. Returns whether it is shown then.
bool replaceNativeWindow(Window &window)
{
    const QPointer<QWindow> before = window.windowHandle();
    WinIdChanges changes;
    window.installEventFilter(&changes);
    window.setWindowFlag(Qt::WindowStaysOnTopHint);
    window.show();
    // Not by the number itself: the server may give the same one again.
    return changes.count > 0 && window.windowHandle() == before
           && QTest::qWaitForWindowExposed(&window, WindowTimeoutMs);
}

//! Has Qt make another QWindow. Returns whether it is shown then.
bool replaceQWindow(Window &window)
{
    const QPointer<QWindow> before = window.windowHandle();
    const QPoint place = window.pos();
    QWidget parent;
    window.setParent(&parent);
    window.setParent(nullptr);
    window.setWindowFlag(Qt::FramelessWindowHint);
    window.move(place);
    window.show();
    return !before && QTest::qWaitForWindowExposed(&window, WindowTimeoutMs);
}

} // namespace

Q_DECLARE_METATYPE(Change)

class tst_WidgetWindowAgentDrag : public QObject
{
    Q_OBJECT

private slots:
    void cleanup();

    void drags_data();
    void drags();
    void followsEachMotion();
    void isReplacedDuringADrag_data();
    void isReplacedDuringADrag();
    void pressesWhileAMoveIsPending_data();
    void pressesWhileAMoveIsPending();
    void hidesThatThePointerLeavesDuringADrag();
    void startsFromWhereTheWindowWasPut();
    void dragsOverTwoScreens();
};

void tst_WidgetWindowAgentDrag::cleanup()
{
    // A failed test may have left the button down.
    xdotool(release());
}

void tst_WidgetWindowAgentDrag::drags_data()
{
    QTest::addColumn<bool>("isShownFirst");
    QTest::addColumn<Change>("change");

    const Change none = [](Window & /*window*/) { return true; };
    const Change hideAndShow = [](Window &window) {
        window.hide();
        return window.present();
    };
    const Change closeAndShow = [](Window &window) {
        window.windowHandle()->close();
        return window.present();
    };
    const Change otherFlags = [](Window &window) {
        return replaceNativeWindow(window) && window.present();
    };
    const Change intoAndOutOfAParent = [](Window &window) {
        return replaceQWindow(window) && window.present();
    };

    QTest::newRow("set up before the native window exists") << false << none;
    QTest::newRow("set up afterwards") << true << none;
    QTest::newRow("hidden and shown") << false << hideAndShow;
    QTest::newRow("closed and shown") << false << closeAndShow;
    QTest::newRow("changed flags") << false << otherFlags;
    QTest::newRow("set up afterwards, changed flags") << true << otherFlags;
    QTest::newRow("into a parent and out") << false << intoAndOutOfAParent;
}

void tst_WidgetWindowAgentDrag::drags()
{
    QFETCH(const bool, isShownFirst);
    QFETCH(const Change, change);

    Window window;
    if (isShownFirst)
        QVERIFY(window.present());
    QWK::WidgetWindowAgent agent;
    const Answer answer(&agent);
    QVERIFY(agent.setup(&window));
    if (!isShownFirst)
        QVERIFY(window.present());
    QVERIFY(change(window));
    QVERIFY(isDraggedByItsHeaderOnly(window));
}

void tst_WidgetWindowAgentDrag::followsEachMotion()
{
    ServedWindow window;
    QVERIFY(window.present());

    xdotool(moveTo(WindowPosition + HeaderPoint) + press());
    for (const QPoint &distance : {QPoint(1, 0), QPoint(1, 1), QPoint(-37, 12), QPoint(400, 300),
                                   QPoint(-100, -200), QPoint(0, 0), QPoint(5, -5)}) {
        xdotool(moveTo(WindowPosition + HeaderPoint + distance));
        QVERIFY(comesTo(window, WindowPosition + distance));
    }
    xdotool(release());
    QVERIFY(settle(window));
    QVERIFY(comesTo(window, WindowPosition + QPoint(5, -5)));
}

void tst_WidgetWindowAgentDrag::isReplacedDuringADrag_data()
{
    QTest::addColumn<Change>("replace");
    QTest::addColumn<bool>("goesOn");

    QTest::newRow("the native window") << Change(replaceNativeWindow) << /*goesOn*/ true;
    QTest::newRow("the QWindow") << Change(replaceQWindow) << /*goesOn*/ false;
}

void tst_WidgetWindowAgentDrag::isReplacedDuringADrag()
{
    QFETCH(const Change, replace);
    QFETCH(const bool, goesOn);
    ServedWindow window;
    QVERIFY(window.present());
    QPoint place = WindowPosition + QPoint(40, 20);
    xdotool(moveTo(WindowPosition + HeaderPoint) + press() + moveTo(place + HeaderPoint));
    QVERIFY(comesTo(window, place));

    // The button stays down meanwhile.
    QVERIFY(replace(window));
    QVERIFY(comesTo(window, place));
    const QPoint distance(60, 10);
    const QPoint pointer = place + HeaderPoint + distance;
    if (goesOn)
        place += distance;
    // More than once: a motion may be lost while the manager is still at the new native window.
    QVERIFY(QTest::qWaitFor(
            [&] {
                xdotool(moveTo(pointer - QPoint(1, 0)) + moveTo(pointer));
                return window.pos() == place;
            },
            WindowTimeoutMs));
    QVERIFY(comesTo(window, place));
    xdotool(release());
    QVERIFY(settle(window));
    QVERIFY(comesTo(window, place));

    QVERIFY(isDraggedByItsHeaderOnly(window));
}

void tst_WidgetWindowAgentDrag::pressesWhileAMoveIsPending_data()
{
    QTest::addColumn<ulong>("pause");
    QTest::addColumn<QPointF>("distance");
    QTest::addColumn<QPoint>("result");

    // The agent allows a window manager a quarter of a second to carry a move out.
    QTest::newRow("pending") << 10UL << QPointF(40, 12) << QPoint(120, 36);
    QTest::newRow("pending to the last") << 249UL << QPointF(40, 12) << QPoint(120, 36);
    QTest::newRow("refused") << 250UL << QPointF(40, 12) << QPoint(80, 24);
    QTest::newRow("rounded to nothing") << 250UL << QPointF(0.2, 0.2) << QPoint(1, 1);
}

void tst_WidgetWindowAgentDrag::pressesWhileAMoveIsPending()
{
    QFETCH(const ulong, pause);
    QFETCH(const QPointF, distance);
    QFETCH(const QPoint, result);
    ServedWindow window;
    QVERIFY(window.present());

    // Sent directly and with timestamps of their own, so that no move is reported between them.
    ulong time = 1000;
    const auto send = [&](QEvent::Type type, const QPointF &screen) {
        const QPointF local = screen - WindowPosition;
        QMouseEvent event(type, local, local, screen,
                          type == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton,
                          type == QEvent::MouseButtonRelease ? Qt::NoButton : Qt::LeftButton,
                          Qt::NoModifier);
        event.setTimestamp(time);
        QCoreApplication::sendEvent(window.windowHandle(), &event);
    };
    const QPoint from = WindowPosition + HeaderPoint;
    send(QEvent::MouseButtonPress, from);
    send(QEvent::MouseMove, from + distance);
    send(QEvent::MouseButtonRelease, from + distance);
    // A report of an earlier place doesn't tell that the last move has been carried out.
    QMoveEvent report(WindowPosition, WindowPosition);
    QCoreApplication::sendEvent(window.windowHandle(), &report);
    time += pause;
    send(QEvent::MouseButtonPress, from + distance);
    send(QEvent::MouseMove, from + 3 * distance);
    send(QEvent::MouseButtonRelease, from + 3 * distance);

    QVERIFY(comesTo(window, WindowPosition + result));
}

void tst_WidgetWindowAgentDrag::hidesThatThePointerLeavesDuringADrag()
{
    ServedWindow window;
    QVERIFY(window.present());
    xdotool(moveTo(WindowPosition + HeaderPoint));
    QTRY_VERIFY(window.header->underMouse());

    xdotool(press());
    QTRY_COMPARE(window.answer.questions.size(), 1);
    QEvent leave(QEvent::Leave);
    QCoreApplication::sendEvent(window.windowHandle(), &leave);
    QVERIFY(window.header->underMouse());

    xdotool(release());
    QVERIFY(settle(window));
    QVERIFY(window.page->underMouse());
    QCoreApplication::sendEvent(window.windowHandle(), &leave);
    QVERIFY(!window.page->underMouse());
}

void tst_WidgetWindowAgentDrag::startsFromWhereTheWindowWasPut()
{
    ServedWindow window;
    QVERIFY(window.present());

    QVERIFY(isDraggedByItsHeaderOnly(window));
    window.move(500, 400);
    QVERIFY(comesTo(window, QPoint(500, 400)));
    QVERIFY(isDraggedByItsHeaderOnly(window));
}

void tst_WidgetWindowAgentDrag::dragsOverTwoScreens()
{
    QCOMPARE(QGuiApplication::screens().size(), 2);
    const QPoint distance(QGuiApplication::screens().at(1)->geometry().left(), 100);
    QVERIFY(distance.x() > 0);

    ServedWindow window;
    QVERIFY(window.present());
    const QPoint from = WindowPosition + HeaderPoint;

    xdotool(moveTo(from) + press());
    for (int step = 1; step <= 8; ++step)
        xdotoolBeside(moveTo(from + distance * step / 8));
    xdotool(release());
    QVERIFY(comesTo(window, WindowPosition + distance));
    QTRY_COMPARE(window.screen(), QGuiApplication::screens().at(1));

    xdotool(drag(from + distance, from));
    QVERIFY(comesTo(window, WindowPosition));
    QTRY_COMPARE(window.screen(), QGuiApplication::screens().at(0));
}

QTEST_MAIN(tst_WidgetWindowAgentDrag)
#include "tst_WidgetWindowAgentDrag.moc"
