#include "benchmarks/Processes.h"

#include "benchmarks/Measure.h"

#include <chrono>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <thread>

namespace fs = std::filesystem;

namespace Bench {

namespace {

constexpr double NsPerMs = 1e6;

fs::path folder(pid_t pid)
{
    return fs::path("/proc") / std::to_string(pid);
}

//! The number behind \a name in a file of lines "name: number"; the sum where the name repeats.
double field(const fs::path &path, const std::string &name)
{
    std::ifstream file(path);
    double sum = 0;
    bool found = false;
    for (std::string line; std::getline(file, line);) {
        if (line.compare(0, name.size() + 1, name + ':') != 0)
            continue;
        sum += std::stod(line.substr(name.size() + 1));
        found = true;
    }
    if (!found)
        fail(path.string() + " tells no " + name);
    return sum;
}

int countEntries(const fs::path &path)
{
    const fs::directory_iterator entries(path);
    return static_cast<int>(std::distance(fs::begin(entries), fs::end(entries)));
}

} // namespace

Memory memory(pid_t pid)
{
    const fs::path rollup = folder(pid) / "smaps_rollup";
    Memory result;
    result.dirtyKib = field(rollup, "Private_Dirty");
    result.privateKib = result.dirtyKib + field(rollup, "Private_Clean");
    result.peakKib = field(folder(pid) / "status", "VmHWM");
    return result;
}

Activity activity(pid_t pid)
{
    Activity result;
    for (const auto &task : fs::directory_iterator(folder(pid) / "task")) {
        double ns = 0;
        std::ifstream(task.path() / "schedstat") >> ns;
        result.cpuMs += ns / NsPerMs;
        result.wakeUps += field(task.path() / "status", "voluntary_ctxt_switches");
    }
    return result;
}

Holdings holdings(pid_t pid)
{
    Holdings result;
    result.fileDescriptors = countEntries(folder(pid) / "fd");
    result.threads = countEntries(folder(pid) / "task");
    for (const auto &task : fs::directory_iterator(folder(pid) / "task")) {
        std::ifstream file(task.path() / "children");
        for (pid_t child = 0; file >> child;)
            ++result.children;
    }
    return result;
}

void waitUntilQuiet(pid_t pid, int quietMs)
{
    const std::chrono::milliseconds step(quietMs);
    double before = -1;
    double used = activity(pid).cpuMs;
    while (used != before) {
        before = used;
        std::this_thread::sleep_for(step);
        used = activity(pid).cpuMs;
    }
}

} // namespace Bench
