#include "tests/support/killDaemon.h"

#include "tests/support/files.h"

#include <QFile>
#include <QTest>

#include <cerrno>
#include <csignal>
#include <cstring>

#include <sys/syscall.h>
#include <unistd.h>

namespace {

constexpr int EndTimeoutMs = 30000;

} // namespace

void killDaemon(qint64 pid, const QString &program)
{
    // glibc of Debian 11 has no functions for these calls.
    const auto handle = static_cast<int>(::syscall(SYS_pidfd_open, static_cast<pid_t>(pid), 0U));
    if (handle < 0 && errno == ESRCH)
        return;
    if (handle < 0)
        qFatal("no handle of the process %lld: %s", pid, strerror(errno));
    const QString process = QStringLiteral("/proc/%1").arg(pid);
    // Asked with the handle held: the answer is about the process that the signal goes to, or that
    // one is gone.
    const bool isOurs = readFile(process + QStringLiteral("/cmdline"))
                                .startsWith(QFile::encodeName(program) + '\0');
    if (isOurs)
        ::syscall(SYS_pidfd_send_signal, handle, SIGKILL, nullptr, 0U);
    ::close(handle);
    if (isOurs && !QTest::qWaitFor([&process] { return !QFile::exists(process); }, EndTimeoutMs))
        qFatal("the daemon %lld doesn't end", pid);
}
