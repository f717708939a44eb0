#include "app/executeInMain.h"

#include <QProcess>

namespace {

constexpr int StartTimeoutMs = 30000;
constexpr int NoTimeout = -1;

/*!
    A class of its own, on purpose: Qt creates its processes by fork(). Those of QProcess itself are
    created by clone() on newer kernels, and Qt 5.15 does not see when the system refuses that: it
    waits for ever for a process -1.
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

    process.waitForFinished(NoTimeout);
    return {process.readAllStandardOutput(), process.exitCode()};
}
