#include "tests/faults/DaemonFlock.h"
#include "tests/support/files.h"

#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QThread>

#include <csignal>

namespace {

constexpr int StateTimeoutMs = 20000;

//! What stands behind the name in /proc/\a pid/stat: the state's letter first. Empty when the
//! process is gone.
QByteArray processState(qint64 pid)
{
    const QByteArray line = readFile(QStringLiteral("/proc/%1/stat").arg(pid));
    return line.mid(line.lastIndexOf(')') + 2);
}

QByteArray processName(qint64 pid)
{
    return readFile(QStringLiteral("/proc/%1/comm").arg(pid)).trimmed();
}

template<typename Condition>
void waitUntil(Condition holds, const char *what)
{
    // Without the event loop: no refresh of a page in this process may come in between.
    QElapsedTimer timer;
    timer.start();
    while (!holds()) {
        if (timer.hasExpired(StateTimeoutMs))
            qFatal("%s", what);
        QThread::yieldCurrentThread();
    }
}

} // namespace

DaemonFlock::DaemonFlock()
    : m_program(m_folder.filePath(QStringLiteral("Corvane")))
{
    if (!QFile::copy(QStringLiteral(PANEL_TEST_DAEMON), m_program))
        qFatal("can't copy the stand-in daemon");
}

DaemonFlock::~DaemonFlock()
{
    while (!m_pids.isEmpty())
        kill(m_pids.first());
}

qint64 DaemonFlock::start()
{
    qint64 pid = 0;
    if (!QProcess::startDetached(m_program, {}, m_folder.path(), &pid))
        qFatal("can't start the stand-in daemon");
    adopt(pid);
    return pid;
}

void DaemonFlock::kill(qint64 pid)
{
    ::kill(static_cast<pid_t>(pid), SIGKILL);
    waitUntil([pid] { return processState(pid).isEmpty(); }, "the daemon doesn't go");
    m_pids.removeAll(pid);
}

void DaemonFlock::stop(qint64 pid)
{
    ::kill(static_cast<pid_t>(pid), SIGSTOP);
    waitUntil([pid] { return processState(pid).startsWith('T'); }, "the daemon doesn't stop");
}

void DaemonFlock::resume(qint64 pid)
{
    ::kill(static_cast<pid_t>(pid), SIGCONT);
    waitUntil([pid] { return !processState(pid).startsWith('T'); }, "the daemon doesn't go on");
}

void DaemonFlock::adopt(qint64 pid)
{
    for (int i = m_pids.size() - 1; i >= 0; --i) {
        if (processState(m_pids.at(i)).isEmpty())
            m_pids.removeAt(i);
    }
    if (pid == 0)
        return;
    waitUntil([pid] { return processName(pid) == "Corvane"; }, "the daemon doesn't come");
    m_pids.append(pid);
}
