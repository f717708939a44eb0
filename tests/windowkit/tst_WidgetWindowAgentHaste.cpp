#include "tests/windowkit/AgentWindow.h"

#include <QWKWidgets/widgetwindowagent.h>

#include <QTest>

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
    Window window;
    QWK::WidgetWindowAgent agent;
    const Answer answer(&agent);
    agent.setup(&window);
    window.present();

    // The presses come while earlier moves are still under way. Each hits the header, wherever the
    // window is by then.
    QStringList arguments;
    QPoint pointer = WindowPosition + HeaderPoint;
    for (int i = 0; i < 100; ++i) {
        const QPoint next = WindowPosition + HeaderPoint + QPoint(i * 7 % 31 - 15, i * 5 % 21 - 10);
        arguments += drag(pointer, next);
        pointer = next;
    }
    xdotoolBeside(arguments);
    QTRY_COMPARE(answer.questions.size(), 100);
    settle(window);
    verifyPlace(window, pointer - HeaderPoint);
}

QTEST_MAIN(tst_WidgetWindowAgentHaste)
#include "tst_WidgetWindowAgentHaste.moc"
