#pragma once

#include "benchmarks/Measure.h"

#include <string>

#include <sys/types.h>

/*!
    The floor of everything that waits for the shell: the panel's pipelines, run by programs that do
    nothing but read their output. Knows neither Qt nor the panel.
*/
namespace Bench {

//! Which pipelines a step runs.
enum class Pipelines : char {
    Refresh = 'r', //!< the probe and the details of what it found: one refresh
    StartUp = 's', //!< the probe, then one refresh
};

//! The command line that finds the daemon, and the one that tells of process \a pid.
std::string probeCommand();
std::string detailCommand(long long pid);

//! A way to run a command line in the shell: returns its standard output.
using Runner = std::string (*)(const std::string &commandLine);

//! The bare way: posix_spawn, and nothing but standard output is taken.
std::string spawnShell(const std::string &commandLine);

/*!
    The main loop of a floor program: for each request on standard input, runs the pipelines that it
    stands for by \a runner, one after the other, and writes what they took to standard output. Ends
    with the input; ends the program where no daemon answers. Returns the exit status.
*/
int serve(Runner runner);

//! Starts \a program with \a arguments in this environment and returns its process number.
pid_t start(const std::string &program, const std::string &argument = {});

//! Ends process \a pid, a child of this one, and waits for its end.
void end(pid_t pid);

/*!
    A stand-in daemon that runs for as long as the object lives. It is visible to the probe when the
    constructor returns.
*/
class RunningDaemon
{
public:
    RunningDaemon();
    ~RunningDaemon();

    RunningDaemon(const RunningDaemon &) = delete;
    RunningDaemon &operator=(const RunningDaemon &) = delete;

private:
    pid_t m_pid;
};

/*!
    A floor program, which measures pipelines on demand. It is a process of its own, so that a large
    measuring program doesn't slow down what the floor starts.
*/
class FloorProgram
{
public:
    explicit FloorProgram(const std::string &program);
    ~FloorProgram();

    FloorProgram(const FloorProgram &) = delete;
    FloorProgram &operator=(const FloorProgram &) = delete;

    //! Runs \a pipelines there and returns what they took there.
    Times measure(Pipelines pipelines);

private:
    pid_t m_pid = -1;
    int m_requests = -1;
    int m_answers = -1;
};

} // namespace Bench
