// One refresh of the run-status page in a process as large as the panel, against the same commands
// run by the baseline. The two take turns. Prints the medians as a table with tabs, in
// milliseconds:
//
//   bench_refresh ROUNDS

#include "benchmarks/Times.h"
#include "overview/OverviewForm.h"
#include "shell/ServiceContainer.h"

#include <QAbstractEventDispatcher>
#include <QApplication>
#include <QElapsedTimer>
#include <QProcess>
#include <QTimer>
#include <QWindow>

#include <algorithm>
#include <vector>

namespace {

constexpr int WarmUpRounds = 10;
constexpr int TimeoutMs = 30000;

void handleEvents()
{
    while (QAbstractEventDispatcher::instance()->processEvents(QEventLoop::AllEvents)) { }
}

void waitForExposure(const QWidget &window)
{
    QElapsedTimer waited;
    waited.start();
    while (!window.windowHandle()->isExposed()) {
        if (waited.hasExpired(TimeoutMs))
            qFatal("the window was not exposed");
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, TimeoutMs);
    }
    handleEvents();
}

//! What one round takes in the baseline.
Times baselineRound(QProcess &baseline)
{
    Times taken;
    baseline.write("r");
    while (baseline.bytesAvailable() < qint64(sizeof taken)) {
        if (!baseline.waitForReadyRead(TimeoutMs))
            qFatal("the baseline has ended");
    }
    baseline.read(reinterpret_cast<char *>(&taken), sizeof taken);
    return taken;
}

double median(const std::vector<Times> &all, double Times::*clock)
{
    std::vector<double> values;
    for (const Times &times : all)
        values.push_back(times.*clock);
    std::sort(values.begin(), values.end());
    return values.at(values.size() / 2);
}

void report(const char *what, double panel, double baseline)
{
    printf("%s\t%.2f\t%.2f\n", what, panel, baseline);
}

} // namespace

int main(int argc, char *argv[])
{
    // As the panel's own start-up sets it.
    qputenv("QT_QPA_PLATFORM", "xcb");
    qputenv("QT_XCB_GL_INTEGRATION", "none");
    QApplication app(argc, argv);
    QFont font;
    font.setPointSize(9);
    QApplication::setFont(font);
    const int rounds = QCoreApplication::arguments().value(1).toInt();
    if (rounds <= 0)
        qFatal("needs a number of rounds");

    ServiceContainer window;
    auto *page = window.findChild<OverviewForm *>();
    // Refreshes come when this program calls for them.
    page->findChild<QTimer *>()->stop();
    window.show();
    waitForExposure(window);

    QProcess baseline;
    baseline.start(QStringLiteral(PANEL_BENCH_BASELINE), {QStringLiteral("refresh")});
    std::vector<Times> refreshes;
    std::vector<Times> repaints;
    std::vector<Times> baselines;
    for (int round = 0; round < WarmUpRounds + rounds; ++round) {
        const Times baselineTook = baselineRound(baseline);
        const Times before = now();
        if (!QMetaObject::invokeMethod(page, "syncOWInfo", Qt::DirectConnection))
            qFatal("the page has no refresh");
        const Times refreshed = now();
        handleEvents();
        const Times painted = now();
        if (round < WarmUpRounds)
            continue;
        baselines.push_back(baselineTook);
        refreshes.push_back(refreshed - before);
        repaints.push_back(painted - refreshed);
    }
    baseline.closeWriteChannel();
    baseline.waitForFinished();

    report("refresh, wall time", median(refreshes, &Times::wall), median(baselines, &Times::wall));
    report("refresh and repaint, own processor time",
           median(refreshes, &Times::own) + median(repaints, &Times::own),
           median(baselines, &Times::own));
    return EXIT_SUCCESS;
}
