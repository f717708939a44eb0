#pragma once

#include <QList>
#include <QString>
#include <QStringList>
#include <QVariant>

#include <optional>

/*!
    What the panel knows of the daemon: its name, how to ask the system for it, how to read the
    answer, and how to start it.

    The functions that read a result take what executeInMain() returns: an empty list, or the
    standard output and the exit code. Start-up, the refresh of the run-status page and the repair
    judge the same answer by different rules, on purpose; each rule has its function here, and the
    caller names the one that it follows.
*/
namespace Daemon {

//! The process number of a daemon that isn't running, or of which nothing is known.
constexpr qint64 UnknownPid = -1;

//! The shell that runs the command lines below.
QString shell();

//! The arguments with which shell() runs \a commandLine.
QStringList shellArguments(const QString &commandLine);

//! The command line that prints the process number of each running daemon, one a line.
QString probeCommand();

/*!
    The command line that prints the process figures of process \a pid on one line, if that process
    is a daemon: command name, process number, user, elapsed time, CPU share and memory share,
    parted by blanks.
*/
QString detailCommand(qint64 pid);

//! The standard output in \a result as text; empty when the command could not be started.
QString outputText(const QList<QVariant> &result);

/*!
    Whether the probe's \a result tells of a daemon at all: the shell ran, it printed something and
    its exit code is 0. How many numbers it printed doesn't matter. The refresh and the repair go
    by this.
*/
bool isAnswer(const QList<QVariant> &result);

/*!
    The number that the probe's \a result holds, white space around it aside, or 0 when its text is
    not one decimal number (two daemons give two lines).
*/
qint64 pidOrZero(const QList<QVariant> &result);

/*!
    The number that the probe's \a result holds, or nothing when it is no answer or its text is not
    one decimal number. Start-up goes by this.
*/
std::optional<qint64> singlePid(const QList<QVariant> &result);

//! The path of the daemon's executable: beside the panel's own, whether it exists or not.
QString executablePath();

//! When launch() tries to start the daemon.
enum class LaunchRule {
    IfExecutableExists, //!< a missing executable is no attempt
    Always, //!< try in any case, and leave it to the system to refuse
};

/*!
    Logs the executable's path at information level, then starts the daemon detached with the
    argument "quickboot", in the panel's folder and with the panel's environment.

    Returns the process number of the new process, or nothing when it was not started. Doesn't
    wait, try again or look whether the daemon stays up.
*/
std::optional<qint64> launch(LaunchRule rule);

} // namespace Daemon
