// What the panel uses while nobody touches it, with its window shown, covered by another and
// minimised. Nearly all of it are the refreshes, of which there are twenty in a minute.
//
//   bench_idle [--seconds N]     length of each of the three watches

#include "benchmarks/Measure.h"
#include "benchmarks/Pipelines.h"
#include "benchmarks/Processes.h"
#include "benchmarks/WindowProgram.h"

#include <chrono>
#include <thread>

namespace {

constexpr int DefaultSeconds = 60;
constexpr int SecondsPerMinute = 60;
constexpr int QuietMs = 200;

void watch(const std::string &state, const Bench::WindowProgram &program, int seconds)
{
    Bench::waitUntilQuiet(program.pid(), QuietMs);
    const Bench::Activity before = Bench::activity(program.pid());
    std::this_thread::sleep_for(std::chrono::seconds(seconds));
    const Bench::Activity after = Bench::activity(program.pid());

    const double perMinute = static_cast<double>(SecondsPerMinute) / seconds;
    Bench::report("wake-ups a minute, window " + state, "",
                  (after.wakeUps - before.wakeUps) * perMinute);
    Bench::report("processor time a minute, window " + state, "ms",
                  (after.cpuMs - before.cpuMs) * perMinute);
}

} // namespace

int main(int argc, char *argv[])
{
    const int seconds = Bench::numberOption(argc, argv, "--seconds", DefaultSeconds);
    const Bench::RunningDaemon daemon;

    Bench::WindowProgram panel(PANEL_BENCH_PROGRAM);
    watch("shown", panel, seconds);
    {
        const Bench::Cover cover;
        watch("covered", panel, seconds);
    }
    panel.iconify();
    watch("minimised", panel, seconds);

    {
        const Bench::WindowProgram empty(PANEL_BENCH_FLOOR_WINDOW);
        watch("shown, of the empty program", empty, seconds);
    }
    return 0;
}
