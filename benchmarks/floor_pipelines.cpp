// The floor of the refresh and of start-up's waits: a bare program that runs the pipelines.

#include "benchmarks/Pipelines.h"

int main()
{
    return Bench::serve(Bench::spawnShell);
}
