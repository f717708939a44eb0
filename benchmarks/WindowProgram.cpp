#include "benchmarks/WindowProgram.h"

#include "benchmarks/Measure.h"
#include "benchmarks/Pipelines.h"
#include "benchmarks/Processes.h"

#include <poll.h>

namespace Bench {

namespace {

constexpr int TimeoutMs = 30000;

//! Toolkits make small windows too, for their own use.
constexpr int LeastWidth = 400;

Display *openDisplay()
{
    Display *display = XOpenDisplay(nullptr);
    if (!display)
        fail("no X server");
    return display;
}

//! The window that \a event is about, for the kinds of events that the watch waits for.
Window subject(const XEvent &event)
{
    switch (event.type) {
    case MapNotify:
        return event.xmap.window;
    case DestroyNotify:
        return event.xdestroywindow.window;
    default:
        return None;
    }
}

} // namespace

WindowProgram::WindowProgram(const std::string &program, const std::string &argument)
    : m_display(openDisplay())
{
    // The program may have dropped a window before we ask for its events.
    XSetErrorHandler([](Display *, XErrorEvent *) { return 0; });
    XSelectInput(m_display, DefaultRootWindow(m_display), SubstructureNotifyMask);
    XSync(m_display, False);

    const double before = now().wallMs;
    m_pid = start(program, argument);
    awaitWindow(MapNotify, "mapped");
    m_mappedAfterMs = now().wallMs - before;
    m_cpuUntilMappedMs = activity(m_pid).cpuMs;
}

WindowProgram::~WindowProgram()
{
    end(m_pid);
    awaitWindow(DestroyNotify, "gone");
    XCloseDisplay(m_display);
}

void WindowProgram::iconify()
{
    XIconifyWindow(m_display, m_window, DefaultScreen(m_display));
    XSync(m_display, False);
}

void WindowProgram::awaitWindow(int eventType, const char *what)
{
    while (true) {
        if (XPending(m_display) == 0) {
            pollfd connection = {ConnectionNumber(m_display), POLLIN, 0};
            if (poll(&connection, 1, TimeoutMs) <= 0)
                fail(std::string("no window was ") + what);
            continue;
        }
        XEvent event;
        XNextEvent(m_display, &event);
        if (event.type == CreateNotify && m_window == None
            && event.xcreatewindow.parent == DefaultRootWindow(m_display)
            && event.xcreatewindow.width >= LeastWidth) {
            m_window = event.xcreatewindow.window;
            // A window manager takes it out of the root window: follow it into its frame.
            XSelectInput(m_display, m_window, StructureNotifyMask);
            XWindowAttributes attributes;
            if (XGetWindowAttributes(m_display, m_window, &attributes) != 0
                && attributes.map_state == IsViewable && eventType == MapNotify)
                return;
        } else if (m_window != None && subject(event) == m_window) {
            if (event.type == eventType)
                return;
            // Dropped before it was mapped: the program makes another.
            if (event.type == DestroyNotify)
                m_window = None;
        }
    }
}

Cover::Cover()
    : m_display(openDisplay())
{
    const int screen = DefaultScreen(m_display);
    XSetWindowAttributes attributes = {};
    attributes.override_redirect = True;
    const Window window =
            XCreateWindow(m_display, DefaultRootWindow(m_display), 0, 0,
                          static_cast<unsigned>(DisplayWidth(m_display, screen)),
                          static_cast<unsigned>(DisplayHeight(m_display, screen)), 0,
                          CopyFromParent, InputOutput, nullptr, CWOverrideRedirect, &attributes);
    XMapRaised(m_display, window);
    XSync(m_display, False);
}

Cover::~Cover()
{
    // Takes its window with it.
    XCloseDisplay(m_display);
}

} // namespace Bench
