#include "tests/support/PanelProcess.h"
#include "tests/support/ShimFolder.h"
#include "tests/support/files.h"

#include <QDir>
#include <QProcess>
#include <QTest>

#include <unistd.h>

namespace {

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
    The whole program without variables, with closed streams and in an oddly named folder. Each time
    it has to come up, start the daemon once, show it and end with status 0.
*/
class tst_OddEnvironments : public QObject
{
    Q_OBJECT

private slots:
    void emptyEnvironment();
    void closedStandardStreams_data();
    void closedStandardStreams();
    void closedStreamsAreReplacedOnceEach();
    void folderThatReadsLikeCommands();

private:
    static void prepare(PanelProcess &panel);
    //! Runs \a panel from its start to its end, and compares all that it does.
    static void comesUp(PanelProcess &panel, const QStringList &arguments = {});
};

//! Puts the daemon beside \a panel, with a record that depends on no variable and no odd path.
void tst_OddEnvironments::prepare(PanelProcess &panel)
{
    panel.share();
    if (!QFile::copy(QStringLiteral(PANEL_TEST_DAEMON), panel.daemonPath()))
        qFatal("can't copy the daemon");
    panel.configureDaemon("CORVANE_RECORD",
                          QFile::encodeName(panel.sharedFolder() + QStringLiteral("/record")));
}

void tst_OddEnvironments::comesUp(PanelProcess &panel, const QStringList &arguments)
{
    QVERIFY(panel.start(arguments));

    const QString recordPath = panel.sharedFolder() + QStringLiteral("/record");
    QTRY_VERIFY(QFile::exists(recordPath));
    const QList<qint64> pids = panel.daemonPids();
    QCOMPARE(pids.size(), 1);
    const QByteArray record = readFile(recordPath);
    const QByteArray path = QFile::encodeName(panel.daemonPath());
    QVERIFY2(record.startsWith("pid=" + QByteArray::number(pids.first()) + "\ndirectory="
                               + QFile::encodeName(panel.folder()) + "\nargument=" + path + '\n'),
             record.constData());

    QCOMPARE(panel.property(QStringLiteral("qApp"), "CorvanePid"), QVariant(pids.first()));
    panel.setRefreshInterval(PanelProcess::QuickRefreshMs);
    QTRY_VERIFY_WITH_TIMEOUT(panel.showsDaemon(pids.first()), RefreshTimeoutMs);
    QCOMPARE(panel.application(QStringLiteral("children")).toList(), QVariantList());

    QVERIFY(panel.invoke(QStringLiteral("ServiceContainer"), "close"));
    QCOMPARE(panel.waitForExit(), std::optional<int>(0));
    QCOMPARE(panel.daemonPids(), pids);
}

void tst_OddEnvironments::emptyEnvironment()
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
    if (QTest::currentTestFailed())
        return;

    // A desktop's own X11 plug-in adds variables to each program that loads it, so to this one too.
    const QString prefix = QStringLiteral("environment=");
    const QStringList own = QProcess::systemEnvironment();
    QStringList added;
    const QByteArray record = readFile(panel.sharedFolder() + QStringLiteral("/record"));
    const QStringList lines = QString::fromUtf8(record).split(QLatin1Char('\n'));
    for (const QString &line : lines) {
        if (line.startsWith(prefix) && !own.contains(line.mid(prefix.size())))
            added.append(line.mid(prefix.size()));
    }
    QCOMPARE(added, QStringList(QStringLiteral("QT_QPA_PLATFORM=xcb")));
}

void tst_OddEnvironments::closedStandardStreams_data()
{
    QTest::addColumn<QString>("closing");

    QTest::newRow("input") << "exec <&-";
    QTest::newRow("output") << "exec >&-";
    QTest::newRow("errors") << "exec 2>&-";
    QTest::newRow("all") << "exec <&- >&- 2>&-";
}

void tst_OddEnvironments::closedStandardStreams()
{
    QFETCH(QString, closing);
    PanelProcess panel;
    prepare(panel);
    panel.setLauncher(bashBefore(closing));

    comesUp(panel);
}

void tst_OddEnvironments::closedStreamsAreReplacedOnceEach()
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

void tst_OddEnvironments::folderThatReadsLikeCommands()
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
    if (QTest::currentTestFailed())
        return;

    const QByteArray texts = readFile(seen);
    QVERIFY(texts.contains("pgrep -lf Corvane | grep -w Corvane"));
    QVERIFY(!texts.contains("canary"));
    for (const QString &folder : {panel.sharedFolder(), panel.folder(), QDir::homePath()})
        QVERIFY(!QFile::exists(folder + QStringLiteral("/canary")));
}

QTEST_MAIN(tst_OddEnvironments)
#include "tst_OddEnvironments.moc"
