#pragma once

#include <QList>
#include <QString>
#include <QStringList>
#include <QVariant>

#include <array>
#include <optional>

/*!
    What the panel knows of the daemon: its name, how to ask the system for it, how to read the
    answer, and how to start it.

    The functions that read a result take what executeInMain() returns: an empty list, or the
    standard output and the exit code. Start-up, the refresh of the run-status page and the repair
    differ in what they do about several daemons or a number that can't be read, so each rule for
    reading the answer has its own function.
*/
namespace Daemon {

//! One of the process figures: what ps calls it, and how the run-status page shows it.
struct Figure
{
    const char *field;
    //! Of its column; for tr() of the page.
    const char *title;
    //! Follows each value.
    const char *suffix;
};

//! The process figures, in the order of the command line and of the columns.
inline constexpr std::array Figures = {
        Figure {"comm", QT_TRANSLATE_NOOP("OverviewForm", "进程"), ""},
        Figure {"pid", QT_TRANSLATE_NOOP("OverviewForm", "PID"), ""},
        Figure {"user", QT_TRANSLATE_NOOP("OverviewForm", "启动用户"), ""},
        Figure {"etime", QT_TRANSLATE_NOOP("OverviewForm", "运行时长"), ""},
        Figure {"%cpu", QT_TRANSLATE_NOOP("OverviewForm", "CPU占用率"), "%"},
        Figure {"%mem", QT_TRANSLATE_NOOP("OverviewForm", "内存占用率"), "%"},
};

//! The PID of a daemon that isn't running, or of which nothing is known.
constexpr qint64 UnknownPid = -1;

//! The shell that runs the command lines below.
QString shell();

//! The arguments with which shell() runs \a commandLine.
QStringList shellArguments(const QString &commandLine);

//! The command line that prints the PID of each running daemon, one per line.
QString probeCommand();

/*!
    The command line that prints the process figures of process \a pid on one line, separated by
    blanks, if that process is a daemon.
*/
QString detailCommand(qint64 pid);

/*!
    The values in \a detail, the output of detailCommand(), each with its figure's suffix; there may
    be more or fewer values than figures. Only blanks separate values: a line feed stays inside its
    value, so that two lines don't pass for one.
*/
QStringList figureTexts(const QString &detail);

//! The standard output in \a result as text; empty when the command could not be started.
QString outputText(const QList<QVariant> &result);

/*!
    Whether the probe found at least one daemon: the shell ran, it printed something and its exit
    code is 0. How many PIDs it printed doesn't matter. The refresh and the repair use this rule.
*/
bool daemonFound(const QList<QVariant> &result);

/*!
    The PID in the probe's \a result, white space around it ignored, or 0 when the output is not a
    single decimal number (two daemons give two lines).
*/
qint64 pidOrZero(const QList<QVariant> &result);

/*!
    The PID in the probe's \a result, or nothing when no daemon was found or the output is not a
    single decimal number. Start-up uses this rule.
*/
std::optional<qint64> singlePid(const QList<QVariant> &result);

//! The path of the daemon's executable, beside the panel's own. It need not exist.
QString executablePath();

//! When launch() tries to start the daemon.
enum class LaunchRule {
    IfExecutableExists, //!< don't try when the executable is missing
    Always, //!< try in any case; the system refuses a missing executable
};

/*!
    Logs the executable's path at information level, then starts the daemon detached with the
    argument "quickboot", in the panel's folder and with the panel's environment.

    Returns the PID of the new process, or nothing when it could not be started. Doesn't wait,
    retry or check that the daemon stays up.
*/
std::optional<qint64> launch(LaunchRule rule);

} // namespace Daemon
