#include "overview/OverviewForm.h"
#include "tests/overview/RunStatus.h"
#include "tests/support/ShimFolder.h"
#include "tests/support/files.h"
#include "tests/support/killDaemon.h"

#include <QFile>
#include <QProcess>
#include <QTest>

#include <csignal>
#include <memory>
#include <utility>

#include <sys/wait.h>
#include <unistd.h>

namespace {

constexpr qint64 Unknown = -1;
constexpr qint64 NoRow = 0;

//! Functions of the shell: daemons without a parent of this test's own, as a service manager has
//! them.
const QByteArray Functions = R"(
wait_until() {
    for ((i = 0; i < 2000; ++i)); do
        if "$@" 2>/dev/null; then return; fi
        /bin/sleep 0.01
    done
    exit 1
}
kill_daemon() {
    kill -KILL "$1"
    wait_until [ ! -d "/proc/$1" ]
}
start_daemon() {
    "$program" </dev/null >/dev/null 2>&1 &
    wait_until grep -qx Corvane "/proc/$!/comm"
    echo $! >>"$pids"
}
first() { head -n 1 "$pids"; }
)";

//! The PID that the page remembers and the PID in its row, NoRow for none.
using Shown = std::pair<qint64, qint64>;

Shown shown(OverviewForm &page)
{
    const QString row = shownRow(page);
    if (row.isEmpty())
        return {lastPid(page), NoRow};
    bool isNumber = false;
    const qint64 pid = row.section(QLatin1Char('|'), 1, 1).toLongLong(&isNumber);
    return {lastPid(page), isNumber ? pid : Unknown};
}

} // namespace

/*!
    The run-status page, with real processes and the system's own tools, when the daemon changes
    between the two commands of a refresh.
*/
class tst_DaemonChanges : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void changesWithinARefresh_data();
    void changesWithinARefresh();
    void deadButStillListed();

private:
    //! \a commands with the functions above at hand.
    QByteArray script(const QByteArray &commands) const;
    //! Runs \a commands; whether they all succeed.
    bool run(const QByteArray &commands) const;
    //! The daemons in the order of their start.
    QList<qint64> pids() const;

    std::unique_ptr<ShimFolder> m_shims;
};

void tst_DaemonChanges::init()
{
    m_shims = std::make_unique<ShimFolder>();
}

void tst_DaemonChanges::cleanup()
{
    const QList<qint64> all = pids();
    for (const qint64 pid : all)
        killDaemon(pid, QStringLiteral(PANEL_TEST_DAEMON));
    m_shims.reset();
}

QByteArray tst_DaemonChanges::script(const QByteArray &commands) const
{
    return "program='" PANEL_TEST_DAEMON "'\npids='" + QFile::encodeName(m_shims->path())
           + "/pids'\n" + Functions + commands + '\n';
}

bool tst_DaemonChanges::run(const QByteArray &commands) const
{
    const QString text = QString::fromUtf8(script(commands));
    return QProcess::execute(QStringLiteral("/bin/bash"), {QStringLiteral("-c"), text}) == 0;
}

QList<qint64> tst_DaemonChanges::pids() const
{
    QList<qint64> result;
    const QList<QByteArray> lines = readFile(m_shims->path() + QStringLiteral("/pids")).split('\n');
    for (const QByteArray &line : lines) {
        if (!line.isEmpty())
            result.append(line.toLongLong());
    }
    return result;
}

void tst_DaemonChanges::changesWithinARefresh_data()
{
    QTest::addColumn<QByteArray>("change");
    QTest::addColumn<bool>("hasRow");
    // Of the next refresh: the place of a daemon in the order of their start, -1 for none.
    QTest::addColumn<int>("nextPid");
    QTest::addColumn<int>("nextRow");

    QTest::newRow("killed") << QByteArray("kill_daemon $(first)") << false << -1 << -1;
    QTest::newRow("replaced") << QByteArray("kill_daemon $(first); start_daemon") << false << 1
                              << 1;
    QTest::newRow("doubled") << QByteArray("start_daemon") << true << 0 << -1;
    QTest::newRow("stopped") << QByteArray("kill -STOP $(first)") << true << 0 << 0;
}

void tst_DaemonChanges::changesWithinARefresh()
{
    QFETCH(QByteArray, change);
    QFETCH(bool, hasRow);
    QFETCH(int, nextPid);
    QFETCH(int, nextRow);
    QVERIFY(run("start_daemon"));
    OverviewForm page;
    const qint64 pid = pids().value(0);
    QCOMPARE(shown(page), Shown(pid, pid));

    m_shims->add(QStringLiteral("ps"), script(change) + "exec /bin/ps \"$@\"");
    refresh(page);
    // A process that has gone has no figures: the page keeps the PID and shows no row.
    QCOMPARE(shown(page), Shown(pid, hasRow ? pid : NoRow));

    m_shims->remove(QStringLiteral("ps"));
    refresh(page);
    QCOMPARE(shown(page), Shown(pids().value(nextPid, Unknown), pids().value(nextRow, NoRow)));
}

void tst_DaemonChanges::deadButStillListed()
{
    OverviewForm page;
    const QByteArray program = PANEL_TEST_DAEMON;
    const pid_t pid = fork();
    if (pid == 0) {
        execl(program.constData(), program.constData(), nullptr);
        _exit(EXIT_FAILURE);
    }
    QTRY_COMPARE(readFile(QStringLiteral("/proc/%1/comm").arg(pid)), QByteArray("Corvane\n"));
    refresh(page);
    QCOMPARE(shown(page), Shown(pid, pid));

    // Its parent has not asked for its end yet, and it stays in the list. Some versions of ps mark
    // it with "<defunct>", which makes a seventh field.
    ::kill(pid, SIGKILL);
    siginfo_t info = {};
    QCOMPARE(waitid(P_PID, static_cast<id_t>(pid), &info, WEXITED | WNOWAIT), 0);
    QProcess ps;
    ps.start(QStringLiteral("ps"), {QStringLiteral("-o"), QStringLiteral("comm="),
                                    QStringLiteral("-p"), QString::number(pid)});
    QVERIFY(ps.waitForFinished());
    const QByteArray name = ps.readAllStandardOutput().trimmed();
    QVERIFY(name.startsWith("Corvane"));
    refresh(page);
    QCOMPARE(shown(page), Shown(pid, name.contains(' ') ? NoRow : pid));

    QCOMPARE(waitpid(pid, nullptr, 0), pid);
    refresh(page);
    QCOMPARE(shown(page), Shown(Unknown, NoRow));
}

QTEST_MAIN(tst_DaemonChanges)
#include "tst_DaemonChanges.moc"
