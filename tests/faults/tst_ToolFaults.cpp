#include "overview/OverviewForm.h"
#include "tests/overview/RunStatus.h"
#include "tests/support/OrdinaryUser.h"
#include "tests/support/ProcessCounters.h"
#include "tests/support/ResourceLimit.h"
#include "tests/support/ShimFolder.h"
#include "tests/support/childProcesses.h"
#include "tests/support/files.h"

#include <QElapsedTimer>
#include <QFile>
#include <QTest>

#include <memory>

namespace {

constexpr qint64 Unknown = -1;
const QString NoRow;

const char *const Probe = "1234 Corvane\n";

//! One tool that misbehaves, and what the page must make of it when it showed the daemon before.
struct Fault
{
    const char *name;
    const char *tool;
    //! What the tool does instead of its work; null where it is missing.
    const char *body;
    qint64 lastPid;
    bool hasRow;
};

const Fault Faults[] = {
        {"pgrep is missing", "pgrep", nullptr, Unknown, false},
        {"ps is missing", "ps", nullptr, AlicePid, false},
        {"grep is missing", "grep", nullptr, Unknown, false},
        {"awk is missing", "awk", nullptr, Unknown, false},

        {"pgrep prints megabytes in one line", "pgrep",
         "/usr/bin/head -c 8000000 /dev/zero | /usr/bin/tr '\\0' x", Unknown, false},
        {"ps prints megabytes of rows", "ps",
         "/usr/bin/yes 'Corvane 1234 a b c d' | /usr/bin/head -n 200000", AlicePid, false},
        {"ps prints megabytes of blanks", "ps",
         "/usr/bin/head -c 4000000 /dev/zero | /usr/bin/tr '\\0' ' '; echo \"$ALICE_LINE\"",
         AlicePid, true},

        {"pgrep prints bytes that are no text", "pgrep",
         "printf '\\x00\\xff\\x01 Corvane\\n1234 Corvane\\n'", Unknown, false},

        {"pgrep dies at once", "pgrep", "kill -SEGV $$", Unknown, false},
        {"pgrep dies after its answer", "pgrep", "echo 1234 Corvane; kill -SEGV $$", AlicePid,
         true},
        {"ps dies at once", "ps", "kill -KILL $$", AlicePid, false},
        {"ps dies within its answer", "ps", "echo -n 'Corvane 1234 ali'; kill -KILL $$", AlicePid,
         false},
        {"grep dies", "grep", "kill -ABRT $$", Unknown, false},
        {"awk dies after its answer", "awk", "echo 1234; kill -ABRT $$", Unknown, false},
        {"the probe's shell is killed", "pgrep", "kill -KILL $PPID", Unknown, false},
        {"the other shell is killed", "ps", "kill -KILL $PPID", AlicePid, false},
        {"pgrep closes its output", "pgrep", "exec >&-; echo 1234 Corvane", Unknown, false},
};

} // namespace

/*!
    The run-status page when the tools that it relies on misbehave or the system refuses it what it
    needs: what it shows meanwhile follows its rules, it recovers with the next refresh once the
    fault is gone, and it holds no more than before.
*/
class tst_ToolFaults : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void misbehavingTool_data();
    void misbehavingTool();
    void hangingTool_data();
    void hangingTool();
    void figuresThatAreNoText();
    void noProcess();
    void noDescriptor();

private:
    void placeTool(const QString &name);
    void placeTools();
    //! The page recovers, and holds what it held before.
    void recovers();

    std::unique_ptr<ShimFolder> m_shims;
    std::unique_ptr<OverviewForm> m_page;
    int m_descriptors = 0;
    int m_objects = 0;
};

void tst_ToolFaults::init()
{
    m_shims = std::make_unique<ShimFolder>();
    placeTools();
    // No other tools: what is taken away is missing.
    qputenv("PATH", QFile::encodeName(m_shims->path()));
    qputenv("ALICE_LINE", aliceLine().trimmed());
    m_page = std::make_unique<OverviewForm>();
    QCOMPARE(pageState(*m_page), expectedState(AlicePid, aliceRow()));
    m_descriptors = openDescriptors();
    m_objects = m_page->findChildren<QObject *>().size();
}

void tst_ToolFaults::cleanup()
{
    m_page.reset();
    m_shims.reset();
}

void tst_ToolFaults::placeTool(const QString &name)
{
    if (name == QLatin1String("pgrep"))
        m_shims->addPrinting(name, Probe);
    else if (name == QLatin1String("ps"))
        m_shims->add(name, "case \"$*\" in *'-p 1234') echo \"$ALICE_LINE\";; *) exit 1;; esac");
    else if (name == QLatin1String("grep"))
        m_shims->add(name, "exec /bin/grep \"$@\"");
    else
        m_shims->add(name, "exec /usr/bin/awk \"$@\"");
}

void tst_ToolFaults::placeTools()
{
    for (const char *name : {"pgrep", "ps", "grep", "awk"})
        placeTool(QLatin1String(name));
}

void tst_ToolFaults::recovers()
{
    refresh(*m_page);
    QCOMPARE(pageState(*m_page), expectedState(AlicePid, aliceRow()));
    QCOMPARE(openDescriptors(), m_descriptors);
    QCOMPARE(childProcesses(), QList<qint64>());
    QCOMPARE(m_page->findChildren<QObject *>().size(), m_objects);
}

void tst_ToolFaults::misbehavingTool_data()
{
    QTest::addColumn<int>("index");

    for (int i = 0; i < static_cast<int>(std::size(Faults)); ++i)
        QTest::newRow(Faults[i].name) << i;
}

void tst_ToolFaults::misbehavingTool()
{
    QFETCH(int, index);
    const Fault &fault = Faults[index];
    const QString tool = QLatin1String(fault.tool);

    if (fault.body)
        m_shims->add(tool, fault.body);
    else
        m_shims->remove(tool);
    refresh(*m_page);
    QCOMPARE(pageState(*m_page), expectedState(fault.lastPid, fault.hasRow ? aliceRow() : NoRow));
    placeTool(tool);
    recovers();
}

void tst_ToolFaults::hangingTool_data()
{
    QTest::addColumn<QString>("tool");

    for (const char *name : {"pgrep", "ps", "grep", "awk"})
        QTest::newRow(name) << QString::fromLatin1(name);
}

void tst_ToolFaults::hangingTool()
{
    QFETCH(QString, tool);
    const QByteArray mark = QFile::encodeName(m_shims->path() + QStringLiteral("/hung"));
    const QByteArray body = readFile(m_shims->path() + QLatin1Char('/') + tool);
    QVERIFY(!body.isEmpty());
    // Once only: grep runs in both commands.
    m_shims->add(tool, "[ -e '" + mark + "' ] || { : > '" + mark + "'; /bin/sleep 1; }\n" + body);

    QElapsedTimer timer;
    timer.start();
    refresh(*m_page);

    // Waited for, however long it takes, and then as good as any.
    QVERIFY(timer.elapsed() >= 1000);
    QCOMPARE(pageState(*m_page), expectedState(AlicePid, aliceRow()));
    placeTools();
    recovers();
}

void tst_ToolFaults::figuresThatAreNoText()
{
    QByteArray line = aliceLine();
    line.replace("alice", "\xff\xfe");
    m_shims->addPrinting(QStringLiteral("ps"), line);

    // In a locale of single bytes they are text like any other.
    const QByteArray formerLocale = qgetenv("LC_ALL");
    qputenv("LC_ALL", "C");
    refresh(*m_page);
    qputenv("LC_ALL", formerLocale);
    QString row = aliceRow();
    row.replace(QStringLiteral("alice"), QStringLiteral("\uFFFD\uFFFD"));
    QCOMPARE(pageState(*m_page), expectedState(AlicePid, row));

    // In the others grep keeps them back, and says so where nobody reads it.
    refresh(*m_page);
    QCOMPARE(pageState(*m_page), expectedState(AlicePid, NoRow));

    placeTools();
    recovers();
}

void tst_ToolFaults::noProcess()
{
    {
        // The limit doesn't bind root.
        const OrdinaryUser user;
        const ResourceLimit none(RLIMIT_NPROC, 0);
        refresh(*m_page);
    }
    QCOMPARE(pageState(*m_page), expectedState(Unknown, NoRow));
    recovers();
}

void tst_ToolFaults::noDescriptor()
{
    constexpr int Enough = 24;
    int answers = 0;
    int refusals = 0;
    for (int spare = 0; spare <= Enough; ++spare) {
        {
            const ResourceLimit few(RLIMIT_NOFILE, static_cast<rlim_t>(m_descriptors + spare));
            refresh(*m_page);
        }
        // Whichever command can't be run, or not to the end: no half of an answer shows.
        if (lastPid(*m_page) == AlicePid && !shownRow(*m_page).isEmpty()) {
            QCOMPARE(pageState(*m_page), expectedState(AlicePid, aliceRow()));
            ++answers;
        } else {
            QCOMPARE(pageState(*m_page), expectedState(lastPid(*m_page), NoRow));
            QVERIFY(lastPid(*m_page) == Unknown || lastPid(*m_page) == AlicePid);
            ++refusals;
        }
        recovers();
        if (QTest::currentTestFailed())
            return;
    }
    QVERIFY(answers > 0);
    QVERIFY(refusals > 0);
}

QTEST_MAIN(tst_ToolFaults)
#include "tst_ToolFaults.moc"
