#include "app/executeInMain.h"

#include <QProcess>

namespace {
constexpr int StartTimeoutMs = 30000;
constexpr int NoTimeout = -1;
} // namespace

QList<QVariant> executeInMain(const QString &program, const QStringList &arguments)
{
    QProcess process;
    process.start(program, arguments, QIODevice::ReadOnly);
    if (!process.waitForStarted(StartTimeoutMs))
        return {};

    process.waitForFinished(NoTimeout);
    return {process.readAllStandardOutput(), process.exitCode()};
}
