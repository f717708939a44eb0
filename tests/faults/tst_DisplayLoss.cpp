#include "tests/support/PanelProcess.h"
#include "tests/support/ServerWindow.h"
#include "tests/support/ShimFolder.h"
#include "tests/support/StandInDaemon.h"
#include "tests/support/files.h"

#include <QTest>

#include <csignal>

#include <sys/stat.h>

namespace {

const QString Window = QStringLiteral("ServiceContainer");
const QString Page = QStringLiteral("OverviewForm");

//! Several refreshes, on a machine with other things to do.
constexpr int RefreshTimeoutMs = 20000;

//! The status with which Qt's X11 plug-in ends a program that has lost its display.
constexpr int LostDisplayStatus = 1;

//! An X server of the test's own, which it may end.
class PrivateDisplay
{
public:
    PrivateDisplay()
    {
        m_server.start(QStringLiteral("Xvfb"),
                       {QStringLiteral("-displayfd"), QStringLiteral("1"),
                        QStringLiteral("-nolisten"), QStringLiteral("tcp"),
                        QStringLiteral("-noreset"), QStringLiteral("-screen"), QStringLiteral("0"),
                        QStringLiteral("1280x1024x24")});
        while (!m_server.canReadLine()) {
            if (!m_server.waitForReadyRead())
                qFatal("the X server doesn't start");
        }
        m_name = QLatin1Char(':') + QString::fromLatin1(m_server.readLine().trimmed());
    }
    ~PrivateDisplay()
    {
        end(m_manager, SIGKILL);
        end(m_server, SIGKILL);
    }
    Q_DISABLE_COPY_MOVE(PrivateDisplay)

    [[nodiscard]] QString name() const { return m_name; }

    void startManager()
    {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("DISPLAY"), m_name);
        m_manager.setProcessEnvironment(environment);
        m_manager.start(QStringLiteral("openbox"), QStringList());
        if (!m_manager.waitForStarted() || !QTest::qWaitFor([this] { return hasManager(); }, 20000))
            qFatal("the window manager doesn't start");
    }

    //! Whether a manager has announced itself that still has its window.
    [[nodiscard]] bool hasManager() const
    {
        QProcess process;
        process.start(QStringLiteral("xprop"),
                      {QStringLiteral("-display"), m_name, QStringLiteral("-root"),
                       QStringLiteral("_NET_SUPPORTING_WM_CHECK")});
        return process.waitForFinished() && process.readAllStandardOutput().contains("window id");
    }

    void endManager(int signal) { end(m_manager, signal); }
    void endServer(int signal) { end(m_server, signal); }

private:
    static void end(QProcess &process, int signal)
    {
        if (process.state() == QProcess::NotRunning)
            return;
        ::kill(static_cast<pid_t>(process.processId()), signal);
        process.waitForFinished();
    }

    QProcess m_server;
    QProcess m_manager;
    QString m_name;
};

} // namespace

/*!
    The running panel when it loses its display or its window manager.
*/
class tst_DisplayLoss : public QObject
{
    Q_OBJECT

private slots:
    void serverGone_data();
    void serverGone();
    void managerGone_data();
    void managerGone();
};

void tst_DisplayLoss::serverGone_data()
{
    QTest::addColumn<int>("signal");
    QTest::addColumn<QString>("moment");

    QTest::newRow("ended, idle") << SIGTERM << "idle";
    QTest::newRow("killed, idle") << SIGKILL << "idle";
    QTest::newRow("killed, in a refresh") << SIGKILL << "refresh";
    QTest::newRow("killed, in a repair") << SIGKILL << "repair";
    QTest::newRow("killed, with a message box open") << SIGKILL << "box";
}

void tst_DisplayLoss::serverGone()
{
    QFETCH(int, signal);
    QFETCH(QString, moment);
    PrivateDisplay display;
    ShimFolder shims;
    PanelProcess panel;
    panel.environment().insert(QStringLiteral("DISPLAY"), display.name());
    panel.environment().insert(QStringLiteral("PATH"), QString::fromLocal8Bit(qgetenv("PATH")));

    // A refresh that goes on until the test writes a line.
    const QString pipe = shims.path() + QStringLiteral("/pipe");
    QCOMPARE(mkfifo(QFile::encodeName(pipe).constData(), S_IRUSR | S_IWUSR), 0);
    if (moment == QLatin1String("repair")) {
        QVERIFY(panel.start());
        QVERIFY(panel.showsNotice());
        panel.placeDaemon();
        QVERIFY(panel.invoke(Page, "on_xfkqfw_clicked"));
        // Started, and the wait for it goes on.
        QTRY_VERIFY(panel.hasDaemonRecord());
    } else {
        panel.placeDaemon();
        QVERIFY(panel.start());
        QTRY_VERIFY(panel.hasDaemonRecord());
        panel.setRefreshInterval(PanelProcess::QuickRefreshMs);
        QTRY_VERIFY_WITH_TIMEOUT(panel.showsDaemon(panel.daemonPids().value(0)), RefreshTimeoutMs);
    }
    const QList<qint64> daemons = panel.daemonPids();
    QCOMPARE(daemons.size(), 1);
    if (moment == QLatin1String("refresh")) {
        shims.add(QStringLiteral("pgrep"),
                  "read -r < '" + QFile::encodeName(pipe) + "'\nexec /usr/bin/pgrep \"$@\"");
        QTRY_VERIFY_WITH_TIMEOUT(!shims.calls(QStringLiteral("pgrep")).isEmpty(), RefreshTimeoutMs);
    } else if (moment == QLatin1String("box")) {
        QVERIFY(panel.invoke(Page, "on_xfkqfw_clicked"));
        QTRY_VERIFY_WITH_TIMEOUT(panel.messageBox(), RefreshTimeoutMs);
    }

    display.endServer(signal);
    if (moment == QLatin1String("refresh")) {
        QVERIFY(panel.isRunning());
        writeFile(pipe, "\n");
    }

    // An exit, no crash.
    QCOMPARE(panel.waitForExit(), std::optional<int>(LostDisplayStatus));
    QCOMPARE(panel.daemonPids(), daemons);
}

void tst_DisplayLoss::managerGone_data()
{
    QTest::addColumn<int>("signal");

    QTest::newRow("ended") << SIGTERM;
    QTest::newRow("killed") << SIGKILL;
}

void tst_DisplayLoss::managerGone()
{
    QFETCH(int, signal);
    PrivateDisplay display;
    display.startManager();
    PanelProcess panel;
    panel.environment().insert(QStringLiteral("DISPLAY"), display.name());
    QVERIFY(panel.start());
    QVERIFY(panel.showsNotice());
    panel.setRefreshInterval(PanelProcess::QuickRefreshMs);
    const qulonglong window = panel.windowId(Window);
    const auto isFramed = [&] {
        const ServerWindow shown = serverWindow(window, display.name());
        return shown.isViewable && !shown.isBelowRoot;
    };
    QTRY_VERIFY(isFramed());
    const QRect place = serverWindow(window, display.name()).geometry;

    display.endManager(signal);

    // Without anyone to manage it the window stays where it is, and alive. The server takes it out
    // of the lost frame by hiding it for a moment, which the panel may be told of a little later.
    const auto isExposed = [&] { return panel.isExposed(Window); };
    const auto isBare = [&] {
        const ServerWindow shown = serverWindow(window, display.name());
        return shown.isViewable && shown.isBelowRoot;
    };
    QTRY_VERIFY(isBare());
    QVERIFY(QTest::qWaitFor(isExposed));
    const QTemporaryDir elsewhere;
    const StandInDaemon daemon(elsewhere.filePath(QStringLiteral("Corvane")));
    QTRY_VERIFY_WITH_TIMEOUT(panel.showsDaemon(daemon.pid()), RefreshTimeoutMs);
    QVERIFY(panel.isExposed(Window));
    QCOMPARE(serverWindow(window, display.name()).geometry, place);

    // And a new manager finds it.
    display.startManager();
    QTRY_VERIFY(isFramed());
    QVERIFY(QTest::qWaitFor(isExposed));
    QVERIFY(panel.invoke(Window, "close"));
    QCOMPARE(panel.waitForExit(), std::optional<int>(0));
    QCOMPARE(panel.errorLines(),
             QStringList(QStringLiteral("file: \"%1\"").arg(panel.daemonPath())));
}

QTEST_MAIN(tst_DisplayLoss)
#include "tst_DisplayLoss.moc"
