#include "tests/support/realInput.h"
#include "tests/windowkit/AgentWindow.h"

#include <QTest>

namespace {
constexpr int DragCount = 100;
}

class tst_WidgetWindowAgentFastDrags : public QObject
{
    Q_OBJECT

private slots:
    void cleanup();

    void endEachAtThePointer();
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

QTEST_MAIN(tst_WidgetWindowAgentFastDrags)
#include "tst_WidgetWindowAgentFastDrags.moc"
