#include "app/daemon.h"

#include <QCoreApplication>
#include <QDebug>
#include <QFile>
#include <QProcess>

namespace Daemon {

namespace {

constexpr const char *DaemonName = "Corvane";
constexpr const char *QuickStartArgument = "quickboot";
constexpr const char *ProbeTemplate = "pgrep -lf %1 | grep -w %2 | awk '{print $1}'";
constexpr const char *DetailTemplate = "ps -o %1 -p %2 | grep -w Corvane";

constexpr int OutputIndex = 0;
constexpr int ExitCodeIndex = 1;
constexpr int Decimal = 10;

constexpr QChar Blank = QLatin1Char(' ');

} // namespace

QString shell()
{
    return QStringLiteral("/bin/bash");
}

QStringList shellArguments(const QString &commandLine)
{
    return {QStringLiteral("-c"), commandLine};
}

QString probeCommand()
{
    return QString::fromLatin1(ProbeTemplate)
            .arg(QLatin1String(DaemonName))
            .arg(QLatin1String(DaemonName));
}

QString detailCommand(qint64 pid)
{
    QStringList fields;
    for (const Figure &figure : Figures)
        fields.append(QLatin1String(figure.field));
    return QString::fromLatin1(DetailTemplate)
            .arg(fields.join(QLatin1Char(',')), QString::number(pid));
}

QStringList figureTexts(const QString &detail)
{
    QStringList parts = detail.split(Blank, Qt::SkipEmptyParts);
    // Redundant after the split above, which skips empty parts.
    parts.removeAll(Blank);

    QStringList texts;
    for (int i = 0; i < parts.size(); ++i) {
        // The index counts skipped parts too: a figure is known by its place in the line.
        const QString text = parts.at(i).trimmed();
        if (text.isEmpty())
            continue;
        const char *suffix = i < int(Figures.size()) ? Figures[size_t(i)].suffix : "";
        texts.append(text + QString::fromUtf8(suffix));
    }
    return texts;
}

QString outputText(const QList<QVariant> &result)
{
    return result.isEmpty() ? QString() : result.at(OutputIndex).toString();
}

bool daemonFound(const QList<QVariant> &result)
{
    return !outputText(result).isEmpty() && result.at(ExitCodeIndex).toInt() == 0;
}

qint64 pidOrZero(const QList<QVariant> &result)
{
    return outputText(result).toLongLong(nullptr, Decimal);
}

std::optional<qint64> singlePid(const QList<QVariant> &result)
{
    if (!daemonFound(result))
        return std::nullopt;

    bool ok = false;
    const qint64 pid = outputText(result).toLongLong(&ok, Decimal);
    return ok ? std::optional<qint64>(pid) : std::nullopt;
}

QString executablePath()
{
    return QCoreApplication::applicationDirPath() + QLatin1Char('/') + QLatin1String(DaemonName);
}

std::optional<qint64> launch(LaunchRule rule)
{
    const QString path = executablePath();
    qInfo() << "file:" << path;

    if (rule == LaunchRule::IfExecutableExists && !QFile::exists(path))
        return std::nullopt;

    qint64 pid = UnknownPid;
    const bool started = QProcess::startDetached(path, {QLatin1String(QuickStartArgument)},
                                                 QCoreApplication::applicationDirPath(), &pid);
    return started ? std::optional<qint64>(pid) : std::nullopt;
}

} // namespace Daemon
