// What a refresh can't go below while it runs its pipelines by QProcess: the same two pipelines,
// run that way from a program that has nothing but an empty window.

#include "benchmarks/Pipelines.h"

#include <QApplication>
#include <QProcess>
#include <QWidget>

namespace {

std::string runByQProcess(const std::string &commandLine)
{
    QProcess process;
    process.start(QStringLiteral("/bin/bash"),
                  {QStringLiteral("-c"), QString::fromStdString(commandLine)}, QIODevice::ReadOnly);
    if (!process.waitForStarted())
        return {};
    process.waitForFinished(-1);
    return process.readAllStandardOutput().toStdString();
}

} // namespace

int main(int argc, char *argv[])
{
    qputenv("QT_QPA_PLATFORM", "xcb");
    qputenv("QT_XCB_GL_INTEGRATION", "none");
    QApplication app(argc, argv);
    QWidget window;
    window.setFixedSize(800, 600);
    window.show();
    QCoreApplication::processEvents();

    return Bench::serve(runByQProcess);
}
