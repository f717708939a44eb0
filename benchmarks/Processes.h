#pragma once

#include <string>

#include <sys/types.h>

/*!
    What the system tells of a process, and a program's window as the X server sees it.
*/
namespace Bench {

//! Memory of a process in KiB.
struct Memory
{
    double dirtyKib = 0; //!< written by this process, in no other
    double privateKib = 0; //!< in no other process: the above, and files that only it has mapped
    double peakKib = 0; //!< the largest resident set so far, shared pages included
};

Memory memory(pid_t pid);

//! What a process has used so far: sums over its threads.
struct Activity
{
    double cpuMs = 0; //!< without its children
    double wakeUps = 0; //!< times that a thread has gone to sleep of its own will
};

Activity activity(pid_t pid);

//! What a process holds.
struct Holdings
{
    int fileDescriptors = 0;
    int threads = 0;
    int children = 0;
};

Holdings holdings(pid_t pid);

//! Waits until process \a pid has used no processor time for \a quietMs milliseconds.
void waitUntilQuiet(pid_t pid, int quietMs);

} // namespace Bench
