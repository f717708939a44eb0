// The stand-in daemon: a real process of the daemon's name, for trying and testing the panel
// without the service itself. It runs until it is ended, and ends with status 0 on SIGTERM.
//
// What else it does it takes from its environment or, for a panel that was started without such
// variables, from a file "Corvane.conf" beside the executable with lines NAME=VALUE (the
// environment goes first):
//
//   CORVANE_RECORD=FILE          write PID, working directory, arguments and environment
//                                to FILE, complete before it appears under that name
//   CORVANE_EXIT_AFTER_MS=N      end with status 0 after N milliseconds
//   CORVANE_APPEAR_AFTER_MS=N    go by another process name for the first N milliseconds, as a
//                                service does that is slow to start
//   CORVANE_REFUSE=STATUS        end at once with this status
//   CORVANE_WHILE_OPEN=PIPE      end with status 0 once nobody has this named pipe open for writing

#include <cerrno>
#include <climits>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <map>
#include <string>

#include <fcntl.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/signalfd.h>
#include <unistd.h>

namespace {

std::string executablePath()
{
    char buffer[PATH_MAX];
    const ssize_t length = readlink("/proc/self/exe", buffer, sizeof buffer);
    return length > 0 ? std::string(buffer, static_cast<size_t>(length)) : std::string();
}

std::map<std::string, std::string> readConfiguration()
{
    std::map<std::string, std::string> values;
    std::ifstream file(executablePath() + ".conf");
    for (std::string line; std::getline(file, line);) {
        const size_t equals = line.find('=');
        if (equals != std::string::npos)
            values[line.substr(0, equals)] = line.substr(equals + 1);
    }
    for (const char *name : {"CORVANE_RECORD", "CORVANE_EXIT_AFTER_MS", "CORVANE_APPEAR_AFTER_MS",
                             "CORVANE_REFUSE", "CORVANE_WHILE_OPEN"}) {
        if (const char *value = getenv(name))
            values[name] = value;
    }
    return values;
}

bool record(const std::string &path, int argc, char *argv[])
{
    const std::string draft = path + '.' + std::to_string(getpid());
    {
        std::ofstream file(draft);
        char directory[PATH_MAX];
        file << "pid=" << getpid() << '\n';
        file << "directory=" << (getcwd(directory, sizeof directory) ? directory : "") << '\n';
        for (int i = 0; i < argc; ++i)
            file << "argument=" << argv[i] << '\n';
        for (char **variable = environ; *variable; ++variable)
            file << "environment=" << *variable << '\n';
        if (!file.flush())
            return false;
    }
    return rename(draft.c_str(), path.c_str()) == 0;
}

//! What ends the daemon: descriptors to poll, of which negative ones stand for nothing.
struct EndEvents
{
    int signals;
    int pipe;
};

//! Sleeps for \a ms milliseconds, -1 for ever, or until one of \a events comes; then returns true.
bool endsWithin(int ms, const EndEvents &events)
{
    pollfd sources[] = {{events.signals, POLLIN, 0}, {events.pipe, POLLIN, 0}};
    int count = -1;
    do {
        count = poll(sources, std::size(sources), ms);
    } while (count < 0 && errno == EINTR);
    return count > 0;
}

} // namespace

int main(int argc, char *argv[])
{
    sigset_t endSignals;
    sigemptyset(&endSignals);
    sigaddset(&endSignals, SIGTERM);
    sigaddset(&endSignals, SIGINT);
    sigprocmask(SIG_BLOCK, &endSignals, nullptr);
    EndEvents events = {signalfd(-1, &endSignals, SFD_CLOEXEC), -1};

    const auto configuration = readConfiguration();
    const auto value = [&configuration](const char *name) {
        const auto found = configuration.find(name);
        return found == configuration.end() ? std::string() : found->second;
    };

    const std::string appearAfter = value("CORVANE_APPEAR_AFTER_MS");
    if (!appearAfter.empty())
        prctl(PR_SET_NAME, "slow-start");

    const std::string recordPath = value("CORVANE_RECORD");
    if (!recordPath.empty() && !record(recordPath, argc, argv)) {
        perror(recordPath.c_str());
        return EXIT_FAILURE;
    }

    const std::string refuse = value("CORVANE_REFUSE");
    if (!refuse.empty())
        return atoi(refuse.c_str());

    const std::string whileOpen = value("CORVANE_WHILE_OPEN");
    if (!whileOpen.empty()) {
        events.pipe = open(whileOpen.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
        char byte = 0;
        if (events.pipe < 0 || read(events.pipe, &byte, 1) == 0)
            return EXIT_SUCCESS;
    }

    if (!appearAfter.empty()) {
        if (endsWithin(atoi(appearAfter.c_str()), events))
            return EXIT_SUCCESS;
        prctl(PR_SET_NAME, "Corvane");
    }

    const std::string exitAfter = value("CORVANE_EXIT_AFTER_MS");
    endsWithin(exitAfter.empty() ? -1 : atoi(exitAfter.c_str()), events);
    return EXIT_SUCCESS;
}
