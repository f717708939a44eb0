#include "settings/SettingsForm.h"

#include "tests/settings/SettingsHome.h"
#include "tests/support/OrdinaryUser.h"
#include "tests/support/ResourceLimit.h"
#include "tests/support/files.h"

#include <QApplication>
#include <QDateTime>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QProcessEnvironment>
#include <QSettings>
#include <QTest>

#include <csignal>
#include <memory>

#include <sys/stat.h>

namespace {

constexpr const char *Old = "[log]\ndays=5\n\n[rpc]\ntimeout=30\n";
constexpr const char *Changed = "[log]\ndays=5\n\n[msg]\nuploadInterval=7\n\n[rpc]\ntimeout=30\n";
constexpr const char *UploadField = "spinUpload";
constexpr int OtherUpload = 7;
//! Well below what Qt waits for a lock whose owner it can't tell.
constexpr int QuickMs = 10000;

//! More than the lock file of the settings takes, and less than the settings with this behind them.
constexpr rlim_t LockBytes = 1000;
const QByteArray Ballast = "\n[zz]\nother=" + QByteArray(2 * int(LockBytes), 'x') + '\n';

//! A settings page in another process that sets \a field to \a value; returns how it ended.
QProcess::ExitStatus writeElsewhere(const char *field, int value, const QString &bytes = {})
{
    QProcess writer;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    // Qt's offscreen platform never frees its screen.
    environment.insert(QStringLiteral("ASAN_OPTIONS"), QStringLiteral("detect_leaks=0"));
    writer.setProcessEnvironment(environment);
    writer.start(QStringLiteral(PANEL_TEST_WRITER),
                 QStringList {QStringLiteral("-platform"), QStringLiteral("offscreen"),
                              QLatin1String(field), QString::number(value)}
                         + (bytes.isEmpty() ? QStringList() : QStringList(bytes)));
    if (!writer.waitForFinished())
        qFatal("the writer doesn't end");
    return writer.exitStatus();
}

//! Dates \a path \a seconds back.
void age(const QString &path, int seconds)
{
    QFile file(path);
    QVERIFY(file.open(QIODevice::ReadWrite));
    QVERIFY(file.setFileTime(QDateTime::currentDateTime().addSecs(-seconds),
                             QFileDevice::FileModificationTime));
}

void change(const SettingsForm &page)
{
    changeNumber(page, UploadField, OtherUpload);
}

QSettings::Status status(const SettingsForm &page)
{
    return page.findChild<QSettings *>()->status();
}

} // namespace

class tst_SettingsFaults : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void permissions_data();
    void permissions();
    void unwritableConfigurationFolder();
    void unusablePlaces_data();
    void unusablePlaces();
    void malformedFileTakesChanges();
    void fileRemovedMeanwhile();
    void diskFull_data();
    void diskFull();
    void writerKilled_data();
    void writerKilled();
    void lockOfAnotherIsLeftAlone();
    void twoWriters();

private:
    void chmod(const QString &path, mode_t mode);

    std::unique_ptr<SettingsHome> m_home;
    QStringList m_changed;
};

void tst_SettingsFaults::init()
{
    m_home = std::make_unique<SettingsHome>();
}

void tst_SettingsFaults::cleanup()
{
    for (const QString &path : qAsConst(m_changed))
        ::chmod(QFile::encodeName(path).constData(), S_IRWXU);
    m_changed.clear();
    m_home.reset();
    QVERIFY(!QApplication::activeModalWidget());
}

void tst_SettingsFaults::chmod(const QString &path, mode_t mode)
{
    OrdinaryUser::give(QFile::encodeName(path).constData());
    QCOMPARE(::chmod(QFile::encodeName(path).constData(), mode), 0);
    m_changed.append(path);
}

void tst_SettingsFaults::permissions_data()
{
    QTest::addColumn<uint>("folderMode");
    QTest::addColumn<uint>("fileMode");
    QTest::addColumn<bool>("readable");
    QTest::addColumn<bool>("writable");

    QTest::newRow("all allowed") << 0700U << 0600U << true << true;
    QTest::newRow("unreadable file") << 0700U << 0200U << false << false;
    QTest::newRow("file without any permission") << 0700U << 0000U << false << false;
    QTest::newRow("read-only file") << 0700U << 0400U << true << false;
    QTest::newRow("read-only folder") << 0500U << 0600U << true << false;
    QTest::newRow("read-only folder and file") << 0500U << 0400U << true << false;
    QTest::newRow("folder that can't be entered") << 0600U << 0600U << false << false;
}

void tst_SettingsFaults::permissions()
{
    QFETCH(uint, folderMode);
    QFETCH(uint, fileMode);
    QFETCH(bool, readable);
    QFETCH(bool, writable);

    // 20 days are written back while the file is loaded: the first write that may fail.
    const QByteArray content = "[log]\ndays=20\n";
    m_home->write(content);
    const QByteArray before = m_home->state();
    chmod(m_home->path(), 0700);
    chmod(m_home->file(), fileMode);
    chmod(m_home->folder(), folderMode);
    {
        const OrdinaryUser user;
        const SettingsForm page;
        const QString days = QStringLiteral("20");
        QCOMPARE(shown(page), readable ? defaultsBut(LogDays, days) : defaults());
        change(page);
        QStringList expected = readable ? defaultsBut(LogDays, days) : defaults();
        expected[MsgUpload] = QStringLiteral("7");
        QCOMPARE(shown(page), expected);
        QCOMPARE(status(page), writable ? QSettings::NoError : QSettings::AccessError);
    }
    ::chmod(QFile::encodeName(m_home->folder()).constData(), 0700);
    ::chmod(QFile::encodeName(m_home->file()).constData(), 0600);
    QCOMPARE(m_home->read(), writable ? content + "\n[msg]\nuploadInterval=7\n" : content);
    QCOMPARE(m_home->state() == before, !writable);
    QCOMPARE(m_home->entries(), QStringList(QStringLiteral("settings.ini")));
}

void tst_SettingsFaults::unwritableConfigurationFolder()
{
    chmod(m_home->path(), 0500);
    {
        const OrdinaryUser user;
        const SettingsForm page;
        QCOMPARE(shown(page), defaults());
        change(page);
        QCOMPARE(shown(page), defaultsBut(MsgUpload, QStringLiteral("7")));
    }
    QVERIFY(!QFileInfo::exists(m_home->folder()));
}

void tst_SettingsFaults::unusablePlaces_data()
{
    QTest::addColumn<bool>("fileAsFolder");
    QTest::addColumn<bool>("folderAsFile");

    QTest::newRow("file in the place of the folder") << true << false;
    QTest::newRow("folder in the place of the file") << false << true;
    QTest::newRow("link to itself in the place of the file") << false << false;
}

void tst_SettingsFaults::unusablePlaces()
{
    QFETCH(bool, fileAsFolder);
    QFETCH(bool, folderAsFile);
    if (fileAsFolder) {
        writeFile(m_home->folder(), Old);
    } else if (folderAsFile) {
        QVERIFY(QDir().mkpath(m_home->file()));
    } else {
        QVERIFY(QDir().mkpath(m_home->folder()));
        QVERIFY(QFile::link(m_home->file(), m_home->file()));
    }
    {
        const SettingsForm page;
        QCOMPARE(shown(page), defaults());
        change(page);
        QCOMPARE(shown(page), defaultsBut(MsgUpload, QStringLiteral("7")));
    }
    if (fileAsFolder)
        QCOMPARE(readFile(m_home->folder()), QByteArray(Old));
    else
        QCOMPARE(QFileInfo(m_home->file()).isDir(), folderAsFile);
}

void tst_SettingsFaults::malformedFileTakesChanges()
{
    m_home->write("[log\ndays=20\n[rpc]\ntimeout=30\n");
    const SettingsForm page;
    QCOMPARE(status(page), QSettings::FormatError);
    QCOMPARE(shown(page), defaults());
    change(page);
    QCOMPARE(m_home->read(), QByteArray(Changed).replace("days=5", "days=20"));
}

void tst_SettingsFaults::fileRemovedMeanwhile()
{
    m_home->write(Old);
    const SettingsForm page;
    QVERIFY(QDir(m_home->folder()).removeRecursively());
    change(page);
    QCOMPARE(m_home->read(), QByteArray("[msg]\nuploadInterval=7\n"));
}

void tst_SettingsFaults::diskFull_data()
{
    QTest::addColumn<uint>("bytes");

    QTest::newRow("not even for the lock") << 0U;
    QTest::newRow("but for the lock") << uint(LockBytes);
}

void tst_SettingsFaults::diskFull()
{
    QFETCH(uint, bytes);
    const QByteArray old = "[msg]\nuploadInterval=3\n" + Ballast;
    m_home->write(old);
    const SettingsForm page;
    {
        // Writing fails then as on a full disk.
        const auto handler = signal(SIGXFSZ, SIG_IGN);
        const ResourceLimit disk(RLIMIT_FSIZE, bytes);
        change(page);
        signal(SIGXFSZ, handler);
    }
    QCOMPARE(shown(page), defaultsBut(MsgUpload, QStringLiteral("7")));

    // With room again, the next change takes along what could not be written.
    changeNumber(page, "spinThreadNums", 8);
    QCOMPARE(m_home->read(), "[msg]\nuploadInterval=7\n\n[rpc]\nthreads=8\n" + Ballast);
    QCOMPARE(m_home->entries(), QStringList(QStringLiteral("settings.ini")));
}

void tst_SettingsFaults::writerKilled_data()
{
    QTest::addColumn<uint>("bytes");
    QTest::addColumn<bool>("isSigned");

    QTest::newRow("before it signs its lock") << 0U << false;
    QTest::newRow("while it writes the file") << uint(LockBytes) << true;
}

void tst_SettingsFaults::writerKilled()
{
    QFETCH(uint, bytes);
    QFETCH(bool, isSigned);
    m_home->write(Old + Ballast);
    QCOMPARE(writeElsewhere(UploadField, 29, QString::number(bytes)), QProcess::CrashExit);
    QCOMPARE(m_home->read(), Old + Ballast);
    const QString lock = m_home->file() + QStringLiteral(".lock");
    QVERIFY(QFileInfo::exists(lock));
    QCOMPARE(QFileInfo(lock).size() > 0, isSigned);
    age(lock, 2);

    // What it has left holds nobody up.
    QElapsedTimer clock;
    clock.start();
    const SettingsForm page;
    QCOMPARE(QFileInfo::exists(lock), isSigned);
    change(page);
    QCOMPARE(m_home->read(), Changed + Ballast);
    QVERIFY2(clock.elapsed() < QuickMs, qPrintable(QString::number(clock.elapsed())));
}

void tst_SettingsFaults::lockOfAnotherIsLeftAlone()
{
    m_home->write(Old);
    const QString lock = m_home->file() + QStringLiteral(".lock");
    const auto loads = [&](const QByteArray &content, int seconds) {
        writeFile(lock, content);
        age(lock, seconds);
        const SettingsForm page;
        QVERIFY(QFile::exists(lock));
        QCOMPARE(readFile(lock), content);
    };

    // Its owner may be about to sign it.
    loads(QByteArray(""), 0);
    // Signed: whether it is stale is for QSettings to tell.
    loads(QByteArray("1\nprogram\nhost\n"), 5);
    loads(QByteArray("1"), 5);
}

void tst_SettingsFaults::twoWriters()
{
    m_home->write("[zz]\nother=x\n");
    const SettingsForm page;
    const auto content = [](const QByteArray &pull, const QByteArray &timeout) {
        return "[msg]\npullInterval=" + pull + "\n\n[rpc]\ntimeout=" + timeout
               + "\n\n[zz]\nother=x\n";
    };

    // Each adds its own key to what the other has written last.
    changeNumber(page, "spinRpcTimeout", 45);
    QCOMPARE(writeElsewhere("spinPullMessage", 9), QProcess::NormalExit);
    QCOMPARE(m_home->read(), content("9", "45"));
    changeNumber(page, "spinRpcTimeout", 46);
    QCOMPARE(m_home->read(), content("9", "46"));
    // Another length: by that alone QSettings sees that the file has changed.
    QCOMPARE(writeElsewhere("spinPullMessage", 11), QProcess::NormalExit);
    changeNumber(page, "spinRpcTimeout", 47);
    QCOMPARE(m_home->read(), content("11", "47"));
}

QTEST_MAIN(tst_SettingsFaults)
#include "tst_SettingsFaults.moc"
