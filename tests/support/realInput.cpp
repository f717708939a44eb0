#include "tests/support/realInput.h"

#include <QProcess>
#include <QTest>

namespace {

constexpr int TimeoutMs = 20000;
constexpr int RepeatDelayMs = 20;

const auto Program = QStringLiteral("xdotool");

void verifyEnd(const QProcess &process)
{
    if (process.state() == QProcess::NotRunning && process.error() == QProcess::UnknownError
        && process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0)
        return;
    const QString command = process.arguments().join(QLatin1Char(' '));
    QTest::qFail(qPrintable(QStringLiteral("xdotool failed: ") + command), __FILE__, __LINE__);
}

} // namespace

QStringList moveTo(const QPoint &global)
{
    // Not with --sync: that waits for a movement, in vain where the pointer is there already.
    return {QStringLiteral("mousemove"), QString::number(global.x()), QString::number(global.y())};
}

QStringList press(int button)
{
    return {QStringLiteral("mousedown"), QString::number(button)};
}

QStringList release(int button)
{
    return {QStringLiteral("mouseup"), QString::number(button)};
}

QStringList click(int button, int repeat)
{
    return {QStringLiteral("click"),   QStringLiteral("--repeat"),     QString::number(repeat),
            QStringLiteral("--delay"), QString::number(RepeatDelayMs), QString::number(button)};
}

QStringList drag(const QPoint &from, const QPoint &to)
{
    return moveTo(from) + press() + moveTo(to) + release();
}

void xdotool(const QStringList &words)
{
    QProcess process;
    process.start(Program, words);
    process.waitForFinished(TimeoutMs);
    verifyEnd(process);
}

void xdotoolBeside(const QStringList &words)
{
    QProcess process;
    process.start(Program, words);
    static_cast<void>(QTest::qWaitFor(
            [&process] { return process.state() == QProcess::NotRunning; }, TimeoutMs));
    verifyEnd(process);
}
