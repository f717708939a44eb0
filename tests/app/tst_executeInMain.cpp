#include "app/executeInMain.h"
#include "tests/support/childProcesses.h"
#include "tests/support/files.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

namespace {

constexpr int Megabyte = 1024 * 1024;

QList<QVariant> runInShell(const QString &commandLine)
{
    return executeInMain(QStringLiteral("/bin/bash"), {QStringLiteral("-c"), commandLine});
}

} // namespace

class tst_executeInMain : public QObject
{
    Q_OBJECT

private slots:
    void yieldsOutputAndExitCode_data();
    void yieldsOutputAndExitCode();
    void holdsByteArrayAndInt();
    void handsArgumentsOnUnchanged();
    void yieldsNothingForWhatCantBeStarted_data();
    void yieldsNothingForWhatCantBeStarted();
    void leavesNoProcessBehind();
};

void tst_executeInMain::yieldsOutputAndExitCode_data()
{
    QTest::addColumn<QString>("commandLine");
    QTest::addColumn<QByteArray>("output");
    QTest::addColumn<int>("exitCode");

    QTest::newRow("silent success") << "true" << QByteArray() << 0;
    QTest::newRow("silent failure") << "exit 1" << QByteArray() << 1;
    QTest::newRow("output and failure") << "printf 'a b\\n'; exit 3" << QByteArray("a b\n") << 3;
    QTest::newRow("largest exit code") << "exit 255" << QByteArray() << 255;
    QTest::newRow("standard error left out")
            << "echo before; echo error >&2; echo after" << QByteArray("before\nafter\n") << 0;
    QTest::newRow("only standard error") << "echo error >&2; exit 2" << QByteArray() << 2;
    QTest::newRow("bytes that are no text")
            << R"(printf '\000\377\200\r\n\033')" << QByteArray("\0\xff\x80\r\n\x1b", 6) << 0;
    QTest::newRow("a megabyte") << "head -c 1048576 /dev/zero | tr '\\0' x"
                                << QByteArray(Megabyte, 'x') << 0;
    QTest::newRow("a megabyte of standard error")
            << "head -c 1048576 /dev/zero | tr '\\0' x >&2; echo done" << QByteArray("done\n") << 0;
    // Its standard input is at its end from the start.
    QTest::newRow("reads standard input") << "cat; echo end" << QByteArray("end\n") << 0;
    QTest::newRow("output that comes late") << "sleep 0.2; echo late" << QByteArray("late\n") << 0;
    QTest::newRow("killed: output so far, number of the signal")
            << "echo half; kill -KILL $$; echo never" << QByteArray("half\n") << 9;
    QTest::newRow("ended by a signal")
            << "printf half; kill -TERM $$; echo never" << QByteArray("half") << 15;
}

void tst_executeInMain::yieldsOutputAndExitCode()
{
    QFETCH(QString, commandLine);
    QFETCH(QByteArray, output);
    QFETCH(int, exitCode);

    const QList<QVariant> result = runInShell(commandLine);

    QCOMPARE(result.size(), 2);
    QCOMPARE(result.at(0).toByteArray(), output);
    QCOMPARE(result.at(1).toInt(), exitCode);
}

void tst_executeInMain::holdsByteArrayAndInt()
{
    const QList<QVariant> result = runInShell(QStringLiteral("true"));

    QCOMPARE(result.size(), 2);
    QCOMPARE(result.at(0).type(), QVariant::ByteArray);
    QCOMPARE(result.at(1).type(), QVariant::Int);
}

void tst_executeInMain::handsArgumentsOnUnchanged()
{
    const QList<QVariant> result =
            executeInMain(QStringLiteral("/usr/bin/printf"),
                          {QStringLiteral("<%s>"), QStringLiteral("a b"), QString(),
                           QStringLiteral("\"quoted\" $HOME"), QStringLiteral("朔川")});

    QCOMPARE(result.value(0).toByteArray(),
             QStringLiteral("<a b><><\"quoted\" $HOME><朔川>").toUtf8());
}

void tst_executeInMain::yieldsNothingForWhatCantBeStarted_data()
{
    QTest::addColumn<QString>("program");

    QTest::newRow("missing") << "no-such-program";
    QTest::newRow("not executable") << "plain-file";
    QTest::newRow("missing interpreter") << "lost-script";
    QTest::newRow("folder") << ".";
}

void tst_executeInMain::yieldsNothingForWhatCantBeStarted()
{
    QFETCH(QString, program);

    const QTemporaryDir folder;
    const QString script = folder.filePath(QStringLiteral("lost-script"));
    writeFile(folder.filePath(QStringLiteral("plain-file")), QByteArray());
    writeFile(script, "#!/no/such/interpreter\n");
    QVERIFY(QFile::setPermissions(script, QFile::ReadOwner | QFile::ExeOwner));

    QCOMPARE(executeInMain(folder.filePath(program), {}), QList<QVariant>());
    QCOMPARE(childProcesses(), QList<qint64>());
}

void tst_executeInMain::leavesNoProcessBehind()
{
    for (int i = 0; i < 10; ++i)
        runInShell(QStringLiteral("echo x"));
    QCOMPARE(childProcesses(), QList<qint64>());
}

QTEST_GUILESS_MAIN(tst_executeInMain)
#include "tst_executeInMain.moc"
