// One refresh of the run-status page, in a process as large as the panel, against the same two
// pipelines run by a bare program, and by QProcess in a program with an empty window. The three
// take turns.
//
//   bench_refresh [--rounds N]

#include "app/daemon.h"
#include "app/executeInMain.h"
#include "benchmarks/Measure.h"
#include "benchmarks/PanelWindow.h"
#include "benchmarks/Pipelines.h"

#include <QApplication>
#include <QPaintEvent>

namespace {

constexpr int DefaultRounds = 400;
constexpr int WarmUpRounds = 10;
constexpr int PaintRounds = 20;
constexpr double WallRatioAim = 1.05;
constexpr double OwnMsAim = 1.0;

//! Adds up the pixels that widgets are asked to paint.
class PaintWatch : public QObject
{
    Q_OBJECT

public:
    qint64 takePixels() { return std::exchange(m_pixels, 0); }

    bool eventFilter(QObject *, QEvent *event) override
    {
        if (event->type() == QEvent::Paint) {
            for (const QRect &rect : static_cast<QPaintEvent *>(event)->region())
                m_pixels += qint64(rect.width()) * rect.height();
        }
        return false;
    }

private:
    qint64 m_pixels = 0;
};

//! The floor must run what the panel runs.
void checkPipelines()
{
    constexpr qint64 anyPid = 1234;
    if (Daemon::probeCommand().toStdString() != Bench::probeCommand()
        || Daemon::detailCommand(anyPid).toStdString() != Bench::detailCommand(anyPid))
        Bench::fail("the floor runs other pipelines than the panel");
}

//! What a refresh asks the system, without what it does with the answers.
void runPipelines()
{
    const auto probe =
            executeInMain(Daemon::shell(), Daemon::shellArguments(Daemon::probeCommand()));
    executeInMain(Daemon::shell(),
                  Daemon::shellArguments(Daemon::detailCommand(Daemon::pidOrZero(probe))));
}

void reportPaintedPixels(Bench::PanelWindow &panel)
{
    PaintWatch watch;
    qApp->installEventFilter(&watch);
    std::vector<double> pixels;
    for (int i = 0; i < PaintRounds; ++i) {
        panel.refresh();
        Bench::handleEvents();
        pixels.push_back(static_cast<double>(watch.takePixels()));
    }
    qApp->removeEventFilter(&watch);
    Bench::report("pixels painted by widgets for a refresh", "", Bench::median(pixels));
}

} // namespace

int main(int argc, char *argv[])
{
    checkPipelines();
    const Bench::RunningDaemon daemon;
    Bench::FloorProgram bare(PANEL_BENCH_FLOOR_PIPELINES);
    Bench::setUpEnvironment();
    QApplication app(argc, argv);
    Bench::setUpApplication();
    const int rounds = Bench::numberOption(argc, argv, "--rounds", DefaultRounds);

    Bench::PanelWindow panel;
    Bench::FloorProgram qprocess(PANEL_BENCH_FLOOR_QPROCESS);
    Bench::Series refreshes;
    Bench::Series repaints;
    Bench::Series pipelines;
    Bench::Series bares;
    Bench::Series qprocesses;
    for (int round = 0; round < WarmUpRounds + rounds; ++round) {
        const Bench::Times bareTook = bare.measure(Bench::Pipelines::Refresh);
        const Bench::Times qprocessTook = qprocess.measure(Bench::Pipelines::Refresh);
        const Bench::Times start = Bench::now();
        runPipelines();
        const Bench::Times before = Bench::now();
        panel.refresh();
        const Bench::Times refreshed = Bench::now();
        Bench::handleEvents();
        const Bench::Times painted = Bench::now();
        if (round < WarmUpRounds)
            continue;
        bares.add(bareTook);
        qprocesses.add(qprocessTook);
        pipelines.add(before - start);
        refreshes.add(refreshed - before);
        repaints.add(painted - refreshed);
    }

    const char *const against = "  against QProcess in an empty window";
    Bench::report("refresh, wall time", "ms", refreshes.wallMs(), bares.wallMs(), WallRatioAim);
    Bench::report(against, "ms", refreshes.wallMs(), qprocesses.wallMs());
    Bench::report("refresh, processor time of the children", "ms", refreshes.childrenMs(),
                  bares.childrenMs());
    Bench::report(against, "ms", refreshes.childrenMs(), qprocesses.childrenMs());
    Bench::report("refresh, own processor time", "ms", refreshes.ownMs(), bares.ownMs());
    Bench::report(against, "ms", refreshes.ownMs(), qprocesses.ownMs());
    Bench::report("  of it: running the pipelines", "ms", pipelines.ownMs(), qprocesses.ownMs());
    Bench::report("repaint after it, own processor time", "ms", repaints.ownMs());
    Bench::report("refresh and repaint, own processor time", "ms",
                  refreshes.ownMs() + repaints.ownMs(), Bench::NoFloor, OwnMsAim);
    reportPaintedPixels(panel);
    return 0;
}

#include "bench_refresh.moc"
