#include "app/daemon.h"
#include "app/executeInMain.h"
#include "tests/support/StandInDaemon.h"

#include <QDir>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QTest>

namespace {

QString outputOf(const QString &commandLine)
{
    return Daemon::outputText(executeInMain(Daemon::shell(), Daemon::shellArguments(commandLine)));
}

} // namespace

/*!
    The commands that look for the daemon, run by the system's own tools on real processes.
*/
class tst_processTools : public QObject
{
    Q_OBJECT

private slots:
    void findNoDaemon();
    void tellTheDaemonFromItsNeighbours_data();
    void tellTheDaemonFromItsNeighbours();
    void findEveryDaemon();
};

void tst_processTools::findNoDaemon()
{
    QCOMPARE(outputOf(Daemon::probeCommand()), QString());
    QCOMPARE(outputOf(Daemon::detailCommand(QCoreApplication::applicationPid())), QString());
}

void tst_processTools::tellTheDaemonFromItsNeighbours_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<bool>("isFound");
    // The fields of the line of process figures, of which blanks in the name make more.
    QTest::addColumn<int>("figures");

    QTest::newRow("the daemon") << "Corvane" << true << 6;
    QTest::newRow("lower case") << "corvane" << false << 0;
    QTest::newRow("upper case") << "CORVANE" << false << 0;
    QTest::newRow("longer") << "CorvaneX" << false << 0;
    QTest::newRow("longer at the front") << "XCorvane" << false << 0;
    QTest::newRow("digit at the end") << "Corvane2" << false << 0;
    QTest::newRow("underscore at the end") << "Corvane_x" << false << 0;
    QTest::newRow("shorter") << "Corvan" << false << 0;
    QTest::newRow("folder of the name") << "Corvane/other" << false << 0;
    QTest::newRow("folder of the name, program of the panel's")
            << "Corvane/corvane-panel" << false << 0;
    QTest::newRow("folder in the middle") << "link/Corvane/x" << false << 0;
    // The name is looked for as a whole word, and a word ends at a hyphen, dot or blank.
    QTest::newRow("hyphen at the end") << "Corvane-x" << true << 6;
    QTest::newRow("hyphen at the front") << "x-Corvane" << true << 6;
    QTest::newRow("dot at the end") << "Corvane.bin" << true << 6;
    QTest::newRow("blank at the end") << "Corvane x" << true << 7;
}

void tst_processTools::tellTheDaemonFromItsNeighbours()
{
    QFETCH(QString, path);
    QFETCH(bool, isFound);
    QFETCH(int, figures);
    const QTemporaryDir folder;
    const QFileInfo program(folder.filePath(path));
    QVERIFY(QDir().mkpath(program.path()));
    const StandInDaemon neighbour(program.filePath());

    const QString found = isFound ? QStringLiteral("%1\n").arg(neighbour.pid()) : QString();
    QCOMPARE(outputOf(Daemon::probeCommand()), found);

    const QString line = outputOf(Daemon::detailCommand(neighbour.pid()));
    QCOMPARE(line.simplified().split(QLatin1Char(' '), Qt::SkipEmptyParts).size(), figures);
    const QString start =
            isFound ? QStringLiteral("%1 %2 ").arg(program.fileName()).arg(neighbour.pid())
                    : QString();
    QVERIFY2(line.simplified().startsWith(start), qPrintable(line));
}

void tst_processTools::findEveryDaemon()
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("Corvane"));
    const StandInDaemon first(path);
    const StandInDaemon second(path);

    QCOMPARE(outputOf(Daemon::probeCommand()),
             QStringLiteral("%1\n%2\n").arg(first.pid()).arg(second.pid()));
}

QTEST_GUILESS_MAIN(tst_processTools)
#include "tst_processTools.moc"
