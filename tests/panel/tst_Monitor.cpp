#include "tests/support/PanelProcess.h"
#include "tests/support/ShimFolder.h"
#include "tests/support/StandInDaemon.h"

#include <QDir>
#include <QRegularExpression>
#include <QTest>

namespace {

const QString Table = QStringLiteral("treeWidgetOW");

//! Columns of the row.
enum Column { Name, Pid, User, Elapsed, Cpu, Memory, ColumnCount };

//! Several refreshes, on a machine with other things to do.
constexpr int RefreshTimeoutMs = 20000;

//! What the system's own ps says of process \a pid in the field \a field.
QString processField(qint64 pid, const QString &field)
{
    QProcess process;
    process.start(QStringLiteral("ps"), {QStringLiteral("-o"), field + QLatin1Char('='),
                                         QStringLiteral("-p"), QString::number(pid)});
    process.waitForFinished();
    return QString::fromUtf8(process.readAllStandardOutput()).trimmed();
}

} // namespace

/*!
    The run-status page with the system's own process tools and real processes.
*/
class tst_Monitor : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void showsWhatTheSystemSays();
    void followsTheDaemon();
    void showsNoRowForTwo();
    void tellsTheDaemonFromItsNeighbours_data();
    void tellsTheDaemonFromItsNeighbours();
    void goesOnEveryThreeSeconds();

private:
    std::unique_ptr<QTemporaryDir> m_folder;
    QString m_path;
};

void tst_Monitor::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    m_path = m_folder->filePath(QStringLiteral("Corvane"));
}

void tst_Monitor::showsWhatTheSystemSays()
{
    const StandInDaemon daemon(m_path);
    PanelProcess panel;

    QVERIFY(panel.start());

    QVERIFY(panel.showsDaemon(daemon.pid()));
    const PanelProcess::Row row = panel.rows(Table).value(0);
    QCOMPARE(row.size(), static_cast<int>(ColumnCount));
    QCOMPARE(row.at(Name).text, QStringLiteral("Corvane"));
    QCOMPARE(row.at(Name).text, processField(daemon.pid(), QStringLiteral("comm")));
    QCOMPARE(row.at(Pid).text, QString::number(daemon.pid()));
    QCOMPARE(row.at(User).text, processField(daemon.pid(), QStringLiteral("user")));
    const QRegularExpression elapsed(QStringLiteral("^\\d\\d:\\d\\d$"));
    QVERIFY2(elapsed.match(row.at(Elapsed).text).hasMatch(), qPrintable(row.at(Elapsed).text));
    const QRegularExpression share(QStringLiteral("^\\d+\\.\\d%$"));
    for (const Column column : {Cpu, Memory})
        QVERIFY2(share.match(row.at(column).text).hasMatch(), qPrintable(row.at(column).text));
    QCOMPARE(row.at(Memory).text,
             processField(daemon.pid(), QStringLiteral("%mem")) + QLatin1Char('%'));
    for (const PanelProcess::Cell &cell : row)
        QCOMPARE(cell.alignment, static_cast<int>(Qt::AlignCenter));
}

void tst_Monitor::followsTheDaemon()
{
    PanelProcess panel;
    QVERIFY(panel.start());
    QVERIFY(panel.showsNotice());
    panel.setRefreshInterval(PanelProcess::QuickRefreshMs);

    StandInDaemon first(m_path);
    QTRY_VERIFY_WITH_TIMEOUT(panel.showsDaemon(first.pid()), RefreshTimeoutMs);

    first.kill();
    QTRY_VERIFY_WITH_TIMEOUT(panel.showsNotice(), RefreshTimeoutMs);

    StandInDaemon second(m_path);
    QTRY_VERIFY_WITH_TIMEOUT(panel.showsDaemon(second.pid()), RefreshTimeoutMs);

    // Ended and started again between two refreshes.
    panel.setRefreshInterval(PanelProcess::UsualRefreshMs);
    second.kill();
    const StandInDaemon third(m_path);
    QVERIFY(third.pid() != second.pid());
    QTRY_VERIFY_WITH_TIMEOUT(panel.showsDaemon(third.pid()), RefreshTimeoutMs);
}

void tst_Monitor::showsNoRowForTwo()
{
    StandInDaemon first(m_path);
    PanelProcess panel;
    QVERIFY(panel.start());
    QVERIFY(panel.showsDaemon(first.pid()));
    panel.setRefreshInterval(PanelProcess::QuickRefreshMs);

    const StandInDaemon second(m_path);
    QTRY_VERIFY_WITH_TIMEOUT(panel.showsNotice(), RefreshTimeoutMs);

    first.kill();
    QTRY_VERIFY_WITH_TIMEOUT(panel.showsDaemon(second.pid()), RefreshTimeoutMs);
}

void tst_Monitor::tellsTheDaemonFromItsNeighbours_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<bool>("isFound");
    QTest::addColumn<bool>("hasRow");

    QTest::newRow("the daemon") << "Corvane" << true << true;
    QTest::newRow("lower case") << "corvane" << false << false;
    QTest::newRow("upper case") << "CORVANE" << false << false;
    QTest::newRow("longer") << "CorvaneX" << false << false;
    QTest::newRow("longer at the front") << "XCorvane" << false << false;
    QTest::newRow("digit behind") << "Corvane2" << false << false;
    QTest::newRow("underscore behind") << "Corvane_x" << false << false;
    QTest::newRow("shorter") << "Corvan" << false << false;
    QTest::newRow("folder of the name") << "Corvane/other" << false << false;
    QTest::newRow("folder of the panel's own name") << "Corvane/corvane-panel-x" << false << false;
    QTest::newRow("link to another name") << "link/Corvane/x" << false << false;
    // A whole word is all that counts, and a word ends at a hyphen, dot or blank.
    QTest::newRow("hyphen behind") << "Corvane-x" << true << true;
    QTest::newRow("hyphen in front") << "x-Corvane" << true << true;
    QTest::newRow("dot behind") << "Corvane.bin" << true << true;
    // Found, but the blank makes seven fields of six.
    QTest::newRow("blank behind") << "Corvane x" << true << false;
}

void tst_Monitor::tellsTheDaemonFromItsNeighbours()
{
    QFETCH(QString, path);
    QFETCH(bool, isFound);
    QFETCH(bool, hasRow);
    const QFileInfo program(m_folder->filePath(path));
    QVERIFY(QDir().mkpath(program.path()));
    const StandInDaemon neighbour(program.filePath());
    PanelProcess panel;

    QVERIFY(panel.start());

    QCOMPARE(panel.property(QStringLiteral("qApp"), "CorvanePid"),
             isFound ? QVariant(neighbour.pid()) : QVariant());
    if (hasRow) {
        QVERIFY(panel.showsDaemon(neighbour.pid()));
        QCOMPARE(panel.rowTexts(Table).constFirst().value(Name), program.fileName());
    } else {
        QVERIFY(panel.showsNotice());
    }
}

void tst_Monitor::goesOnEveryThreeSeconds()
{
    constexpr int Ticks = 2;
    const QString timer = QStringLiteral("OverviewForm/QTimer");
    const QString pgrep = QStringLiteral("pgrep");
    ShimFolder shims;
    shims.add(pgrep, "exec /usr/bin/pgrep \"$@\"");
    const StandInDaemon daemon(m_path);
    PanelProcess panel;
    QVERIFY(panel.start());

    QCOMPARE(panel.count(timer), 1);
    QCOMPARE(panel.property(timer, "interval"), QVariant(PanelProcess::UsualRefreshMs));
    QCOMPARE(panel.property(timer, "singleShot"), QVariant(false));
    QCOMPARE(panel.property(timer, "active"), QVariant(true));
    const int descriptors = panel.application(QStringLiteral("descriptors")).toInt();
    const int objects = panel.application(QStringLiteral("objects")).toInt();
    const QString elapsedBefore = panel.rowTexts(Table).value(0).value(Elapsed);
    const int calls = shims.calls(pgrep).size();

    QTRY_VERIFY_WITH_TIMEOUT(shims.calls(pgrep).size() >= calls + Ticks, RefreshTimeoutMs);

    QVERIFY(panel.showsDaemon(daemon.pid()));
    QVERIFY(panel.rowTexts(Table).value(0).value(Elapsed) != elapsedBefore);
    QCOMPARE(panel.application(QStringLiteral("children")).toList(), QVariantList());
    QCOMPARE(panel.application(QStringLiteral("descriptors")).toInt(), descriptors);
    QCOMPARE(panel.application(QStringLiteral("objects")).toInt(), objects);
}

QTEST_MAIN(tst_Monitor)
#include "tst_Monitor.moc"
