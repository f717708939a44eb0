// Times single functions of the panel with Google Benchmark, whose command line it takes. The
// benchmarks of each room are in functions_<room>.cpp.

#include "benchmarks/PanelWindow.h"
#include "benchmarks/Pipelines.h"

#include <QApplication>

#include <benchmark/benchmark.h>

int main(int argc, char *argv[])
{
    const Bench::RunningDaemon daemon;
    Bench::setUpEnvironment();
    QApplication app(argc, argv);
    Bench::setUpApplication();

    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return EXIT_FAILURE;
    benchmark::RunSpecifiedBenchmarks();
    return EXIT_SUCCESS;
}
