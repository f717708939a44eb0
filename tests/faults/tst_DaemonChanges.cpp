#include "overview/OverviewForm.h"
#include "tests/faults/DaemonFlock.h"
#include "tests/support/PanelProcess.h"
#include "tests/support/PrivateMember.h"
#include "tests/support/ProcessCounters.h"
#include "tests/support/ShimFolder.h"
#include "tests/support/childProcesses.h"
#include "tests/support/files.h"
#include "tests/support/rounds.h"

#include <QElapsedTimer>
#include <QLabel>
#include <QRandomGenerator>
#include <QTest>
#include <QTreeWidget>

#include <thread>

#include <sys/wait.h>
#include <unistd.h>

struct LastPid : PrivateMember<LastPid, qint64, OverviewForm>
{
};
template struct ExposePrivateMember<LastPid, &OverviewForm::lastPid>;

namespace {

using Pids = QList<qint64>;

constexpr int ShortRounds = 15;
constexpr quint32 RandomStart = 20260;
constexpr int MostDaemons = 3;
constexpr int PidColumn = 1;
constexpr int RowFields = 6;
constexpr int CpuColumn = 4;
constexpr int MemoryColumn = 5;
constexpr qint64 Unknown = -1;
constexpr qint64 NoRow = 0;

enum Change { Start, Kill, Replace, Double, Stop, Resume, Changes };
constexpr const char *ChangeNames[] = {"started", "killed",  "replaced",
                                       "doubled", "stopped", "resumed"};
//! When a change happens: before a refresh, between its two commands, at any time while it runs.
enum Moment { Before, Between, During, Moments };
constexpr const char *MomentNames[] = {"before", "between", "during"};

//! What a refresh must have made of the daemons that its two commands could see.
struct Truth
{
    qint64 lastPid = Unknown;
    qint64 rowPid = NoRow;
};

Truth truth(qint64 formerPid, const Pids &seenByProbe, const Pids &seenByDetail)
{
    if (seenByProbe.isEmpty())
        return {Unknown, NoRow};
    // Two lines are no number, and a process that is gone has no figures: the page keeps what it
    // knew and shows nothing.
    if (seenByProbe.size() > 1 || !seenByDetail.contains(seenByProbe.first()))
        return {formerPid, NoRow};
    return {seenByProbe.first(), seenByProbe.first()};
}

void refresh(OverviewForm &page)
{
    if (!QMetaObject::invokeMethod(&page, "syncOWInfo", Qt::DirectConnection))
        qFatal("the page has no refresh");
}

void verify(const OverviewForm &page, const Truth &expected)
{
    constexpr int HeaderHeight = 36;
    constexpr int HeaderAndRowHeight = 76;
    const auto *tree = page.findChild<QTreeWidget *>(QStringLiteral("treeWidgetOW"));
    const bool hasRow = expected.rowPid != NoRow;
    QCOMPARE(LastPid::of(page), expected.lastPid);
    QCOMPARE(tree->topLevelItemCount(), hasRow ? 1 : 0);
    QCOMPARE(tree->height(), hasRow ? HeaderAndRowHeight : HeaderHeight);
    QCOMPARE(page.findChild<QLabel *>(QStringLiteral("labelNoService"))->isHidden(), hasRow);
    QVERIFY(page.findChild<QLabel *>(QStringLiteral("labelOWError"))->isHidden());
    if (!hasRow)
        return;
    const QTreeWidgetItem *row = tree->topLevelItem(0);
    QCOMPARE(row->columnCount(), RowFields);
    QCOMPARE(row->text(0), QStringLiteral("Corvane"));
    QCOMPARE(row->text(PidColumn), QString::number(expected.rowPid));
    for (const int column : {CpuColumn, MemoryColumn})
        QVERIFY(row->text(column).endsWith(QLatin1Char('%')));
}

//! Draws changes that make sense for the daemons there are, and does them.
class Changer
{
public:
    explicit Changer(quint32 randomStart)
        : m_random(randomStart)
    {
    }

    int below(int bound) { return m_random.bounded(bound); }

    Change draw(const Pids &pids)
    {
        if (pids.isEmpty())
            return Start;
        if (pids.size() >= MostDaemons)
            return Kill;
        return Change(below(Changes));
    }
    qint64 drawOne(const Pids &pids) { return pids.at(below(pids.size())); }

    static void apply(Change change, qint64 pid, DaemonFlock &flock)
    {
        switch (change) {
        case Kill:
            flock.kill(pid);
            break;
        case Replace:
            flock.kill(pid);
            flock.start();
            break;
        case Stop:
            DaemonFlock::stop(pid);
            break;
        case Resume:
            DaemonFlock::resume(pid);
            break;
        default:
            flock.start();
        }
    }

    //! The same as a script, which writes the process number of a daemon that it starts to
    //! \a numberPath and ends when the change is complete.
    static QByteArray script(Change change, qint64 pid, const DaemonFlock &flock,
                             const QByteArray &numberPath)
    {
        const QByteArray number = QByteArray::number(pid);
        QByteArray kill =
                "kill -KILL " + number + "\nwhile [ -d /proc/" + number + " ]; do :; done\n";
        QByteArray start = '\'' + QFile::encodeName(flock.program())
                           + "' </dev/null >/dev/null 2>&1 &\n"
                             "until [ \"$(</proc/$!/comm)\" = Corvane ]; do :; done\n"
                             "echo $! >'"
                           + numberPath + "'\n";
        switch (change) {
        case Kill:
            return kill;
        case Replace:
            return kill + start;
        case Stop:
            return "kill -STOP " + number + '\n';
        case Resume:
            return "kill -CONT " + number + '\n';
        default:
            return start;
        }
    }

private:
    QRandomGenerator m_random;
};

QByteArray takeFile(const QString &path)
{
    QByteArray content = readFile(path);
    QFile::remove(path);
    return content;
}

void putFile(const QString &path, const QByteArray &content)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
        qFatal("can't write %s", qPrintable(path));
}

} // namespace

/*!
    The run-status page while the daemon comes, goes, doubles and stands still at any moment, with
    real processes and the system's own tools.
*/
class tst_DaemonChanges : public QObject
{
    Q_OBJECT

private slots:
    void pageTellsTheTruth();
    void deadButStillListed();
    void panelTellsTheTruth();
};

void tst_DaemonChanges::pageTellsTheTruth()
{
    const int rounds = roundsOr(ShortRounds);
    const quint32 randomStart = randomStartOr(RandomStart);
    Changer changer(randomStart);
    DaemonFlock flock;
    ShimFolder shims;
    const QString script = shims.path() + QStringLiteral("/between");
    const QString number = shims.path() + QStringLiteral("/number");
    shims.add(QStringLiteral("ps"), "[ ! -e '" + QFile::encodeName(script) + "' ] || . '"
                                            + QFile::encodeName(script)
                                            + "'\nexec /usr/bin/ps \"$@\"");
    OverviewForm page;
    // The page is refreshed by this test alone: no event loop runs.
    refresh(page);
    verify(page, {Unknown, NoRow});

    int changes[Changes] = {};
    int moments[Moments] = {};
    qint64 slowestMs = 0;
    int descriptors = openDescriptors();
    int objects = page.findChildren<QObject *>().size();
    for (int round = 0; round < rounds; ++round) {
        const Pids before = flock.pids();
        const Change change = changer.draw(before);
        const qint64 pid = before.isEmpty() ? 0 : changer.drawOne(before);
        // The second command runs only where the first has found something.
        const Moment moment = before.isEmpty() ? Before : Moment(changer.below(Moments));
        const QByteArray note = QByteArrayLiteral("round ") + QByteArray::number(round) + ": "
                                + ChangeNames[change] + ' ' + MomentNames[moment];
        ++changes[change];
        ++moments[moment];

        QElapsedTimer timer;
        if (moment == Before) {
            Changer::apply(change, pid, flock);
        } else if (moment == Between) {
            putFile(script, Changer::script(change, pid, flock, QFile::encodeName(number)));
            const qint64 formerPid = LastPid::of(page);
            refresh(page);
            QFile::remove(script);
            flock.adopt(takeFile(number).toLongLong());
            verify(page, truth(formerPid, before, flock.pids()));
        } else {
            constexpr int LongestDelayUs = 30000;
            const int delayUs = changer.below(LongestDelayUs);
            std::thread meanwhile([&flock, change, pid, delayUs] {
                usleep(static_cast<useconds_t>(delayUs));
                Changer::apply(change, pid, flock);
            });
            refresh(page);
            meanwhile.join();
        }

        const qint64 formerPid = LastPid::of(page);
        timer.start();
        refresh(page);
        slowestMs = qMax(slowestMs, timer.elapsed());
        verify(page, truth(formerPid, flock.pids(), flock.pids()));
        QVERIFY2(!QTest::currentTestFailed(), note.constData());

        // The first rounds fill caches.
        constexpr int WarmUp = 10;
        if (round < WarmUp) {
            descriptors = openDescriptors();
            objects = page.findChildren<QObject *>().size();
        }
    }
    QCOMPARE(openDescriptors(), descriptors);
    QCOMPARE(page.findChildren<QObject *>().size(), objects);
    QCOMPARE(childProcesses(), Pids());

    QString summary = QStringLiteral("%1 changes, random numbers from %2, slowest refresh %3 ms:")
                              .arg(rounds)
                              .arg(randomStart)
                              .arg(slowestMs);
    for (int i = 0; i < Changes; ++i)
        summary += QStringLiteral(" %1 %2").arg(changes[i]).arg(QLatin1String(ChangeNames[i]));
    for (int i = 0; i < Moments; ++i)
        summary += QStringLiteral(" %1 %2").arg(moments[i]).arg(QLatin1String(MomentNames[i]));
    qInfo("%s", qPrintable(summary));
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
    verify(page, {pid, pid});

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
    verify(page, {pid, name.contains(' ') ? NoRow : pid});

    QCOMPARE(waitpid(pid, nullptr, 0), pid);
    refresh(page);
    verify(page, {Unknown, NoRow});
}

void tst_DaemonChanges::panelTellsTheTruth()
{
    constexpr int IntervalMs = 150;
    constexpr int RefreshTimeoutMs = 20000;
    // Each is dearer than one of the page alone.
    constexpr int Share = 5;
    const int rounds = roundsOr(ShortRounds * 2) / Share;
    const quint32 randomStart = randomStartOr(RandomStart);
    Changer changer(randomStart);
    DaemonFlock flock;
    ShimFolder shims;
    const QString pgrep = QStringLiteral("pgrep");
    shims.add(pgrep, "exec /usr/bin/pgrep \"$@\"");
    PanelProcess panel;
    QVERIFY(panel.start());
    QVERIFY(panel.setProperty(QStringLiteral("OverviewForm/QTimer"), "interval", IntervalMs));
    const QVariant descriptors = panel.application(QStringLiteral("descriptors"));

    for (int round = 0; round < rounds; ++round) {
        const Change change = changer.draw(flock.pids());
        usleep(static_cast<useconds_t>(changer.below(IntervalMs * 1000)));
        Changer::apply(change, flock.pids().isEmpty() ? 0 : changer.drawOne(flock.pids()), flock);

        // The first refresh that has begun since. It blocks the panel: what the panel answers
        // afterwards is what it shows then.
        const int seen = shims.calls(pgrep).size();
        QTRY_VERIFY_WITH_TIMEOUT(shims.calls(pgrep).size() > seen, RefreshTimeoutMs);
        QStringList shown;
        const QList<QStringList> rows = panel.rowTexts(QStringLiteral("treeWidgetOW"));
        for (const QStringList &row : rows)
            shown.append(row.value(PidColumn));
        const Truth expected = truth(Unknown, flock.pids(), flock.pids());
        QCOMPARE(shown, expected.rowPid == NoRow ? QStringList()
                                                 : QStringList(QString::number(expected.rowPid)));
        QCOMPARE(panel.isExposed(QStringLiteral("labelNoService")), shown.isEmpty());
    }
    QVERIFY(panel.isRunning());
    QCOMPARE(panel.application(QStringLiteral("descriptors")), descriptors);
    QCOMPARE(panel.application(QStringLiteral("children")).toList(), QVariantList());
    QVERIFY(panel.invoke(QStringLiteral("ServiceContainer"), "close"));
    QCOMPARE(panel.waitForExit(), std::optional<int>(0));
    qInfo("%d changes under the whole panel, random numbers from %u", rounds, randomStart);
}

QTEST_MAIN(tst_DaemonChanges)
#include "tst_DaemonChanges.moc"
