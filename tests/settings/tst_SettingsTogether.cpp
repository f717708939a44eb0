#include "settings/SettingsForm.h"

#include "tests/settings/SettingsHome.h"
#include "tests/support/files.h"
#include "tests/support/rounds.h"

#include <QElapsedTimer>
#include <QProcess>
#include <QtTest>

namespace {

constexpr int ShortChanges = 50;
constexpr int EndTimeoutMs = 600000;

//! A page in a process of its own that makes so many changes of one number, each when told to.
class Writer : public QProcess
{
public:
    Writer(const char *field, const char *key, int changes)
    {
        // Qt's offscreen platform never frees its screen, which a sanitizer would report.
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("ASAN_OPTIONS"), QStringLiteral("detect_leaks=0"));
        setProcessEnvironment(environment);
        start(QStringLiteral(PANEL_TEST_WRITER),
              {QLatin1String(field), QLatin1String(key), QString::number(changes),
               QStringLiteral("-platform"), QStringLiteral("offscreen")});
    }
    ~Writer() override
    {
        kill();
        waitForFinished();
    }

    void tellToChange(int times = 1) { write(QByteArray(times, '\n')); }

    //! Waits for the next change and returns its value.
    int nextValue()
    {
        while (!canReadLine()) {
            if (!waitForReadyRead())
                qFatal("the writer does not write");
        }
        return readLine().toInt();
    }

    bool endsWell()
    {
        return (state() == NotRunning || waitForFinished(EndTimeoutMs))
               && exitStatus() == NormalExit && exitCode() == EXIT_SUCCESS;
    }
};

QByteArray fileWith(int pull, int timeout)
{
    return "[log]\ndays=15\n\n[msg]\npullInterval=" + QByteArray::number(pull)
           + "\n\n[rpc]\ntimeout=" + QByteArray::number(timeout) + "\n\n[zz]\nother=x\n";
}

//! Waits until a file that is written now is seen to be younger than \a file.
void waitForTheClockOfFiles(const QString &file)
{
    const QTemporaryDir folder;
    const QDateTime time = QFileInfo(file).lastModified();
    const QString other = folder.filePath(QStringLiteral("other"));
    do {
        writeFile(other, "x");
    } while (QFileInfo(other).lastModified() <= time);
}

} // namespace

/*!
    Two panels that change different settings of one file.
*/
class tst_SettingsTogether : public QObject
{
    Q_OBJECT

private slots:
    void noChangeIsLost();
    void fileStaysWholeInARace();
};

void tst_SettingsTogether::noChangeIsLost()
{
    const int changes = roundsOr(ShortChanges);
    const SettingsHome home;
    home.write(fileWith(10, 30));
    Writer timeouts("spinRpcTimeout", "timeout", changes);
    Writer pulls("spinPullMessage", "pullInterval", changes);

    for (int change = 0; change < changes; ++change) {
        // Whether a file has changed since shows by its size and its time, in steps of some
        // milliseconds.
        waitForTheClockOfFiles(home.file());
        timeouts.tellToChange();
        const int timeout = timeouts.nextValue();
        waitForTheClockOfFiles(home.file());
        pulls.tellToChange();
        const int pull = pulls.nextValue();
        QCOMPARE(home.read(), fileWith(pull, timeout));
    }

    QVERIFY(timeouts.endsWell());
    QVERIFY(pulls.endsWell());
    QCOMPARE(timeouts.readAllStandardError() + pulls.readAllStandardError(), QByteArray());
    qInfo("two panels by turns, %d changes each, none lost", changes);
}

void tst_SettingsTogether::fileStaysWholeInARace()
{
    const int changes = roundsOr(ShortChanges);
    const SettingsHome home;
    home.write(fileWith(10, 30));
    QElapsedTimer timer;
    timer.start();
    Writer timeouts("spinRpcTimeout", "timeout", changes);
    Writer pulls("spinPullMessage", "pullInterval", changes);
    timeouts.tellToChange(changes);
    pulls.tellToChange(changes);

    const QRegularExpression whole(
            QLatin1Char('^')
            + QString::fromLatin1(fileWith(0, 0))
                      .replace(QLatin1String("=0\n"), QLatin1String("=\\d+\n"))
                      .replace(QLatin1Char('['), QLatin1String("\\["))
            + QLatin1Char('$'));
    int looks = 0;
    while (timeouts.state() != QProcess::NotRunning || pulls.state() != QProcess::NotRunning) {
        const QString content = QString::fromLatin1(home.read());
        QVERIFY2(whole.match(content).hasMatch(), qPrintable(content));
        ++looks;
        QCoreApplication::processEvents();
    }
    QVERIFY(timeouts.endsWell());
    QVERIFY(pulls.endsWell());
    QCOMPARE(home.entries(), QStringList(QStringLiteral("settings.ini")));
    const QByteArray lost = timeouts.readAllStandardError() + pulls.readAllStandardError();
    qInfo("two panels at once, %d changes each in %lld ms: whole in all of %d looks; %d changes "
          "overtaken within one step of the clock of files",
          changes, timer.elapsed(), looks, static_cast<int>(lost.count('\n')));
}

QTEST_GUILESS_MAIN(tst_SettingsTogether)
#include "tst_SettingsTogether.moc"
