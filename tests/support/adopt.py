#!/usr/bin/python3
"""Runs a command, then ends and reaps all that it leaves behind, for systems without PID namespaces:

    adopt.py COMMAND...

The exit status is the command's; 70 where that can't be told. When this program ends before the
command does, the command ends with it.
"""

import ctypes
import os
import signal
import sys

PR_SET_CHILD_SUBREAPER = 36
UNKNOWN = 70


def wait_for_any():
    pid, status = os.wait()
    code = os.waitstatus_to_exitcode(status)
    return pid, 128 - code if code < 0 else code


def own_children():
    with open("/proc/thread-self/children") as children:
        return [int(pid) for pid in children.read().split()]


def adopt(command, alive, answer):
    """Runs COMMAND until it or the pipe ALIVE ends, and writes its status to the pipe ANSWER."""
    libc = ctypes.CDLL(None, use_errno=True)
    if libc.prctl(PR_SET_CHILD_SUBREAPER, 1, 0, 0, 0) != 0:
        sys.exit("adopt.py: " + os.strerror(ctypes.get_errno()))
    # Python ignores these two.
    default = [signal.SIGPIPE, signal.SIGXFSZ]
    child = os.posix_spawnp(command[0], command, os.environ, setsigdef=default)
    watch = os.fork()
    if watch == 0:
        os.close(answer)
        os.read(alive, 1)
        os._exit(0)

    # Only this process reaps its children, so no PID that it signals can be another's by now.
    pid = status = None
    while pid != child:
        pid, status = wait_for_any()
        if pid == watch:
            os.kill(child, signal.SIGKILL)
    while pids := own_children():
        for pid in pids:
            os.kill(pid, signal.SIGKILL)
        wait_for_any()
    os.write(answer, bytes([status]))


def main(command):
    alive_end, alive = os.pipe()
    answer, answer_end = os.pipe()
    # The subreaper is no descendant of this process: ctest kills all of those where a test runs out of
    # time, and where process 1 reaps nobody, pgrep would list the test's daemons forever.
    between = os.fork()
    if between == 0:
        if os.fork() == 0:
            os.close(alive)
            os.setsid()
            adopt(command, alive_end, answer_end)
        os._exit(0)
    os.waitpid(between, 0)
    os.close(answer_end)

    life = os.fdopen(alive, "wb", 0)
    for number in (signal.SIGHUP, signal.SIGINT, signal.SIGTERM):
        signal.signal(number, lambda *_: life.close())
    status = os.read(answer, 1)
    return status[0] if status else UNKNOWN


sys.exit(main(sys.argv[1:]))
