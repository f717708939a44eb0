#include "app/daemon.h"
#include "tests/support/PanelProcess.h"
#include "tests/support/ShimFolder.h"
#include "tests/support/StandInDaemon.h"

#include <QTest>

namespace {

const QString Table = QStringLiteral("treeWidgetOW");

//! Several refreshes, on a machine with other things to do.
constexpr int RefreshTimeoutMs = 20000;

//! What the system's own ps says of process \a pid in the field \a field.
QString processField(qint64 pid, const QString &field)
{
    // With a column after it: newer versions of ps cut off a long name only there.
    QProcess process;
    process.start(QStringLiteral("ps"),
                  {QStringLiteral("-o"), field + QLatin1Char('='), QStringLiteral("-o"),
                   QStringLiteral("pid="), QStringLiteral("-p"), QString::number(pid)});
    process.waitForFinished();
    return QString::fromUtf8(process.readAllStandardOutput()).simplified().section(u' ', 0, 0);
}

//! What the row has to show of process \a pid now.
QStringList expectedRow(qint64 pid)
{
    QStringList result;
    for (const Daemon::Figure &figure : Daemon::Figures)
        result.append(processField(pid, QLatin1String(figure.field))
                      + QString::fromUtf8(figure.suffix));
    return result;
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
    panel.setRefreshInterval(PanelProcess::QuickRefreshMs);
    // The running time goes on: it is the same as the row's where both are asked at once.
    // QTRY_COMPARE would ask anew after they were equal.
    QStringList shown;
    QStringList expected;
    static_cast<void>(QTest::qWaitFor(
            [&] {
                shown = panel.rowTexts(Table).value(0);
                expected = expectedRow(daemon.pid());
                return shown == expected;
            },
            RefreshTimeoutMs));
    QCOMPARE(shown, expected);
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
    const QStringList formerRow = panel.rowTexts(Table).value(0);
    const int calls = shims.calls(pgrep).size();

    QTRY_VERIFY_WITH_TIMEOUT(shims.calls(pgrep).size() >= calls + Ticks, RefreshTimeoutMs);

    QVERIFY(panel.showsDaemon(daemon.pid()));
    QVERIFY(panel.rowTexts(Table).value(0) != formerRow);
    QCOMPARE(panel.application(QStringLiteral("children")).toList(), QVariantList());
    QCOMPARE(panel.application(QStringLiteral("descriptors")).toInt(), descriptors);
    QCOMPARE(panel.application(QStringLiteral("objects")).toInt(), objects);
}

QTEST_MAIN(tst_Monitor)
#include "tst_Monitor.moc"
