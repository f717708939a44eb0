#include "app/executeInMain.h"

#include <QProcess>

namespace {

constexpr int StartTimeoutMs = 30000;
constexpr int NoTimeout = -1;

/*!
    Subclassed so that Qt 5.15 uses fork(): for a plain QProcess it ignores a failed clone() and
    then waits forever.
*/
class Command : public QProcess
{
};

} // namespace

QList<QVariant> executeInMain(const QString &program, const QStringList &arguments)
{
    Command process;
    process.start(program, arguments, QIODevice::ReadOnly);
    if (!process.waitForStarted(StartTimeoutMs))
        return {};

    // Else a program that reads its standard input would wait for ever, and the panel for it.
    process.closeWriteChannel();
    process.waitForFinished(NoTimeout);
    return {process.readAllStandardOutput(), process.exitCode()};
}
