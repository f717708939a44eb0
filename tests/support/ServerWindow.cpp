#include "tests/support/ServerWindow.h"

#include <QProcess>
#include <QRegularExpression>

ServerWindow serverWindow(qulonglong id, const QString &display)
{
    QStringList arguments = {QStringLiteral("-id"), QString::number(id), QStringLiteral("-tree"),
                             QStringLiteral("-stats")};
    if (!display.isEmpty())
        arguments << QStringLiteral("-display") << display;
    QProcess process;
    process.start(QStringLiteral("xwininfo"), arguments);
    if (!process.waitForFinished() || process.exitCode() != 0)
        return {};
    const QString text = QString::fromUtf8(process.readAllStandardOutput());
    const auto number = [&text](const char *name) {
        const QRegularExpression line(QLatin1String(name) + QStringLiteral(": +(-?\\d+)\n"));
        return line.match(text).captured(1).toInt();
    };
    return {QRect(number("Absolute upper-left X"), number("Absolute upper-left Y"), number("Width"),
                  number("Height")),
            text.contains(QLatin1String("Map State: IsViewable")),
            text.contains(QRegularExpression(
                    QStringLiteral("Parent window id: \\S+ \\(the root window\\)")))};
}
