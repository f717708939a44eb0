#pragma once

#include <string>

#include <X11/Xlib.h>
#include <sys/types.h>

namespace Bench {

/*!
    A program with a window, seen from outside through the X server.

    One object at a time: it takes the first large window that appears on the display for its own.
*/
class WindowProgram
{
public:
    /*!
        Starts \a program, with \a argument if there is one, and waits until its window is mapped.
       Ends this process when that takes longer than half a minute.
    */
    explicit WindowProgram(const std::string &program, const std::string &argument = {});
    //! Ends the program and waits until the X server has dropped its window.
    ~WindowProgram();

    WindowProgram(const WindowProgram &) = delete;
    WindowProgram &operator=(const WindowProgram &) = delete;

    //! Milliseconds from before the process was made until the server told that the window is
    //! mapped.
    double mappedAfterMs() const { return m_mappedAfterMs; }
    //! Processor time in milliseconds that the program, without its children, had used by then.
    double cpuUntilMappedMs() const { return m_cpuUntilMappedMs; }
    pid_t pid() const { return m_pid; }

    //! Takes the window off the screen, as a window manager does to minimise it.
    void iconify();

private:
    void awaitWindow(int eventType, const char *what);

    Display *m_display;
    Window m_window = None;
    pid_t m_pid = -1;
    double m_mappedAfterMs = 0;
    double m_cpuUntilMappedMs = 0;
};

//! A window over the whole display, for as long as the object lives.
class Cover
{
public:
    Cover();
    ~Cover();

    Cover(const Cover &) = delete;
    Cover &operator=(const Cover &) = delete;

private:
    Display *m_display;
};

} // namespace Bench
