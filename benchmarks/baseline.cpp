// The least that the panel could cost: an empty window with one Chinese label, which runs the
// panel's commands by the panel's own executeInMain() and does nothing with their output.
//
//   baseline            the window
//   baseline start-up   the same, after the commands that the panel's start-up waits for
//   baseline refresh    the window; for each byte on standard input runs one refresh's commands
//                       and writes what they took, a Times, to standard output
//   baseline commands PID   no window: prints the commands, the second one for that process

#include "app/daemon.h"
#include "app/executeInMain.h"
#include "benchmarks/Times.h"

#include <QApplication>
#include <QLabel>

#include <cstdio>

#include <unistd.h>

namespace {

QList<QVariant> run(const QString &command)
{
    return executeInMain(Daemon::shell(), Daemon::shellArguments(command));
}

void runRefresh()
{
    run(Daemon::detailCommand(Daemon::pidOrZero(run(Daemon::probeCommand()))));
}

int serve()
{
    char request = 0;
    while (read(STDIN_FILENO, &request, 1) == 1) {
        const Times before = now();
        runRefresh();
        const Times taken = now() - before;
        if (write(STDOUT_FILENO, &taken, sizeof taken) != static_cast<ssize_t>(sizeof taken))
            return EXIT_FAILURE;
    }
    return EXIT_SUCCESS;
}

} // namespace

int main(int argc, char *argv[])
{
    if (argc == 3 && qstrcmp(argv[1], "commands") == 0) {
        for (const QString &command :
             {Daemon::probeCommand(), Daemon::detailCommand(QByteArray(argv[2]).toLongLong())})
            puts(qPrintable(command));
        return EXIT_SUCCESS;
    }
    qputenv("QT_QPA_PLATFORM", "xcb");
    QApplication app(argc, argv);
    const QString mode = QCoreApplication::arguments().value(1);
    if (mode == QLatin1String("start-up")) {
        run(Daemon::probeCommand());
        runRefresh();
    }

    QWidget window;
    window.setFixedSize(800, 600);
    QLabel label(QStringLiteral("朔川统一服务"), &window);
    label.move(20, 20);
    window.show();

    if (mode != QLatin1String("refresh"))
        return QApplication::exec();
    QCoreApplication::processEvents();
    return serve();
}
