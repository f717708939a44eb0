#include "tests/windowkit/AgentWindow.h"

#include <QWKWidgets/widgetwindowagent.h>

#include <QMouseEvent>
#include <QTest>
#include <QWindow>

namespace {

constexpr int Drags = 100;

//! The agent counts on a window manager to carry out a move within a quarter of a second. In
//! milliseconds.
constexpr ulong LongestHaste = 200;
constexpr int Attempts = 20;

//! Measures how fast the presses come, by the X server's own clock.
class PressWatch : public QObject
{
    Q_OBJECT

public:
    int presses = 0;
    //! Between a move of the pointer and the press behind it, in milliseconds.
    ulong longestPause = 0;

    bool eventFilter(QObject * /*watched*/, QEvent *event) override
    {
        if (event->type() == QEvent::MouseMove)
            m_lastMove = static_cast<QMouseEvent *>(event)->timestamp();
        if (event->type() == QEvent::MouseButtonPress) {
            if (presses > 0)
                longestPause = qMax(longestPause,
                                    static_cast<QMouseEvent *>(event)->timestamp() - m_lastMove);
            ++presses;
        }
        return false;
    }

private:
    ulong m_lastMove = 0;
};

} // namespace

class tst_WidgetWindowAgentHaste : public QObject
{
    Q_OBJECT

private slots:
    void cleanup();

    void addsUpDragsWithoutAnyWait();
};

void tst_WidgetWindowAgentHaste::cleanup()
{
    // A failed test may have left the button down.
    xdotool(ReleaseLeft);
}

void tst_WidgetWindowAgentHaste::addsUpDragsWithoutAnyWait()
{
    // The presses come while earlier moves are still under way. Each hits the header, wherever the
    // window is by then.
    QStringList arguments;
    QPoint pointer = WindowPosition + HeaderPoint;
    for (int i = 0; i < Drags; ++i) {
        const QPoint next = WindowPosition + HeaderPoint + QPoint(i * 7 % 31 - 15, i * 5 % 21 - 10);
        arguments += drag(pointer, next);
        pointer = next;
    }

    // An attempt in which the machine stalled between a move and a press wasn't one in haste.
    for (int attempt = 0; attempt < Attempts; ++attempt) {
        Window window;
        QWK::WidgetWindowAgent agent;
        const Answer answer(&agent);
        agent.setup(&window);
        window.present();
        PressWatch watch;
        window.windowHandle()->installEventFilter(&watch);

        xdotoolBeside(arguments);
        QTRY_COMPARE(watch.presses, Drags);
        settle(window);
        if (watch.longestPause > LongestHaste)
            continue;

        QCOMPARE(answer.questions.size(), Drags);
        verifyPlace(window, pointer - HeaderPoint);
        return;
    }
    QFAIL("the machine stalled in each attempt");
}

QTEST_MAIN(tst_WidgetWindowAgentHaste)
#include "tst_WidgetWindowAgentHaste.moc"
