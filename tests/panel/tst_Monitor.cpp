#include "tests/support/PanelProcess.h"
#include "tests/support/ShimFolder.h"
#include "tests/support/StandInDaemon.h"

#include <QRegularExpression>
#include <QTest>

namespace {

const QString Table = QStringLiteral("treeWidgetOW");

//! Columns of the row.
enum Column { Name, Pid, User, Elapsed, Cpu, Memory };

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

bool isShare(const QString &text)
{
    return QRegularExpression(QStringLiteral("^\\d+\\.\\d%$")).match(text).hasMatch();
}

bool isTime(const QString &text)
{
    return QRegularExpression(QStringLiteral("^\\d\\d:\\d\\d$")).match(text).hasMatch();
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
    void refreshesPeriodically();

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
    const QStringList row = panel.rowTexts(Table).value(0);
    QCOMPARE(row.value(Name), QStringLiteral("Corvane"));
    QCOMPARE(row.value(Name), processField(daemon.pid(), QStringLiteral("comm")));
    QCOMPARE(row.value(Pid), QString::number(daemon.pid()));
    QCOMPARE(row.value(User), processField(daemon.pid(), QStringLiteral("user")));
    QVERIFY2(isTime(row.value(Elapsed)), qPrintable(row.value(Elapsed)));
    QVERIFY2(isShare(row.value(Cpu)), qPrintable(row.value(Cpu)));
    QVERIFY2(isShare(row.value(Memory)), qPrintable(row.value(Memory)));
    QCOMPARE(row.value(Memory),
             processField(daemon.pid(), QStringLiteral("%mem")) + QLatin1Char('%'));
}

void tst_Monitor::followsTheDaemon()
{
    PanelProcess panel;
    QVERIFY(panel.start());
    QVERIFY(panel.showsNotice());
    panel.setRefreshInterval(PanelProcess::QuickRefreshMs);

    StandInDaemon daemon(m_path);
    QTRY_VERIFY_WITH_TIMEOUT(panel.showsDaemon(daemon.pid()), RefreshTimeoutMs);

    daemon.kill();
    QTRY_VERIFY_WITH_TIMEOUT(panel.showsNotice(), RefreshTimeoutMs);
}

void tst_Monitor::refreshesPeriodically()
{
    constexpr int Ticks = 2;
    const QString pgrep = QStringLiteral("pgrep");
    ShimFolder shims;
    shims.add(pgrep, "exec /usr/bin/pgrep \"$@\"");
    const StandInDaemon daemon(m_path);
    PanelProcess panel;
    QVERIFY(panel.start());

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
