#include "tests/support/PanelProcess.h"
#include "tests/support/ShimFolder.h"

#include <QTest>

#include <csignal>

namespace {

const QString Table = QStringLiteral("treeWidgetOW");
constexpr int PidColumn = 1;
//! As long as a repair takes, on a machine with other things to do and under a checker.
constexpr int LongTimeoutMs = 120000;

} // namespace

/*!
    The whole program once through its life: start with the daemon's start, refreshes, the
   shortcuts, a repair with a daemon and one without, the end. With the variable PANEL_TEST_CHECKER
   it runs under the command that the variable holds, such as valgrind, which must make the exit
   status something other than 0 where it has a finding.
*/
class tst_WholeLife : public QObject
{
    Q_OBJECT

private slots:
    void onceThrough();

private:
    static void closeBox(PanelProcess &panel, const QString &text);
};

void tst_WholeLife::closeBox(PanelProcess &panel, const QString &text)
{
    QTRY_VERIFY_WITH_TIMEOUT(panel.messageBox(), LongTimeoutMs);
    QCOMPARE(panel.messageBox()->text, text);
    QVERIFY(panel.invoke(QStringLiteral("QMessageBox"), "accept"));
    QTRY_VERIFY(!panel.messageBox());
}

void tst_WholeLife::onceThrough()
{
    ShimFolder shims;
    const QString opener = QStringLiteral("xdg-open");
    shims.add(opener, ":");
    PanelProcess panel;
    panel.placeDaemon();
    panel.environment().insert(QStringLiteral("PATH"), QString::fromLocal8Bit(qgetenv("PATH")));
    const QStringList checker =
            qEnvironmentVariable("PANEL_TEST_CHECKER").split(QLatin1Char(' '), Qt::SkipEmptyParts);
    panel.setLauncher(checker);
    QVERIFY(panel.start());

    QTRY_VERIFY(panel.hasDaemonRecord());
    QList<qint64> pids = panel.daemonPids();
    QCOMPARE(pids.size(), 1);
    QTRY_COMPARE_WITH_TIMEOUT(panel.rowTexts(Table).value(0).value(PidColumn),
                              QString::number(pids.first()), LongTimeoutMs);
    panel.grab(QStringLiteral("ServiceContainer"));
    for (const char *slot : {"on_kqfwdt_clicked", "on_kqzsk_clicked"})
        QVERIFY(panel.invoke(QStringLiteral("OverviewForm"), slot));
    QTRY_COMPARE(shims.calls(opener).size(), 2);

    QVERIFY(panel.invoke(QStringLiteral("OverviewForm"), "on_xfkqfw_clicked"));
    closeBox(panel, QStringLiteral("统一服务运行正常，无需修复。"));

    // Under a checker all of it; without one the long repair is tried well enough elsewhere.
    if (!checker.isEmpty()) {
        QCOMPARE(::kill(static_cast<pid_t>(pids.first()), SIGKILL), 0);
        QTRY_VERIFY_WITH_TIMEOUT(panel.isExposed(QStringLiteral("labelNoService")), LongTimeoutMs);
        QVERIFY(panel.invoke(QStringLiteral("OverviewForm"), "on_xfkqfw_clicked"));
        closeBox(panel, QStringLiteral("朔川服务修复成功！"));
        pids = panel.daemonPids();
        QCOMPARE(pids.size(), 1);
        QTRY_COMPARE_WITH_TIMEOUT(panel.rowTexts(Table).value(0).value(PidColumn),
                                  QString::number(pids.first()), LongTimeoutMs);
    }

    QVERIFY(panel.invoke(QStringLiteral("ServiceContainer"), "close"));
    const std::optional<int> status = panel.waitForExit();
    const QString lines = panel.errorLines().join(QLatin1Char('\n'));
    // The checker's findings are among them, and longer than the message of a failure may be.
    qInfo("once through the life of the panel:\n%s", qPrintable(lines));
    QCOMPARE(status, std::optional<int>(0));
    QCOMPARE(panel.daemonPids(), pids);
}

QTEST_MAIN(tst_WholeLife)
#include "tst_WholeLife.moc"
