#include "app/daemon.h"
#include "app/executeInMain.h"
#include "tests/support/ShimFolder.h"
#include "tests/support/files.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QScopeGuard>
#include <QTemporaryDir>
#include <QTest>

#include <limits>

using OptionalPid = std::optional<qint64>;

Q_DECLARE_METATYPE(OptionalPid)
Q_DECLARE_METATYPE(Daemon::LaunchRule)

namespace {

constexpr qint64 Largest = std::numeric_limits<qint64>::max();
constexpr qint64 Smallest = std::numeric_limits<qint64>::min();

//! An executable of the daemon's name beside this program, for as long as the object lives.
class ExecutableOfDaemon
{
public:
    explicit ExecutableOfDaemon(const QByteArray &content)
    {
        writeFile(Daemon::executablePath(), content);
        if (!QFile::setPermissions(Daemon::executablePath(), QFile::ReadOwner | QFile::ExeOwner))
            qFatal("can't make the daemon executable");
    }
    ~ExecutableOfDaemon() { QFile::remove(Daemon::executablePath()); }
    Q_DISABLE_COPY_MOVE(ExecutableOfDaemon)
};

} // namespace

class tst_daemon : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void runsCommandsInBash();
    void probesByName();
    void probeTellsTheDaemonFromItsNeighbours_data();
    void probeTellsTheDaemonFromItsNeighbours();
    void asksForTheFiguresOfAProcess();
    void addsTheSuffixOfEachFigure();
    void readsTheFigures_data();
    void readsTheFigures();
    void readsTheAnswerOfTheProbe_data();
    void readsTheAnswerOfTheProbe();
    void readsNothingOutOfAnEmptyResult();
    void looksForTheExecutableBesideTheProgram();
    void doesNotStartWhatIsMissing_data();
    void doesNotStartWhatIsMissing();
    void doesNotStartWhatIsNoProgram();
    void doesNotStartAFolder();
    void startsWhatIsThere_data();
    void startsWhatIsThere();
};

void tst_daemon::init()
{
    // What a run that was cut short may have left.
    QFile::remove(Daemon::executablePath());
}

void tst_daemon::runsCommandsInBash()
{
    QCOMPARE(Daemon::shell(), QStringLiteral("/bin/bash"));
    QCOMPARE(Daemon::shellArguments(QStringLiteral("a b | c")),
             QStringList({QStringLiteral("-c"), QStringLiteral("a b | c")}));
}

void tst_daemon::probesByName()
{
    QCOMPARE(Daemon::probeCommand(),
             QStringLiteral("pgrep -lf Corvane | grep -w Corvane | awk '{print $1}'"));
}

void tst_daemon::probeTellsTheDaemonFromItsNeighbours_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<bool>("isFound");

    const auto row = [](const char *name, bool isFound) {
        QTest::newRow(name) << QByteArray(name) << isFound;
    };
    row("Corvane", true);
    row("corvane", false);
    row("CORVANE", false);
    row("CorvaneX", false);
    row("XCorvane", false);
    row("Corvane2", false);
    row("Corvane_x", false);
    row("Corvan", false);
    row("corvane-panel", false);
    // A whole word is all that counts, and a word ends at a hyphen, dot or blank.
    row("Corvane-x", true);
    row("x-Corvane", true);
    row("Corvane.bin", true);
    row("Corvane x", true);
}

void tst_daemon::probeTellsTheDaemonFromItsNeighbours()
{
    QFETCH(QByteArray, name);
    QFETCH(bool, isFound);
    ShimFolder shims;
    shims.addPrinting(QStringLiteral("pgrep"), "1234 " + name + '\n');

    const QList<QVariant> result =
            executeInMain(Daemon::shell(), Daemon::shellArguments(Daemon::probeCommand()));

    QCOMPARE(Daemon::outputText(result), isFound ? QStringLiteral("1234\n") : QString());
    QCOMPARE(Daemon::daemonFound(result), isFound);
}

void tst_daemon::asksForTheFiguresOfAProcess()
{
    const QString command = Daemon::detailCommand(1234);
    QCOMPARE(command,
             QStringLiteral("ps -o comm,pid,user,etime,%cpu,%mem -p 1234 | grep -w Corvane"));
    for (const qint64 pid : {0LL, -1LL, 12LL, qlonglong(Largest)}) {
        QString expected = command;
        expected.replace(QStringLiteral("1234"), QString::number(pid));
        QCOMPARE(Daemon::detailCommand(pid), expected);
    }
}

void tst_daemon::addsTheSuffixOfEachFigure()
{
    const QStringList texts = Daemon::figureTexts(
            QStringLiteral("Corvane            1234 alice       01:02:03  0.5  1.2\n"));
    QCOMPARE(texts.join(QLatin1Char('|')), QStringLiteral("Corvane|1234|alice|01:02:03|0.5%|1.2%"));
    QCOMPARE(texts.size(), int(Daemon::Figures.size()));
}

void tst_daemon::readsTheFigures_data()
{
    QTest::addColumn<QString>("detail");
    QTest::addColumn<QString>("texts");

    // "{n}" is the suffix of the figure in place n, empty after the last.
    QTest::newRow("several days") << "Corvane 77 bob 5-00:00:01 99.9 0.0\n"
                                  << "Corvane{0}|77{1}|bob{2}|5-00:00:01{3}|99.9{4}|0.0{5}";
    QTest::newRow("blanks at both ends") << "  Corvane 1 a b c d  \n"
                                         << "Corvane{0}|1{1}|a{2}|b{3}|c{4}|d{5}";
    QTest::newRow("too few") << "Corvane 55 alice 01:02:03 0.5\n"
                             << "Corvane{0}|55{1}|alice{2}|01:02:03{3}|0.5{4}";
    QTest::newRow("too many") << "Corvane 56 alice 01:02:03 0.5 1.2 x y\n"
                              << "Corvane{0}|56{1}|alice{2}|01:02:03{3}|0.5{4}|1.2{5}|x{6}|y{7}";
    // The line feed stays in the middle of a value.
    QTest::newRow("two lines")
            << "Corvane 57 a b c d\nCorvane 58 e f g h\n"
            << "Corvane{0}|57{1}|a{2}|b{3}|c{4}|d\nCorvane{5}|58{6}|e{7}|f{8}|g{9}|h{10}";
    QTest::newRow("tabs separate nothing") << "Corvane\t58 alice 01:02:03 0.5 1.2\n"
                                           << "Corvane\t58{0}|alice{1}|01:02:03{2}|0.5{3}|1.2{4}";
    QTest::newRow("tabs count as part of a value") << "Corvane 59 a\tb c 0.5 1.2\n"
                                                   << "Corvane{0}|59{1}|a\tb{2}|c{3}|0.5{4}|1.2{5}";
    // The line feed that stands for a value is skipped, and still counts for the place.
    QTest::newRow("a value of white space") << "Corvane 60 \n a b 0.5 Corvane\n"
                                            << "Corvane{0}|60{1}|a{3}|b{4}|0.5{5}|Corvane{6}";
    QTest::newRow("white space around values") << "\tCorvane\t 61\r a\v b\f \tc \r1.2\r\n"
                                               << "Corvane{0}|61{1}|a{2}|b{3}|c{4}|1.2{5}";
    QTest::newRow("decimal commas and text that isn't ASCII")
            << "Corvane 62 王小明 01:02 0,5 1,2\n"
            << "Corvane{0}|62{1}|王小明{2}|01:02{3}|0,5{4}|1,2{5}";
    QTest::newRow("nothing") << ""
                             << "";
    QTest::newRow("only white space") << " \n "
                                      << "";
}

void tst_daemon::readsTheFigures()
{
    QFETCH(const QString, detail);
    QFETCH(QString, texts);
    for (int place = 0; place <= 10; ++place) {
        const bool isFigure = place < int(Daemon::Figures.size());
        texts.replace(QStringLiteral("{%1}").arg(place),
                      QString::fromUtf8(isFigure ? Daemon::Figures[size_t(place)].suffix : ""));
    }
    QCOMPARE(Daemon::figureTexts(detail).join(QLatin1Char('|')), texts);
}

void tst_daemon::readsTheAnswerOfTheProbe_data()
{
    QTest::addColumn<QByteArray>("output");
    QTest::addColumn<int>("exitCode");
    QTest::addColumn<bool>("daemonFound");
    QTest::addColumn<qint64>("pidOrZero");
    QTest::addColumn<OptionalPid>("singlePid");

    const auto row = [](const char *name, const QByteArray &output, int exitCode, bool daemonFound,
                        qint64 pidOrZero, OptionalPid singlePid) {
        QTest::newRow(name) << output << exitCode << daemonFound << pidOrZero << singlePid;
    };

    row("one line", "1234\n", 0, true, 1234, 1234);
    row("no new-line", "1234", 0, true, 1234, 1234);
    row("white space around it", " \t1234 \r\n\n", 0, true, 1234, 1234);
    row("leading zeros", "0012\n", 0, true, 12, 12);
    row("sign", "+12\n", 0, true, 12, 12);
    row("zero", "0\n", 0, true, 0, 0);
    row("negative", "-5\n", 0, true, -5, -5);
    row("wider than 32 bits", "4294967297\n", 0, true, 4294967297, 4294967297);
    row("largest", "9223372036854775807\n", 0, true, Largest, Largest);
    row("smallest", "-9223372036854775808\n", 0, true, Smallest, Smallest);
    row("too large", "9223372036854775808\n", 0, true, 0, std::nullopt);
    row("two lines", "12\n34\n", 0, true, 0, std::nullopt);
    row("two on a line", "12 34\n", 0, true, 0, std::nullopt);
    row("a word", "Corvane\n", 0, true, 0, std::nullopt);
    row("number and word", "12 Corvane\n", 0, true, 0, std::nullopt);
    row("hexadecimal", "0x12\n", 0, true, 0, std::nullopt);
    row("fraction", "12.0\n", 0, true, 0, std::nullopt);
    row("grouped", "1,234\n", 0, true, 0, std::nullopt);
    row("only white space", " \n", 0, true, 0, std::nullopt);
    row("bytes that are no text", "\xff\xfe\n", 0, true, 0, std::nullopt);
    row("nothing", "", 0, false, 0, std::nullopt);
    row("nothing, failed", "", 1, false, 0, std::nullopt);
    // The number is still there for those who don't ask whether it counts.
    row("number, failed", "1234\n", 1, false, 1234, std::nullopt);
    row("number, killed", "1234\n", 9, false, 1234, std::nullopt);
    row("number, negative exit code", "1234\n", -1, false, 1234, std::nullopt);
}

void tst_daemon::readsTheAnswerOfTheProbe()
{
    QFETCH(QByteArray, output);
    QFETCH(int, exitCode);
    QFETCH(OptionalPid, singlePid);
    const QList<QVariant> result = {output, exitCode};

    QCOMPARE(Daemon::outputText(result), QString::fromUtf8(output));
    QTEST(Daemon::daemonFound(result), "daemonFound");
    QTEST(Daemon::pidOrZero(result), "pidOrZero");
    QVERIFY(Daemon::singlePid(result) == singlePid);
}

void tst_daemon::readsNothingOutOfAnEmptyResult()
{
    QCOMPARE(Daemon::outputText({}), QString());
    QVERIFY(!Daemon::daemonFound({}));
    QCOMPARE(Daemon::pidOrZero({}), 0LL);
    QVERIFY(!Daemon::singlePid({}));
    QCOMPARE(Daemon::UnknownPid, -1LL);
}

void tst_daemon::looksForTheExecutableBesideTheProgram()
{
    QCOMPARE(Daemon::executablePath(), QCoreApplication::applicationDirPath() + "/Corvane");
}

void tst_daemon::doesNotStartWhatIsMissing_data()
{
    QTest::addColumn<Daemon::LaunchRule>("rule");

    QTest::newRow("no attempt") << Daemon::LaunchRule::IfExecutableExists;
    QTest::newRow("attempt refused") << Daemon::LaunchRule::Always;
}

void tst_daemon::doesNotStartWhatIsMissing()
{
    QFETCH(Daemon::LaunchRule, rule);
    QVERIFY(!QFile::exists(Daemon::executablePath()));

    QTest::ignoreMessage(QtInfoMsg, qPrintable("file: \"" + Daemon::executablePath() + '"'));
    QVERIFY(!Daemon::launch(rule));
}

void tst_daemon::doesNotStartWhatIsNoProgram()
{
    const ExecutableOfDaemon noProgram("\x7f"
                                       "ELF but no more");

    QTest::ignoreMessage(QtInfoMsg, qPrintable("file: \"" + Daemon::executablePath() + '"'));
    QVERIFY(!Daemon::launch(Daemon::LaunchRule::IfExecutableExists));
}

void tst_daemon::doesNotStartAFolder()
{
    QVERIFY(QDir().mkdir(Daemon::executablePath()));
    const auto cleanUp = qScopeGuard([] { QDir().rmdir(Daemon::executablePath()); });

    QTest::ignoreMessage(QtInfoMsg, qPrintable("file: \"" + Daemon::executablePath() + '"'));
    QVERIFY(!Daemon::launch(Daemon::LaunchRule::IfExecutableExists));
}

void tst_daemon::startsWhatIsThere_data()
{
    QTest::addColumn<Daemon::LaunchRule>("rule");

    QTest::newRow("if it exists") << Daemon::LaunchRule::IfExecutableExists;
    QTest::newRow("always") << Daemon::LaunchRule::Always;
}

void tst_daemon::startsWhatIsThere()
{
    QFETCH(Daemon::LaunchRule, rule);
    const QTemporaryDir folder;
    const QString record = folder.filePath(QStringLiteral("record"));
    const ExecutableOfDaemon script("#!/bin/sh\n"
                                    "printf '%s\\n' $$ \"$(pwd -P)\" \"$@\" >'"
                                    + QFile::encodeName(record) + ".new'\nmv '"
                                    + QFile::encodeName(record) + ".new' '"
                                    + QFile::encodeName(record) + "'\n");

    QTest::ignoreMessage(QtInfoMsg, qPrintable("file: \"" + Daemon::executablePath() + '"'));
    const OptionalPid pid = Daemon::launch(rule);

    QVERIFY(pid);
    QTRY_VERIFY(QFile::exists(record));
    const QString here = QFileInfo(QCoreApplication::applicationDirPath()).canonicalFilePath();
    QCOMPARE(QString::fromLocal8Bit(readFile(record)),
             QStringLiteral("%1\n%2\nquickboot\n").arg(*pid).arg(here));
}

QTEST_GUILESS_MAIN(tst_daemon)
#include "tst_daemon.moc"
