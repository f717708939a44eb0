#include "tests/support/PanelProcess.h"
#include "tests/support/ShimFolder.h"
#include "tests/support/files.h"

#include <QDir>
#include <QTest>

#include <unistd.h>

namespace {

const QString Table = QStringLiteral("treeWidgetOW");
constexpr int PidColumn = 1;
//! Several refreshes, on a machine with other things to do.
constexpr int RefreshTimeoutMs = 20000;

//! Text that a shell would take for commands, with quotes of each kind to get out of any others.
const QString Commands = QStringLiteral(
        "朔川 panel; touch canary\n$(touch canary) `touch canary` \" ' \\ & | > canary");

//! Starts the panel as a user who owns nothing, where this user is root.
QStringList ordinaryUser()
{
    if (geteuid() != 0)
        return {};
    return {QStringLiteral("setpriv"), QStringLiteral("--reuid=65534"),
            QStringLiteral("--regid=65534"), QStringLiteral("--clear-groups")};
}

//! A shell that does \a preparation and becomes the panel.
QStringList bashBefore(const QString &preparation)
{
    return {QStringLiteral("/bin/bash"), QStringLiteral("-c"),
            preparation + QStringLiteral("; exec \"$0\" \"$@\"")};
}

} // namespace

/*!
    The whole program, started in surroundings that nobody would wish it. In all of them it has to
    come up, start the daemon once, show it, and end as if nothing were the matter.
*/
class tst_Surroundings : public QObject
{
    Q_OBJECT

private slots:
    void emptyEnvironment();
    void noHome();
    void rubbishInTheLibraryPath();
    void hugeEnvironment();
    void closedStandardStreams_data();
    void closedStandardStreams();
    void closedStreamsAreReplacedOnceEach();
    void anotherUsersFolder();
    void folderThatReadsLikeCommands();

private:
    static void prepare(PanelProcess &panel);
    static void comesUp(PanelProcess &panel, const QStringList &arguments = {});
};

//! Puts the daemon beside \a panel, with a record that depends on no variable and no odd path.
void tst_Surroundings::prepare(PanelProcess &panel)
{
    panel.share();
    if (!QFile::copy(QStringLiteral(PANEL_TEST_DAEMON), panel.daemonPath()))
        qFatal("can't copy the daemon");
    panel.configureDaemon("CORVANE_RECORD",
                          QFile::encodeName(panel.sharedFolder() + QStringLiteral("/record")));
}

void tst_Surroundings::comesUp(PanelProcess &panel, const QStringList &arguments)
{
    QVERIFY(panel.start(arguments));

    const QString recordPath = panel.sharedFolder() + QStringLiteral("/record");
    QTRY_VERIFY(QFile::exists(recordPath));
    const QList<qint64> pids = panel.daemonPids();
    QCOMPARE(pids.size(), 1);
    const QByteArray record = readFile(recordPath);
    const QByteArray path = QFile::encodeName(panel.daemonPath());
    QVERIFY2(record.startsWith("pid=" + QByteArray::number(pids.first())
                               + "\ndirectory=" + QFile::encodeName(panel.folder())
                               + "\nargument=" + path + "\nargument=quickboot\n"),
             record.constData());
    for (const char *name : {"LD_LIBRARY_PATH", "LD_PRELOAD", "QT_PLUGIN_PATH"})
        QVERIFY2(!record.contains(QByteArray("\nenvironment=") + name + '='), name);

    QCOMPARE(panel.property(QStringLiteral("qApp"), "CorvanePid"), QVariant(pids.first()));
    panel.setRefreshInterval(PanelProcess::QuickRefreshMs);
    QTRY_COMPARE_WITH_TIMEOUT(panel.rowTexts(Table).value(0).value(PidColumn),
                              QString::number(pids.first()), RefreshTimeoutMs);
    QCOMPARE(panel.application(QStringLiteral("children")).toList(), QVariantList());

    QVERIFY(panel.invoke(QStringLiteral("ServiceContainer"), "close"));
    QCOMPARE(panel.waitForExit(), std::optional<int>(0));
    QCOMPARE(panel.daemonPids(), pids);
}

void tst_Surroundings::emptyEnvironment()
{
    PanelProcess panel;
    prepare(panel);
    const QStringList arguments =
            panel.inspectorArguments()
            + QStringList {QStringLiteral("-display"),
                           panel.environment().value(QStringLiteral("DISPLAY"))};
    // QProcess takes an empty environment for none at all and hands on its own.
    panel.setLauncher(QStringList {QStringLiteral("env"), QStringLiteral("-i")} + ordinaryUser());

    comesUp(panel, arguments);

    QCOMPARE(readFile(panel.sharedFolder() + QStringLiteral("/record")).count("environment="), 1);
    QVERIFY(readFile(panel.sharedFolder() + QStringLiteral("/record"))
                    .endsWith("\nenvironment=QT_QPA_PLATFORM=xcb\n"));
}

void tst_Surroundings::noHome()
{
    PanelProcess panel;
    prepare(panel);
    for (const char *name :
         {"HOME", "XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_CACHE_HOME", "XDG_RUNTIME_DIR"})
        panel.environment().remove(QLatin1String(name));
    panel.setLauncher(ordinaryUser());

    comesUp(panel);
}

void tst_Surroundings::rubbishInTheLibraryPath()
{
    PanelProcess panel;
    prepare(panel);
    // Libraries of the shell and the process tools: whoever sees this folder can't run them.
    const QString rubbish = panel.sharedFolder() + QStringLiteral("/rub bish");
    QVERIFY(QDir().mkpath(rubbish));
    for (const char *library : {"libtinfo.so.6", "libproc2.so.0", "libproc-3.so.2",
                                "libreadline.so.8", "libsigsegv.so.2", "libmpfr.so.6"})
        writeFile(rubbish + QLatin1Char('/') + QLatin1String(library), "not a library\n");
    const QString path = QStringLiteral("%1::;/nowhere:%2:%1:$ORIGIN/x:/dev/null")
                                 .arg(rubbish, QString(60000, QLatin1Char('x')));
    panel.environment().insert(QStringLiteral("LD_LIBRARY_PATH"), path);

    QProcess shell;
    shell.setProcessEnvironment(panel.environment());
    shell.start(QStringLiteral("/bin/bash"), {QStringLiteral("-c"), QStringLiteral("pgrep x")});
    QVERIFY(shell.waitForFinished());
    QVERIFY(shell.exitCode() > 1); // or the rubbish does no harm, and nothing is shown

    comesUp(panel);
}

void tst_Surroundings::hugeEnvironment()
{
    constexpr int Variables = 14;
    constexpr int Size = 100000; // all together somewhat below what the system takes
    PanelProcess panel;
    prepare(panel);
    for (int i = 0; i < Variables; ++i)
        panel.environment().insert(QStringLiteral("HUGE_%1").arg(i),
                                   QString(Size, QLatin1Char('x')));

    comesUp(panel);

    QVERIFY(readFile(panel.sharedFolder() + QStringLiteral("/record")).size() > Variables * Size);
}

void tst_Surroundings::closedStandardStreams_data()
{
    QTest::addColumn<QString>("closing");

    QTest::newRow("input") << "exec <&-";
    QTest::newRow("output") << "exec >&-";
    QTest::newRow("errors") << "exec 2>&-";
    QTest::newRow("input and output") << "exec <&- >&-";
    QTest::newRow("all") << "exec <&- >&- 2>&-";
}

void tst_Surroundings::closedStandardStreams()
{
    QFETCH(QString, closing);
    PanelProcess panel;
    prepare(panel);
    panel.setLauncher(bashBefore(closing));

    comesUp(panel);
}

void tst_Surroundings::closedStreamsAreReplacedOnceEach()
{
    PanelProcess panel;
    panel.setLauncher(bashBefore(QStringLiteral("exec <&- >&- 2>&-")));
    QVERIFY(panel.start());

    // The one that tells that all are open is closed again. From 10 on they are the shell's.
    for (int descriptor = 0; descriptor < 10; ++descriptor) {
        const QString link = QStringLiteral("/proc/%1/fd/%2").arg(panel.pid()).arg(descriptor);
        QCOMPARE(QFile::symLinkTarget(link) == QLatin1String("/dev/null"),
                 descriptor <= STDERR_FILENO);
    }
}

void tst_Surroundings::anotherUsersFolder()
{
    PanelProcess panel;
    prepare(panel);
    // A home and a working folder that the panel's user may not even enter.
    const QString locked = panel.sharedFolder() + QStringLiteral("/locked");
    QVERIFY(QDir().mkdir(locked));
    QVERIFY(QFile::setPermissions(locked, QFile::Permissions()));
    const QString variables[] = {QStringLiteral("HOME"), QStringLiteral("XDG_CONFIG_HOME"),
                                 QStringLiteral("XDG_RUNTIME_DIR"), QStringLiteral("TMPDIR")};
    for (const QString &name : variables)
        panel.environment().insert(name, locked + QStringLiteral("/home"));
    const QStringList shell = bashBefore(QStringLiteral("cd '%1'").arg(locked));
    panel.setLauncher(shell + ordinaryUser());

    comesUp(panel);

    QVERIFY(QFile::setPermissions(locked, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
    QCOMPARE(QDir(locked).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
             QStringList());
}

void tst_Surroundings::folderThatReadsLikeCommands()
{
    PanelProcess panel(Commands);
    prepare(panel);
    // Each probe's text as the shells see it: the folder is in none of them.
    const QString seen = panel.sharedFolder() + QStringLiteral("/seen");
    ShimFolder shims;
    shims.add(QStringLiteral("pgrep"), "/usr/bin/tr '\\0' ' ' </proc/$PPID/cmdline >>'"
                                               + QFile::encodeName(seen)
                                               + "'\nexec /usr/bin/pgrep \"$@\"");
    panel.environment().insert(QStringLiteral("PATH"), QString::fromLocal8Bit(qgetenv("PATH")));
    panel.setLauncher(bashBefore(QStringLiteral("cd '%1'").arg(panel.sharedFolder())));

    comesUp(panel);

    const QByteArray texts = readFile(seen);
    QVERIFY(texts.contains("pgrep -lf Corvane | grep -w Corvane"));
    QVERIFY(!texts.contains("canary"));
    for (const QString &folder : {panel.sharedFolder(), panel.folder(), QDir::homePath()})
        QVERIFY(!QFile::exists(folder + QStringLiteral("/canary")));
}

QTEST_MAIN(tst_Surroundings)
#include "tst_Surroundings.moc"
