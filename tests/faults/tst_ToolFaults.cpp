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

constexpr qint64 Pid = 1234;
constexpr qint64 Unknown = -1;

const char *const Probe = "1234 Corvane\n";
const char *const Figures = "Corvane         1234 alice       01:02:03  0.5  1.2\n";
const char *const Row = "Corvane|1234|alice|01:02:03|0.5%|1.2%";
const char *const NoRow = "";

//! One tool that misbehaves, and what the page must make of it when it showed the daemon before.
struct Fault
{
    const char *name;
    const char *tool;
    //! What the tool does instead of its work; null where it is missing.
    const char *body;
    qint64 lastPid;
    //! The row's texts, separated by "|".
    const char *row;
};

const Fault Faults[] = {
        {"pgrep is missing", "pgrep", nullptr, Unknown, NoRow},
        {"ps is missing", "ps", nullptr, Pid, NoRow},
        {"grep is missing", "grep", nullptr, Unknown, NoRow},
        {"awk is missing", "awk", nullptr, Unknown, NoRow},

        {"pgrep prints megabytes in one line", "pgrep",
         "/usr/bin/head -c 8000000 /dev/zero | /usr/bin/tr '\\0' x", Unknown, NoRow},
        {"ps prints megabytes of rows", "ps",
         "/usr/bin/yes 'Corvane 1234 a b c d' | /usr/bin/head -n 200000", Pid, NoRow},
        {"ps prints megabytes of blanks", "ps",
         "echo -n Corvane; /usr/bin/head -c 4000000 /dev/zero | /usr/bin/tr '\\0' ' '; "
         "echo '1234 alice 01:02:03 0.5 1.2'",
         Pid, Row},

        {"pgrep prints bytes that are no text", "pgrep",
         "printf '\\x00\\xff\\x01 Corvane\\n1234 Corvane\\n'", Unknown, NoRow},
        {"ps writes decimal commas", "ps", "echo 'Corvane 1234 alice 01:02:03 0,5 1,2'", Pid,
         "Corvane|1234|alice|01:02:03|0,5%|1,2%"},
        {"ps prints the numbers of another script", "ps", "echo 'Corvane 1234 alice ٠١:٠٢ ٠٫٥ ١٫٢'",
         Pid, "Corvane|1234|alice|٠١:٠٢|٠٫٥%|١٫٢%"},

        {"pgrep dies at once", "pgrep", "kill -SEGV $$", Unknown, NoRow},
        {"pgrep dies behind its answer", "pgrep", "echo 1234 Corvane; kill -SEGV $$", Pid, Row},
        {"ps dies at once", "ps", "kill -KILL $$", Pid, NoRow},
        {"ps dies within its answer", "ps", "echo -n 'Corvane 1234 ali'; kill -KILL $$", Pid,
         NoRow},
        {"grep dies", "grep", "kill -ABRT $$", Unknown, NoRow},
        {"awk dies behind its answer", "awk", "echo 1234; kill -ABRT $$", Unknown, NoRow},
        {"the probe's shell is killed", "pgrep", "kill -KILL $PPID", Unknown, NoRow},
        {"the other shell is killed", "ps", "kill -KILL $PPID", Pid, NoRow},
        {"pgrep closes its output", "pgrep", "exec >&-; echo 1234 Corvane", Unknown, NoRow},
};

} // namespace

/*!
    The run-status page when the tools that it relies on misbehave or the system refuses it what it
    needs: what it shows meanwhile follows its rules, it recovers with the next refresh once the
    fault is gone, and nothing is left behind.
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
    m_page = std::make_unique<OverviewForm>();
    verifyPage(*m_page, Pid, QString::fromUtf8(Row));
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
        m_shims->add(name, QByteArray("case \"$*\" in *'-p 1234') echo -n '") + Figures
                                   + "';; *) exit 1;; esac");
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
    verifyPage(*m_page, Pid, QString::fromUtf8(Row));
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
    verifyPage(*m_page, fault.lastPid, QString::fromUtf8(fault.row));
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
    verifyPage(*m_page, Pid, QString::fromUtf8(Row));
    placeTools();
    recovers();
}

void tst_ToolFaults::figuresThatAreNoText()
{
    const QByteArray line = "Corvane 1234 \xff\xfe 01:02:03 0.5 1.2\n";
    m_shims->addPrinting(QStringLiteral("ps"), line);

    // In a locale of single bytes they are text like any other.
    const QByteArray formerLocale = qgetenv("LC_ALL");
    qputenv("LC_ALL", "C");
    refresh(*m_page);
    qputenv("LC_ALL", formerLocale);
    verifyPage(*m_page, Pid, QStringLiteral("Corvane|1234|\uFFFD\uFFFD|01:02:03|0.5%|1.2%"));

    // In the others grep keeps them back, and says so where nobody reads it.
    refresh(*m_page);
    verifyPage(*m_page, Pid, NoRow);

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
    verifyPage(*m_page, Unknown, NoRow);
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
        if (lastPid(*m_page) == Pid && !shownRow(*m_page).isEmpty()) {
            verifyPage(*m_page, Pid, QString::fromUtf8(Row));
            ++answers;
        } else {
            verifyPage(*m_page, lastPid(*m_page), NoRow);
            QVERIFY(lastPid(*m_page) == Unknown || lastPid(*m_page) == Pid);
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
