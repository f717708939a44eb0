// Start-up: from before the process is made to its window mapped, as the X server tells, against an
// empty window plus the pipelines that start-up waits for.
//
//   bench_startup [--rounds N] [--label TEXT]

#include "benchmarks/Measure.h"
#include "benchmarks/Pipelines.h"
#include "benchmarks/WindowProgram.h"

#include <cstring>

namespace {

constexpr int DefaultRounds = 60;
constexpr int WarmUpRounds = 3;
constexpr double RatioAim = 1.10;

struct Figures
{
    std::vector<double> mappedMs;
    std::vector<double> cpuMs;
};

void startOnce(Figures &figures, const char *program, const char *argument = "")
{
    const Bench::WindowProgram window(program, argument);
    figures.mappedMs.push_back(window.mappedAfterMs());
    figures.cpuMs.push_back(window.cpuUntilMappedMs());
}

} // namespace

int main(int argc, char *argv[])
{
    const int rounds = Bench::numberOption(argc, argv, "--rounds", DefaultRounds);
    std::string label;
    for (int i = 1; i + 1 < argc; ++i) {
        if (strcmp(argv[i], "--label") == 0)
            label = std::string(", ") + argv[i + 1];
    }

    const Bench::RunningDaemon daemon;
    Bench::FloorProgram pipelines(PANEL_BENCH_FLOOR_PIPELINES);
    Figures panel;
    Figures empty;
    Figures lean;
    std::vector<double> waits;
    for (int round = -WarmUpRounds; round < rounds; ++round) {
        // What the warm-up rounds measured is dropped with the first that counts.
        if (round == 0) {
            panel = empty = lean = {};
            waits.clear();
        }
        startOnce(panel, PANEL_BENCH_PROGRAM);
        startOnce(empty, PANEL_BENCH_FLOOR_WINDOW);
        startOnce(lean, PANEL_BENCH_FLOOR_WINDOW, "lean");
        waits.push_back(pipelines.measure(Bench::Pipelines::StartUp).wallMs);
    }

    const double started = Bench::median(panel.mappedMs);
    const double waited = Bench::median(waits);
    Bench::report("start-up to window mapped" + label, "ms", started,
                  Bench::median(empty.mappedMs) + waited, RatioAim);
    Bench::report("  against the window without OpenGL" + label, "ms", started,
                  Bench::median(lean.mappedMs) + waited);
    Bench::report("  of the floors: the pipelines" + label, "ms", waited);
    Bench::report("processor time to window mapped" + label, "ms", Bench::median(panel.cpuMs),
                  Bench::median(empty.cpuMs));
    Bench::report("  against the window without OpenGL" + label, "ms", Bench::median(panel.cpuMs),
                  Bench::median(lean.cpuMs));
    return 0;
}
