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
    // Whether its line has as many values as there are figures.
    QTest::addColumn<bool>("hasRow");

    QTest::newRow("the daemon") << "Corvane" << true << true;
    QTest::newRow("lower case") << "corvane" << false << false;
    QTest::newRow("upper case") << "CORVANE" << false << false;
    QTest::newRow("longer") << "CorvaneX" << false << false;
    QTest::newRow("longer at the front") << "XCorvane" << false << false;
    QTest::newRow("digit at the end") << "Corvane2" << false << false;
    QTest::newRow("underscore at the end") << "Corvane_x" << false << false;
    QTest::newRow("shorter") << "Corvan" << false << false;
    QTest::newRow("folder of the name") << "Corvane/other" << false << false;
    QTest::newRow("folder of the name, program of the panel's")
            << "Corvane/corvane-panel" << false << false;
    QTest::newRow("folder in the middle") << "link/Corvane/x" << false << false;
    // The name is looked for as a whole word, and a word ends at a hyphen, dot or blank. A blank
    // also separates values.
    QTest::newRow("hyphen at the end") << "Corvane-x" << true << true;
    QTest::newRow("hyphen at the front") << "x-Corvane" << true << true;
    QTest::newRow("dot at the end") << "Corvane.bin" << true << true;
    QTest::newRow("blank at the end") << "Corvane x" << true << false;
}

void tst_processTools::tellTheDaemonFromItsNeighbours()
{
    QFETCH(QString, path);
    QFETCH(bool, isFound);
    QFETCH(bool, hasRow);
    const QTemporaryDir folder;
    const QFileInfo program(folder.filePath(path));
    QVERIFY(QDir().mkpath(program.path()));
    const StandInDaemon neighbour(program.filePath());

    const QString found = isFound ? QStringLiteral("%1\n").arg(neighbour.pid()) : QString();
    QCOMPARE(outputOf(Daemon::probeCommand()), found);

    const QStringList figures =
            Daemon::figureTexts(outputOf(Daemon::detailCommand(neighbour.pid())));
    QCOMPARE(figures.isEmpty(), !isFound);
    QCOMPARE(figures.size() == int(Daemon::Figures.size()), hasRow);
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
