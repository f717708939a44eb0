#include "tests/windowkit/AgentWindow.h"

#include <QWKWidgets/widgetwindowagent.h>

#include <QGuiApplication>
#include <QMouseEvent>
#include <QScreen>
#include <QTest>
#include <QWindow>

namespace {

//! What happens to a window between its set-up and a drag.
using Change = void (*)(Window &);

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
    void followsAMotionBackToAnEarlierPlace();
    void endsEachFastDragAtThePointer_data();
    void endsEachFastDragAtThePointer();
    void pressesWhileAMoveIsPending_data();
    void pressesWhileAMoveIsPending();
    void startsFromWhereTheWindowWasPut();
    void dragsOverTwoScreens();
};

void tst_WidgetWindowAgentDrag::cleanup()
{
    // A failed test may have left the button down.
    xdotool(ReleaseLeft);
}

void tst_WidgetWindowAgentDrag::drags_data()
{
    QTest::addColumn<bool>("isShownFirst");
    QTest::addColumn<Change>("change");

    const Change none = [](Window & /*window*/) {};
    const Change hideAndShow = [](Window &window) {
        window.hide();
        window.present();
    };
    const Change closeAndShow = [](Window &window) {
        window.windowHandle()->close();
        window.present();
    };
    const Change otherFlags = [](Window &window) {
        WinIdChanges changes;
        window.installEventFilter(&changes);
        window.setWindowFlag(Qt::WindowStaysOnTopHint);
        window.present();
        // Not by the number itself: the server may give the same one again.
        QVERIFY(changes.count > 0);
    };
    const Change intoAndOutOfAParent = [](Window &window) {
        QWidget parent;
        window.setParent(&parent);
        window.setParent(nullptr);
        window.setWindowFlag(Qt::FramelessWindowHint);
        window.move(WindowPosition);
        window.present();
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
        window.present();
    QWK::WidgetWindowAgent agent;
    const Answer answer(&agent);
    QVERIFY(agent.setup(&window));
    if (!isShownFirst)
        window.present();
    change(window);
    verifyDrags(window);
}

void tst_WidgetWindowAgentDrag::followsEachMotion()
{
    ServedWindow window;

    xdotool(moveTo(WindowPosition + HeaderPoint) + PressLeft);
    for (const QPoint &distance : {QPoint(1, 0), QPoint(1, 1), QPoint(-37, 12), QPoint(400, 300),
                                   QPoint(-100, -200), QPoint(0, 0), QPoint(5, -5)}) {
        xdotool(moveTo(WindowPosition + HeaderPoint + distance));
        verifyPlace(window, WindowPosition + distance);
        if (QTest::currentTestFailed())
            return;
    }
    xdotool(ReleaseLeft);
    settle(window);
    verifyPlace(window, WindowPosition + QPoint(5, -5));
}

void tst_WidgetWindowAgentDrag::followsAMotionBackToAnEarlierPlace()
{
    ServedWindow window;

    const auto pretendMotion = [&window](const QPoint &distance) {
        QMouseEvent motion(QEvent::MouseMove, HeaderPoint, HeaderPoint,
                           WindowPosition + HeaderPoint + distance, Qt::NoButton, Qt::LeftButton,
                           Qt::NoModifier);
        QCoreApplication::sendEvent(window.windowHandle(), &motion);
    };
    const QPoint there(40, 20);
    const QPoint beyond(90, 70);

    xdotool(moveTo(WindowPosition + HeaderPoint) + PressLeft);
    QTRY_COMPARE(window.answer.questions.size(), 1);
    pretendMotion(there);
    // Asking the server for a pixel sends the request off. Its report waits unread, since this
    // process handles no event meanwhile.
    QVERIFY(!QGuiApplication::primaryScreen()->grabWindow(0, 0, 0, 1, 1).isNull());
    for (int i = 0; i < 500 && placeOnServer(window) != WindowPosition + there; ++i) { }
    QCOMPARE(placeOnServer(window), WindowPosition + there);
    xdotool(moveTo(WindowPosition + HeaderPoint + there));
    pretendMotion(beyond);
    xdotool(ReleaseLeft);
    settle(window);
    verifyPlace(window, WindowPosition + there);
}

void tst_WidgetWindowAgentDrag::endsEachFastDragAtThePointer_data()
{
    QTest::addColumn<bool>("isBusy");
    QTest::newRow("handled as they come") << false;
    QTest::newRow("handled all at once") << true;
}

void tst_WidgetWindowAgentDrag::endsEachFastDragAtThePointer()
{
    QFETCH(const bool, isBusy);
    ServedWindow window;

    QPoint place = WindowPosition;
    for (int i = 0; i < 100; ++i) {
        const QPoint next(50 + i * 277 % 700, 50 + i * 191 % 600);
        const QPoint grip(5 + i * 37 % 330, 2 + i * 13 % 55);
        const QPoint halfWay = (place + next) / 2 + QPoint(i, -i);
        const QStringList arguments = moveTo(place + grip) + PressLeft + moveTo(halfWay + grip)
                                      + moveTo(next + grip) + ReleaseLeft;
        isBusy ? xdotool(arguments) : xdotoolBeside(arguments);
        verifyPlace(window, next);
        // The others would go wrong as well, each after a long wait.
        if (QTest::currentTestFailed())
            return;
        place = next;
    }
    QCOMPARE(window.answer.questions.size(), 100);
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

    // Sent directly and with a time of their own, so that no move is reported between them.
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

    verifyPlace(window, WindowPosition + result);
}

void tst_WidgetWindowAgentDrag::startsFromWhereTheWindowWasPut()
{
    ServedWindow window;

    verifyDrags(window);
    window.move(500, 400);
    verifyPlace(window, QPoint(500, 400));
    verifyDrags(window);
}

void tst_WidgetWindowAgentDrag::dragsOverTwoScreens()
{
    QCOMPARE(QGuiApplication::screens().size(), 2);
    const QPoint distance(QGuiApplication::screens().at(1)->geometry().left(), 100);
    QVERIFY(distance.x() > 0);

    ServedWindow window;
    const QPoint from = WindowPosition + HeaderPoint;

    xdotool(moveTo(from) + PressLeft);
    for (int step = 1; step <= 8; ++step)
        xdotoolBeside(moveTo(from + distance * step / 8));
    xdotool(ReleaseLeft);
    verifyPlace(window, WindowPosition + distance);
    QTRY_COMPARE(window.screen(), QGuiApplication::screens().at(1));

    xdotool(drag(from + distance, from));
    verifyPlace(window, WindowPosition);
    QTRY_COMPARE(window.screen(), QGuiApplication::screens().at(0));
}

QTEST_MAIN(tst_WidgetWindowAgentDrag)
#include "tst_WidgetWindowAgentDrag.moc"
