#include "tests/support/PanelProcess.h"
#include "tests/support/ShimFolder.h"
#include "tests/support/StandInDaemon.h"
#include "tests/support/files.h"

#include <QGuiApplication>
#include <QLibraryInfo>
#include <QScreen>
#include <QTest>

namespace {

const QString Application = QStringLiteral("qApp");
const QString Window = QStringLiteral("ServiceContainer");
constexpr const char *PidProperty = "CorvanePid";
constexpr int FontPointSize = 9;

//! Variables that no child of the panel may see.
const QStringList PrivateVariables = {
        QStringLiteral("LD_LIBRARY_PATH"),
        QStringLiteral("LD_PRELOAD"),
        QStringLiteral("QT_PLUGIN_PATH"),
        QStringLiteral("QT_QPA_PLATFORM_PLUGIN_PATH"),
};
const QString PlatformVariable = QStringLiteral("QT_QPA_PLATFORM");

//! The one line that an attempt to start the daemon writes.
QStringList attemptLine(const PanelProcess &panel)
{
    return {QStringLiteral("file: \"%1\"").arg(panel.daemonPath())};
}

//! What a child of \a panel must see: the panel's own environment, cleaned.
QStringList cleanedEnvironment(PanelProcess &panel)
{
    QProcessEnvironment environment = panel.environment();
    for (const QString &variable : PrivateVariables)
        environment.remove(variable);
    environment.insert(PlatformVariable, QStringLiteral("xcb"));
    QStringList result = environment.toStringList();
    result.sort();
    return result;
}

//! Gives \a panel values of its own for the private variables, harmless ones.
void setPrivateVariables(PanelProcess &panel)
{
    const QString plugins = QLibraryInfo::location(QLibraryInfo::PluginsPath);
    QProcessEnvironment &environment = panel.environment();
    environment.insert(QStringLiteral("LD_LIBRARY_PATH"), panel.folder());
    environment.insert(QStringLiteral("LD_PRELOAD"), QStringLiteral("libm.so.6"));
    environment.insert(QStringLiteral("QT_PLUGIN_PATH"),
                       PanelProcess::pluginPath() + QLatin1Char(':') + plugins);
    environment.insert(QStringLiteral("QT_QPA_PLATFORM_PLUGIN_PATH"), plugins + "/platforms");
    // A sanitizer's library would insist on being loaded first.
    environment.insert(QStringLiteral("ASAN_OPTIONS"),
                       environment.value(QStringLiteral("ASAN_OPTIONS"))
                               + QStringLiteral(":verify_asan_link_order=0"));
}

QStringList sorted(QStringList list)
{
    list.sort();
    return list;
}

//! The files that process \a pid has in memory.
QStringList loadedLibraries(qint64 pid)
{
    QStringList result;
    const QList<QByteArray> lines = readFile(QStringLiteral("/proc/%1/maps").arg(pid)).split('\n');
    for (const QByteArray &line : lines) {
        const int start = line.indexOf('/');
        if (start >= 0)
            result.append(QFile::decodeName(line.mid(start)));
    }
    result.removeDuplicates();
    return result;
}

//! Which of the files \a loaded may be another maker's, for the message of a test.
QString origin(const QStringList &loaded)
{
    return QStringLiteral(
                   "The platform plug-in is %1: if it isn't Qt's own libqxcb.so, a package of "
                   "the desktop has put its own there.")
            .arg(loaded.filter(QStringLiteral("/platforms/")).join(u' '));
}

} // namespace

class tst_StartUp : public QObject
{
    Q_OBJECT

private slots:
    void takesTheRunningDaemon();
    void startsAFurtherDaemonBesideTwo();
    void startsTheAbsentDaemonOnce();
    void cleansTheEnvironment_data();
    void cleansTheEnvironment();
    void keepsTheOpenGlDriverOut_data();
    void keepsTheOpenGlDriverOut();
    void doesWithoutADaemonThatCantBeStarted_data();
    void doesWithoutADaemonThatCantBeStarted();
    void takesAnyNumberButANegativeOne_data();
    void takesAnyNumberButANegativeOne();
    void replacesANegativeNumber();
    void dressesTheApplicationAndTheWindow();
    void keepsItsFontSizeOnAnyDesktop();
    void handsTheArgumentsToTheApplication();
    void opensWebAddressesWithTheOpener();
    void unsetsItsUrlHandlersAtTheEnd();
    void centresTheWindow();
    void keepsTheWindowOnOneScreen();
    void endsWithStatusZeroAndLeavesTheDaemon();
};

void tst_StartUp::takesTheRunningDaemon()
{
    const QTemporaryDir elsewhere;
    const StandInDaemon daemon(elsewhere.filePath(QStringLiteral("Corvane")));
    PanelProcess panel;
    panel.placeDaemon();

    QVERIFY(panel.start());

    const QVariant pid = panel.property(Application, PidProperty);
    QCOMPARE(pid.userType(), static_cast<int>(QMetaType::LongLong));
    QCOMPARE(pid.toLongLong(), daemon.pid());
    QCOMPARE(panel.errorLines(), QStringList());
    QCOMPARE(panel.daemonPids(), QList<qint64>());
    QVERIFY(!panel.hasDaemonRecord());
}

void tst_StartUp::startsAFurtherDaemonBesideTwo()
{
    const QTemporaryDir elsewhere;
    const StandInDaemon first(elsewhere.filePath(QStringLiteral("Corvane")));
    const StandInDaemon second(elsewhere.filePath(QStringLiteral("Corvane")));
    PanelProcess panel;
    panel.placeDaemon();

    QVERIFY(panel.start());

    QTRY_VERIFY(panel.hasDaemonRecord());
    QCOMPARE(panel.errorLines(), attemptLine(panel));
    QCOMPARE(panel.daemonPids().size(), 1);
    QCOMPARE(panel.property(Application, PidProperty), QVariant(panel.daemonPids().constFirst()));
}

void tst_StartUp::startsTheAbsentDaemonOnce()
{
    PanelProcess panel(QStringLiteral("朔川 \"panel\" $HOME"));
    panel.placeDaemon();

    QVERIFY(panel.start());

    QTRY_VERIFY(panel.hasDaemonRecord());
    QCOMPARE(panel.daemonRecord(QStringLiteral("argument")).value(0), panel.daemonPath());
    QCOMPARE(panel.daemonRecord(QStringLiteral("directory")), QStringList(panel.folder()));
    QCOMPARE(panel.daemonPids().size(), 1);
    const QVariant pid = panel.property(Application, PidProperty);
    QCOMPARE(pid.userType(), static_cast<int>(QMetaType::LongLong));
    QCOMPARE(pid.toLongLong(), panel.daemonPids().constFirst());
    // The logging stream quotes the path, and with it the quotes inside.
    QCOMPARE(panel.errorLines(),
             QStringList(QStringLiteral("file: \"%1\"")
                                 .arg(panel.daemonPath().replace(QLatin1Char('"'), "\\\""))));
}

void tst_StartUp::cleansTheEnvironment_data()
{
    QTest::addColumn<bool>("privateVariables");
    QTest::addColumn<QString>("platform");

    QTest::newRow("nothing set") << false << QString();
    QTest::newRow("private variables and another platform set") << true << "wayland";
}

void tst_StartUp::cleansTheEnvironment()
{
    QFETCH(bool, privateVariables);
    QFETCH(QString, platform);
    PanelProcess panel;
    panel.placeDaemon();
    panel.environment().insert(QStringLiteral("WAYLAND_DISPLAY"), QStringLiteral("wayland-0"));
    if (privateVariables)
        setPrivateVariables(panel);
    if (!platform.isNull())
        panel.environment().insert(PlatformVariable, platform);

    QVERIFY(panel.start());

    QCOMPARE(panel.application(QStringLiteral("platform")), QVariant(QStringLiteral("xcb")));
    QCOMPARE(sorted(panel.application(QStringLiteral("environment")).toStringList()),
             cleanedEnvironment(panel));
    QTRY_VERIFY(panel.hasDaemonRecord());
    QCOMPARE(sorted(panel.daemonRecord(QStringLiteral("environment"))), cleanedEnvironment(panel));
}

void tst_StartUp::keepsTheOpenGlDriverOut_data()
{
    QTest::addColumn<QString>("chosen");
    QTest::addColumn<bool>("isLoaded");

    QTest::newRow("nothing chosen") << QString() << false;
    QTest::newRow("driver chosen") << "xcb_glx" << true;
    QTest::newRow("none chosen") << "none" << false;
}

void tst_StartUp::keepsTheOpenGlDriverOut()
{
    QFETCH(QString, chosen);
    QFETCH(bool, isLoaded);
    const QString variable = QStringLiteral("QT_XCB_GL_INTEGRATION");
    PanelProcess panel;
    panel.placeDaemon();
    panel.environment().remove(variable);
    if (!chosen.isNull())
        panel.environment().insert(variable, chosen);
    QVERIFY(panel.start());

    // A desktop's own X11 plug-in may take the place of Qt's; it is built on this library as well.
    const QStringList loaded = loadedLibraries(panel.pid());
    QVERIFY2(!loaded.filter(QStringLiteral("/libQt5XcbQpa.so")).isEmpty(),
             qPrintable("Qt's X11 integration, libQt5XcbQpa.so, isn't loaded. " + origin(loaded)));
    const QStringList drivers = loaded.filter(QStringLiteral("/xcbglintegrations/"));
    QVERIFY2(drivers.isEmpty() != isLoaded,
             qPrintable(QStringLiteral("OpenGL plug-ins that are loaded: %1; there should be %2. ")
                                .arg(drivers.join(u' '),
                                     isLoaded ? QStringLiteral("one") : QStringLiteral("none"))
                        + origin(loaded)));
    // Children see the user's own choice, and no trace of the panel's.
    QTRY_VERIFY(panel.hasDaemonRecord());
    QCOMPARE(sorted(panel.daemonRecord(QStringLiteral("environment"))), cleanedEnvironment(panel));
}

void tst_StartUp::doesWithoutADaemonThatCantBeStarted_data()
{
    QTest::addColumn<bool>("isPlaced");

    QTest::newRow("absent") << false;
    QTest::newRow("not executable") << true;
}

void tst_StartUp::doesWithoutADaemonThatCantBeStarted()
{
    QFETCH(bool, isPlaced);
    PanelProcess panel;
    if (isPlaced) {
        panel.placeDaemon();
        QVERIFY(QFile::setPermissions(panel.daemonPath(), QFile::ReadOwner | QFile::WriteOwner));
    }

    QVERIFY(panel.start());

    QVERIFY(!panel.property(Application, PidProperty).isValid());
    QCOMPARE(panel.errorLines(), attemptLine(panel));
    QVERIFY(!panel.messageBox());
    QVERIFY(!panel.hasDaemonRecord());
    QCOMPARE(panel.daemonPids(), QList<qint64>());
    QVERIFY(panel.isExposed(QStringLiteral("labelNoService")));
}

void tst_StartUp::takesAnyNumberButANegativeOne_data()
{
    QTest::addColumn<qint64>("number");
    QTest::addColumn<bool>("startsADaemon");

    QTest::newRow("zero") << 0LL << false;
    QTest::newRow("negative") << -5LL << true;
}

void tst_StartUp::takesAnyNumberButANegativeOne()
{
    QFETCH(qint64, number);
    QFETCH(bool, startsADaemon);
    ShimFolder shims;
    shims.addPrinting(QStringLiteral("pgrep"), QByteArray::number(number) + " Corvane\n");
    // No executable beside it: what the property holds is the probe's doing.
    PanelProcess panel;

    QVERIFY(panel.start());

    QCOMPARE(panel.errorLines(), startsADaemon ? attemptLine(panel) : QStringList());
    QCOMPARE(panel.property(Application, PidProperty), QVariant(number));
}

void tst_StartUp::replacesANegativeNumber()
{
    ShimFolder shims;
    shims.addPrinting(QStringLiteral("pgrep"), "-5 Corvane\n");
    PanelProcess panel;
    panel.placeDaemon();

    QVERIFY(panel.start());

    QCOMPARE(panel.daemonPids().size(), 1);
    QCOMPARE(panel.property(Application, PidProperty), QVariant(panel.daemonPids().constFirst()));
}

void tst_StartUp::dressesTheApplicationAndTheWindow()
{
    PanelProcess panel;

    QVERIFY(panel.start());

    QCOMPARE(panel.property(Window, "maximized"), QVariant(false));
    // A log-out that the user cancels leaves it open.
    QCOMPARE(panel.application(QStringLiteral("closesOnLogOut")), QVariant(false));

    const auto font = panel.application(QStringLiteral("font")).value<QFont>();
    QFont expected;
    expected.setPointSize(FontPointSize);
    QCOMPARE(font.toString(), expected.toString());

    const QImage icon = panel.icon(QStringLiteral(":/client/resources/application.svg"));
    QVERIFY(!icon.isNull());
    QVERIFY(icon != panel.icon(QStringLiteral(":/client/resources/close.svg")));
    QCOMPARE(panel.property(Application, "windowIcon").value<QImage>(), icon);
    QCOMPARE(panel.property(Window, "windowIcon").value<QImage>(), icon);
}

void tst_StartUp::keepsItsFontSizeOnAnyDesktop()
{
    const QTemporaryDir configuration;
    writeFile(configuration.filePath(QStringLiteral("kdeglobals")),
              "[General]\nfont=Noto Sans CJK SC,15,-1,5,50,0,0,0,0,0\n");
    PanelProcess panel;
    panel.environment().insert(QStringLiteral("XDG_CONFIG_HOME"), configuration.path());
    panel.environment().insert(QStringLiteral("XDG_CURRENT_DESKTOP"), QStringLiteral("KDE"));
    panel.environment().insert(QStringLiteral("KDE_SESSION_VERSION"), QStringLiteral("5"));

    QVERIFY(panel.start());

    const auto font = panel.application(QStringLiteral("font")).value<QFont>();
    QCOMPARE(font.family(), QStringLiteral("Noto Sans CJK SC"));
    QCOMPARE(font.pointSize(), FontPointSize);
}

void tst_StartUp::handsTheArgumentsToTheApplication()
{
    PanelProcess panel;

    QVERIFY(panel.start({QStringLiteral("-reverse"), QStringLiteral("--help"),
                         QStringLiteral("--no-such-option"), QStringLiteral("file")}));

    QCOMPARE(panel.property(Application, "layoutDirection").toInt(),
             static_cast<int>(Qt::RightToLeft));
}

void tst_StartUp::opensWebAddressesWithTheOpener()
{
    ShimFolder shims;
    const QString seen = shims.path() + QStringLiteral("/seen");
    shims.add(QStringLiteral("xdg-open"),
              "{ /usr/bin/env -0; printf 'END=\\0'; } >> '" + QFile::encodeName(seen) + '\'');
    PanelProcess panel;
    setPrivateVariables(panel);
    QVERIFY(panel.start());

    // Text that Qt's own opener would hand on in another form.
    QList<QStringList> expected;
    for (const char *scheme : {"https", "http"}) {
        const QString address = scheme + QStringLiteral("://hall.example/统一服务");
        expected.append({address});
        QVERIFY(panel.openUrl(QUrl(address)));
        QTRY_COMPARE(shims.calls(QStringLiteral("xdg-open")), expected);
    }

    QTRY_COMPARE(readFile(seen).count("END="), 2);
    const QList<QByteArray> variables = readFile(seen).split('\0');
    QVERIFY(variables.contains("QT_QPA_PLATFORM=xcb"));
    for (const QString &name : PrivateVariables) {
        for (const QByteArray &variable : variables)
            QVERIFY2(!variable.startsWith(name.toLatin1() + '='), variable.constData());
    }
}

void tst_StartUp::unsetsItsUrlHandlersAtTheEnd()
{
    ShimFolder shims;
    shims.add(QStringLiteral("xdg-open"), "");
    PanelProcess panel;
    QVERIFY(panel.start());
    // Qt's own opener encodes the address; the panel's handler would hand it on as it reads.
    QStringList encoded;
    for (const char *scheme : {"http", "https"}) {
        const QUrl url(scheme + QStringLiteral("://hall.example/统一服务"));
        panel.openUrlAtTheEnd(url);
        encoded.append(QString::fromLatin1(url.toEncoded()));
    }

    QVERIFY(panel.invoke(Window, "close"));

    QCOMPARE(panel.waitForExit(), std::optional<int>(0));
    // The two openers run side by side.
    const auto opened = [&shims] {
        QStringList result;
        const QList<QStringList> calls = shims.calls(QStringLiteral("xdg-open"));
        for (const QStringList &call : calls)
            result.append(call);
        result.sort();
        return result;
    };
    QTRY_COMPARE(opened(), encoded);
    QCOMPARE(panel.errorLines(), attemptLine(panel));
}

void tst_StartUp::centresTheWindow()
{
    // Whatever the screen is: the test is registered with several.
    const QSize screen = QGuiApplication::primaryScreen()->size();
    PanelProcess panel;

    QVERIFY(panel.start());

    const QSize window = panel.property(Window, "size").toSize();
    QTRY_COMPARE(panel.property(Window, "pos"),
                 QVariant(QPoint((screen.width() - window.width()) / 2,
                                 (screen.height() - window.height()) / 2)));
}

//! Registered with a first screen that is too small and a second one that isn't.
void tst_StartUp::keepsTheWindowOnOneScreen()
{
    const QList<QScreen *> screens = QGuiApplication::screens();
    PanelProcess panel;

    QVERIFY(panel.start());

    const QRect window(panel.property(Window, "pos").toPoint(),
                       panel.property(Window, "size").toSize());
    QVERIFY(screens.last()->geometry().contains(window));
}

void tst_StartUp::endsWithStatusZeroAndLeavesTheDaemon()
{
    PanelProcess panel;
    panel.placeDaemon();
    QVERIFY(panel.start());
    QTRY_VERIFY(panel.hasDaemonRecord());
    const QList<qint64> pids = panel.daemonPids();
    QCOMPARE(pids.size(), 1);

    QTRY_VERIFY(panel.property(Window, "isActiveWindow").toBool());
    PanelProcess::pressKeys("alt+F4");

    QCOMPARE(panel.waitForExit(), std::optional<int>(0));
    QCOMPARE(panel.daemonPids(), pids);
    QCOMPARE(panel.errorLines(), attemptLine(panel));
}

QTEST_MAIN(tst_StartUp)
#include "tst_StartUp.moc"
