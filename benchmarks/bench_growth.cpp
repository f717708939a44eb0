// What is left behind by many refreshes: memory in use as the allocator counts it and written pages
// as the kernel counts them, and the number of objects, file descriptors, threads and children.
//
//   bench_growth [--refreshes N]

#include "benchmarks/Measure.h"
#include "benchmarks/PanelWindow.h"
#include "benchmarks/Pipelines.h"
#include "benchmarks/Processes.h"

#include <QApplication>

#include <algorithm>

#include <malloc.h>
#include <unistd.h>

namespace {

constexpr int DefaultRefreshes = 10000;
constexpr int SettledAfter = 10;
constexpr int Samples = 100;
constexpr double BytesPerKib = 1024;

//! The first part of the run is for caches to fill, and for those that time out to be dropped.
constexpr int SettlingPart = 5;

//! Slopes below this many standard errors are none.
constexpr double ErrorsOfDoubt = 3;
//! So is one page more or less in the whole run: the line through a step of one page is this steep.
constexpr double StepBytes = 1.5 * 4096;

int countObjects()
{
    int count = 0;
    const QWidgetList windows = QApplication::topLevelWidgets();
    for (const QWidget *window : windows)
        count += 1 + window->findChildren<QObject *>().size();
    return count + qApp->findChildren<QObject *>().size();
}

void reportSlope(const std::string &what, const std::vector<double> &samples, int step)
{
    const Bench::Slope slope = Bench::slope(samples);
    const double refreshes = static_cast<double>(samples.size()) * step;
    Bench::report(what + ", bytes a refresh", "B", slope.perStep / step, Bench::NoFloor,
                  std::max(ErrorsOfDoubt * slope.error / step, StepBytes / refreshes));
}

void reportCount(const std::string &what, int atTheTenth, int atTheEnd)
{
    Bench::report(what + " at the end, against the tenth", "", atTheEnd, Bench::NoFloor,
                  atTheTenth);
}

} // namespace

int main(int argc, char *argv[])
{
    const Bench::RunningDaemon daemon;
    Bench::setUpEnvironment();
    QApplication app(argc, argv);
    Bench::setUpApplication();
    const int refreshes = Bench::numberOption(argc, argv, "--refreshes", DefaultRefreshes);
    const int step = std::max(1, refreshes / Samples);

    Bench::PanelWindow panel;
    int objects = 0;
    Bench::Holdings holdings;
    std::vector<double> inUse;
    std::vector<double> written;
    for (int i = 1; i <= refreshes; ++i) {
        panel.refresh();
        Bench::handleEvents();
        if (i == SettledAfter) {
            objects = countObjects();
            holdings = Bench::holdings(getpid());
        }
        if (i > refreshes / SettlingPart && i % step == 0) {
            const struct mallinfo2 heap = mallinfo2();
            inUse.push_back(static_cast<double>(heap.uordblks + heap.hblkhd));
            written.push_back(Bench::memory(getpid()).dirtyKib * BytesPerKib);
        }
    }

    const Bench::Holdings last = Bench::holdings(getpid());
    reportSlope("growth of the heap in use", inUse, step);
    reportSlope("growth of written pages", written, step);
    reportCount("objects", objects, countObjects());
    reportCount("file descriptors", holdings.fileDescriptors, last.fileDescriptors);
    reportCount("threads", holdings.threads, last.threads);
    reportCount("child processes", holdings.children, last.children);
    return 0;
}
