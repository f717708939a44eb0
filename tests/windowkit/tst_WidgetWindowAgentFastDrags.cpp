#include "tests/support/realInput.h"
#include "tests/windowkit/AgentWindow.h"

#include <QDeadlineTimer>
#include <QGuiApplication>
#include <QMouseEvent>
#include <QScreen>
#include <QTest>
#include <QWindow>

#include <functional>
#include <utility>

namespace {

constexpr int DragCount = 100;
constexpr int TimeoutMs = 20000;

//! Calls a function the first time that a window is told that it is at a place.
class OnMove : public QObject
{
public:
    OnMove(QWindow *window, const QPoint &place, std::function<void()> function)
        : m_place(place)
        , m_function(std::move(function))
    {
        window->installEventFilter(this);
    }

    bool hasHappened = false;

protected:
    bool eventFilter(QObject * /*watched*/, QEvent *event) override
    {
        if (!hasHappened && event->type() == QEvent::Move
            && static_cast<QMoveEvent *>(event)->pos() == m_place) {
            hasHappened = true;
            m_function();
        }
        return false;
    }

private:
    QPoint m_place;
    std::function<void()> m_function;
};

} // namespace

/*!
    Drags that are faster than the window manager.
*/
class tst_WidgetWindowAgentFastDrags : public QObject
{
    Q_OBJECT

private slots:
    void cleanup();

    void endEachAtThePointer();
    void followsAMotionBackToAnEarlierPlace();
};

void tst_WidgetWindowAgentFastDrags::cleanup()
{
    // A failed test may have left the button down.
    xdotool(release());
}

void tst_WidgetWindowAgentFastDrags::endEachAtThePointer()
{
    ServedWindow window;
    QVERIFY(window.present());

    QPoint place = WindowPosition;
    for (int i = 0; i < DragCount; ++i) {
        const QPoint next(50 + i * 277 % 700, 50 + i * 191 % 600);
        const QPoint grip(5 + i * 37 % 330, 2 + i * 13 % 55);
        const QPoint halfWay = (place + next) / 2 + QPoint(i, -i);
        const QStringList words = moveTo(place + grip) + press() + moveTo(halfWay + grip)
                                  + moveTo(next + grip) + release();
        // The events of every second drag are handled all at once, after its end.
        const bool isBusy = i % 2 == 1;
        if (isBusy)
            xdotool(words);
        else
            xdotoolBeside(words);
        QVERIFY2(comesTo(window, next), qPrintable(QStringLiteral("drag %1").arg(i)));
        place = next;
    }
    QCOMPARE(window.answer.questions.size(), DragCount);
}

void tst_WidgetWindowAgentFastDrags::followsAMotionBackToAnEarlierPlace()
{
    ServedWindow window;
    QVERIFY(window.present());

    const auto pretendMotion = [&window](const QPoint &distance) {
        QMouseEvent motion(QEvent::MouseMove, HeaderPoint, HeaderPoint,
                           WindowPosition + HeaderPoint + distance, Qt::NoButton, Qt::LeftButton,
                           Qt::NoModifier);
        QCoreApplication::sendEvent(window.windowHandle(), &motion);
    };
    const QPoint there(40, 20);
    const QPoint beyond(90, 70);

    xdotool(moveTo(WindowPosition + HeaderPoint) + press());
    QTRY_COMPARE(window.answer.questions.size(), 1);
    // The pointer goes back as soon as the late report of the first motion is read.
    const OnMove goBack(window.windowHandle(), WindowPosition + there,
                        [&] { pretendMotion(there); });
    const QDeadlineTimer deadline(TimeoutMs);
    // Where the report of the second motion is there as well, Qt leaves out the first: then again.
    while (!goBack.hasHappened && !deadline.hasExpired()) {
        pretendMotion(there);
        // Asking the server for a pixel sends the request off. Its report waits unread, since this
        // process handles no event meanwhile.
        QVERIFY(!QGuiApplication::primaryScreen()->grabWindow(0, 0, 0, 1, 1).isNull());
        while (placeOnServer(window) != WindowPosition + there && !deadline.hasExpired()) { }
        pretendMotion(beyond);
        QVERIFY(QTest::qWaitFor(
                [&] {
                    return goBack.hasHappened
                           || (window.pos() == WindowPosition + beyond
                               && placeOnServer(window) == window.pos());
                },
                TimeoutMs));
    }
    QVERIFY(goBack.hasHappened);
    xdotool(release());
    QVERIFY(settle(window));
    QVERIFY(comesTo(window, WindowPosition + there));
}

QTEST_MAIN(tst_WidgetWindowAgentFastDrags)
#include "tst_WidgetWindowAgentFastDrags.moc"
