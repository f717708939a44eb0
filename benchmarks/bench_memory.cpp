// Memory of the panel, at rest behind its first refresh, against an empty window.
//
//   bench_memory [--rounds N]

#include "benchmarks/Measure.h"
#include "benchmarks/Pipelines.h"
#include "benchmarks/Processes.h"
#include "benchmarks/WindowProgram.h"

namespace {

constexpr int DefaultRounds = 10;
constexpr int QuietMs = 200;
constexpr double RatioAim = 1.10;

struct Figures
{
    std::vector<double> dirty;
    std::vector<double> all;
    std::vector<double> peak;
};

void measure(Figures &figures, const char *program, const char *argument = "")
{
    const Bench::WindowProgram window(program, argument);
    Bench::waitUntilQuiet(window.pid(), QuietMs);
    const Bench::Memory memory = Bench::memory(window.pid());
    figures.dirty.push_back(memory.dirtyKib);
    figures.all.push_back(memory.privateKib);
    figures.peak.push_back(memory.peakKib);
}

void report(const std::string &subject, const Figures &panel, const Figures &floor,
            std::vector<double> Figures::*which, double aim = RatioAim)
{
    Bench::report(subject, "KiB", Bench::median(panel.*which), Bench::median(floor.*which), aim);
}

} // namespace

int main(int argc, char *argv[])
{
    const int rounds = Bench::numberOption(argc, argv, "--rounds", DefaultRounds);
    const Bench::RunningDaemon daemon;
    Figures panel;
    Figures floor;
    Figures lean;
    for (int round = 0; round < rounds; ++round) {
        measure(panel, PANEL_BENCH_PROGRAM);
        measure(floor, PANEL_BENCH_FLOOR_WINDOW);
        measure(lean, PANEL_BENCH_FLOOR_WINDOW, "lean");
    }

    report("private memory", panel, floor, &Figures::all);
    report("private memory, written pages only", panel, floor, &Figures::dirty);
    report("peak of the resident set", panel, floor, &Figures::peak);
    const char *const against = ", against the window without OpenGL";
    report(std::string("private memory") + against, panel, lean, &Figures::all, Bench::NoAim);
    report(std::string("peak of the resident set") + against, panel, lean, &Figures::peak,
           Bench::NoAim);
    return 0;
}
