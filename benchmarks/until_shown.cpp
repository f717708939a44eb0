// Starts a program, waits until the X server has mapped its window, and kills it:
//
//   until_shown [--memory] PROGRAM [ARGUMENT...]
//
// With --memory it first waits until the program is idle and prints two numbers in KiB: the memory
// that the program has written and shares with nobody, and the peak of its resident set. Pages that
// were only read don't count: whether they are private depends on what else runs.

#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <string>
#include <thread>

#include <X11/Xlib.h>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

constexpr int TimeoutMs = 30000;
//! Toolkits make small windows too, for their own use.
constexpr int LeastWidth = 300;
//! A program that has used no processor time for so long is idle.
constexpr std::chrono::milliseconds Quiet(500);
//! Some programs never are.
constexpr int MostLooks = 20;

pid_t child = -1;

[[noreturn]] void fail(const char *what)
{
    fprintf(stderr, "until_shown: %s\n", what);
    if (child > 0)
        kill(child, SIGKILL);
    exit(EXIT_FAILURE);
}

XEvent nextEvent(Display *display)
{
    while (XPending(display) == 0) {
        pollfd connection = {ConnectionNumber(display), POLLIN, 0};
        if (poll(&connection, 1, TimeoutMs) <= 0)
            fail("no window was mapped");
    }
    XEvent event;
    XNextEvent(display, &event);
    return event;
}

void awaitMappedWindow(Display *display)
{
    Window window = None;
    while (true) {
        const XEvent event = nextEvent(display);
        if (event.type == CreateNotify && event.xcreatewindow.parent == DefaultRootWindow(display)
            && event.xcreatewindow.width >= LeastWidth && window == None) {
            window = event.xcreatewindow.window;
            // A window manager takes it out of the root window: follow it into its frame.
            XSelectInput(display, window, StructureNotifyMask);
            XWindowAttributes attributes;
            if (XGetWindowAttributes(display, window, &attributes) != 0
                && attributes.map_state == IsViewable)
                return;
        } else if (event.type == MapNotify && event.xmap.window == window) {
            return;
        } else if (event.type == DestroyNotify && event.xdestroywindow.window == window) {
            window = None; // the program makes another
        }
    }
}

std::string file(const char *name)
{
    return "/proc/" + std::to_string(child) + '/' + name;
}

//! The sum of the numbers after \a name in a file of lines "name: number".
long field(const char *fileName, const std::string &name)
{
    std::ifstream stream(file(fileName));
    long sum = 0;
    for (std::string line; std::getline(stream, line);) {
        if (line.compare(0, name.size() + 1, name + ':') == 0)
            sum += std::stol(line.substr(name.size() + 1));
    }
    return sum;
}

long long processorTime()
{
    long long ns = 0;
    std::ifstream(file("schedstat")) >> ns;
    return ns;
}

void awaitIdle()
{
    long long before = -1;
    long long used = processorTime();
    for (int i = 0; i < MostLooks && used != before; ++i) {
        before = used;
        std::this_thread::sleep_for(Quiet);
        used = processorTime();
    }
}

} // namespace

int main(int argc, char *argv[])
{
    const bool memory = argc > 1 && strcmp(argv[1], "--memory") == 0;
    char **command = argv + (memory ? 2 : 1);
    Display *display = XOpenDisplay(nullptr);
    if (!display || !command[0])
        fail("needs a program, and a display");
    // The program may have dropped a window before we ask for its events.
    XSetErrorHandler([](Display *, XErrorEvent *) { return 0; });
    XSelectInput(display, DefaultRootWindow(display), SubstructureNotifyMask);
    XSync(display, False);

    if (posix_spawnp(&child, command[0], nullptr, nullptr, command, environ) != 0)
        fail("can't start the program");
    awaitMappedWindow(display);
    if (memory) {
        awaitIdle();
        printf("%ld %ld\n", field("smaps_rollup", "Private_Dirty"), field("status", "VmHWM"));
    }
    kill(child, SIGKILL);
    waitpid(child, nullptr, 0);
    return EXIT_SUCCESS;
}
