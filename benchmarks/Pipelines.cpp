#include "benchmarks/Pipelines.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace Bench {

namespace {

constexpr const char *Shell = "/bin/bash";
constexpr const char *Probe = "pgrep -lf Corvane | grep -w Corvane | awk '{print $1}'";
constexpr const char *DetailHead = "ps -o comm,pid,user,etime,%cpu,%mem -p ";
constexpr const char *DetailTail = " | grep -w Corvane";

//! A program's name and its arguments; what is left of the array is null and ends the list.
using Arguments = std::array<const char *, 4>;

std::array<int, 2> makePipe()
{
    std::array<int, 2> ends = {-1, -1};
    if (pipe2(ends.data(), O_CLOEXEC) != 0)
        fail("pipe2 failed");
    return ends;
}

pid_t spawn(const char *program, const Arguments &arguments,
            const posix_spawn_file_actions_t *actions)
{
    pid_t pid = -1;
    // The interface takes char *const[] for reasons of age; it changes nothing.
    if (posix_spawn(&pid, program, actions, nullptr, const_cast<char *const *>(arguments.data()),
                    environ)
        != 0)
        fail(std::string("can't start ") + program);
    return pid;
}

int waitFor(pid_t pid)
{
    int status = 0;
    while (waitpid(pid, &status, 0) < 0 && errno == EINTR) { }
    return status;
}

void run(Pipelines pipelines, Runner runner)
{
    if (pipelines == Pipelines::StartUp)
        runner(Probe);
    if (runner(detailCommand(atoll(runner(Probe).c_str()))).empty())
        fail("no daemon answers, or more than one");
}

} // namespace

std::string probeCommand()
{
    return Probe;
}

std::string detailCommand(long long pid)
{
    return DetailHead + std::to_string(pid) + DetailTail;
}

std::string spawnShell(const std::string &commandLine)
{
    const auto ends = makePipe();
    posix_spawn_file_actions_t actions = {};
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, ends[1], STDOUT_FILENO);
    const Arguments arguments = {Shell, "-c", commandLine.c_str(), nullptr};
    const pid_t pid = spawn(Shell, arguments, &actions);
    posix_spawn_file_actions_destroy(&actions);
    close(ends[1]);

    std::string output;
    std::array<char, 4096> buffer = {};
    ssize_t length = 0;
    while ((length = read(ends[0], buffer.data(), buffer.size())) > 0)
        output.append(buffer.data(), static_cast<size_t>(length));
    close(ends[0]);
    waitFor(pid);
    return output;
}

int serve(Runner runner)
{
    char request = 0;
    while (read(STDIN_FILENO, &request, 1) == 1) {
        const Times before = now();
        run(static_cast<Pipelines>(request), runner);
        const Times taken = now() - before;
        if (write(STDOUT_FILENO, &taken, sizeof taken) != static_cast<ssize_t>(sizeof taken))
            return EXIT_FAILURE;
    }
    return EXIT_SUCCESS;
}

pid_t start(const std::string &program, const std::string &argument)
{
    const Arguments arguments = {program.c_str(), argument.empty() ? nullptr : argument.c_str()};
    return spawn(program.c_str(), arguments, nullptr);
}

void end(pid_t pid)
{
    kill(pid, SIGTERM);
    waitFor(pid);
}

RunningDaemon::RunningDaemon()
    : m_pid(start(PANEL_BENCH_DAEMON, "quickboot"))
{
}

RunningDaemon::~RunningDaemon()
{
    end(m_pid);
}

FloorProgram::FloorProgram(const std::string &program)
{
    const auto requests = makePipe();
    const auto answers = makePipe();
    posix_spawn_file_actions_t actions = {};
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, requests[0], STDIN_FILENO);
    posix_spawn_file_actions_adddup2(&actions, answers[1], STDOUT_FILENO);
    const Arguments arguments = {program.c_str()};
    m_pid = spawn(program.c_str(), arguments, &actions);
    posix_spawn_file_actions_destroy(&actions);
    close(requests[0]);
    close(answers[1]);
    m_requests = requests[1];
    m_answers = answers[0];
}

FloorProgram::~FloorProgram()
{
    // The program ends with its input.
    close(m_requests);
    close(m_answers);
    waitFor(m_pid);
}

Times FloorProgram::measure(Pipelines pipelines)
{
    const char request = static_cast<char>(pipelines);
    Times times;
    if (write(m_requests, &request, 1) != 1
        || read(m_answers, &times, sizeof times) != static_cast<ssize_t>(sizeof times))
        fail("the floor program has ended");
    return times;
}

} // namespace Bench
