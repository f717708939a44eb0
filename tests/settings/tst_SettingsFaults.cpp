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
#include <QTest>

#include <csignal>
#include <memory>

#include <sys/stat.h>

namespace {

//! Well below what Qt waits for a lock whose owner it can't tell.
constexpr int QuickMs = 10000;
//! More than the lock file of the settings takes.
constexpr rlim_t LockBytes = 1000;

//! Dates \a path \a ms milliseconds back.
void age(const QString &path, int ms)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadWrite)
        || !file.setFileTime(QDateTime::currentDateTime().addMSecs(-ms),
                             QFileDevice::FileModificationTime))
        qFatal("can't date %s", qPrintable(path));
}

void change(const SettingsForm &page)
{
    changeNumber(page, "spinUpload", 7);
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
    void diskFull();
    void abandonedLockIsRemoved();
    void signedLockIsLeftAlone_data();
    void signedLockIsLeftAlone();
    void youngLockIsLeftAlone();

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
    if (::chmod(QFile::encodeName(path).constData(), mode) != 0)
        qFatal("can't change the mode of %s", qPrintable(path));
    m_changed.append(path);
}

void tst_SettingsFaults::permissions_data()
{
    QTest::addColumn<uint>("folderMode");
    QTest::addColumn<uint>("fileMode");
    QTest::addColumn<bool>("readable");

    QTest::newRow("unreadable file") << 0700U << 0200U << false;
    QTest::newRow("read-only file") << 0700U << 0400U << true;
    QTest::newRow("read-only folder") << 0500U << 0600U << true;
    QTest::newRow("folder that can't be entered") << 0600U << 0600U << false;
}

void tst_SettingsFaults::permissions()
{
    QFETCH(uint, folderMode);
    QFETCH(uint, fileMode);
    QFETCH(bool, readable);

    // 20 days are written back while the file is loaded: the first write that may fail.
    const QByteArray content = "[log]\ndays=20\n";
    m_home->write(content);
    chmod(m_home->path(), 0700);
    chmod(m_home->file(), fileMode);
    chmod(m_home->folder(), folderMode);
    const QStringList expected =
            readable ? defaultsBut("spinLogDays", QStringLiteral("20")) : defaults();
    {
        const OrdinaryUser user;
        const SettingsForm page;
        QCOMPARE(shown(page), expected);
        change(page);
        QCOMPARE(shown(page), replaced(expected, "spinUpload", QStringLiteral("7")));
    }
    ::chmod(QFile::encodeName(m_home->folder()).constData(), 0700);
    ::chmod(QFile::encodeName(m_home->file()).constData(), 0600);
    QCOMPARE(m_home->read(), content);
    QCOMPARE(m_home->entries(), QStringLiteral("settings.ini"));
}

void tst_SettingsFaults::unwritableConfigurationFolder()
{
    const QStringList initial = defaults();
    chmod(m_home->path(), 0500);
    {
        const OrdinaryUser user;
        const SettingsForm page;
        QCOMPARE(shown(page), initial);
        change(page);
        QCOMPARE(shown(page), defaultsBut("spinUpload", QStringLiteral("7")));
    }
    QVERIFY(!QFileInfo::exists(m_home->folder()));
}

void tst_SettingsFaults::unusablePlaces_data()
{
    QTest::addColumn<bool>("fileAsFolder");

    QTest::newRow("file in the place of the folder") << true;
    QTest::newRow("folder in the place of the file") << false;
}

void tst_SettingsFaults::unusablePlaces()
{
    QFETCH(const bool, fileAsFolder);
    if (fileAsFolder)
        writeFile(m_home->folder(), "content");
    else
        QVERIFY(QDir().mkpath(m_home->file()));
    {
        const SettingsForm page;
        QCOMPARE(shown(page), defaults());
        change(page);
        QCOMPARE(shown(page), defaultsBut("spinUpload", QStringLiteral("7")));
    }
    if (fileAsFolder)
        QCOMPARE(readFile(m_home->folder()), QByteArray("content"));
    else
        QVERIFY(QFileInfo(m_home->file()).isDir());
}

void tst_SettingsFaults::diskFull()
{
    const QByteArray others = "\n[zz]\nother=" + QByteArray(2 * int(LockBytes), 'x') + '\n';
    m_home->write("[msg]\nuploadInterval=3\n" + others);
    const SettingsForm page;
    {
        // Writing fails then as on a full disk.
        const auto handler = signal(SIGXFSZ, SIG_IGN);
        const ResourceLimit disk(RLIMIT_FSIZE, LockBytes);
        change(page);
        signal(SIGXFSZ, handler);
    }
    QCOMPARE(shown(page), defaultsBut("spinUpload", QStringLiteral("7")));

    // With space again, the next change takes along what could not be written.
    changeNumber(page, "spinThreadNums", 8);
    QCOMPARE(m_home->read(), "[msg]\nuploadInterval=7\n\n[rpc]\nthreads=8\n" + others);
}

//! What a panel leaves that was killed between creating and signing its lock holds nobody up.
void tst_SettingsFaults::abandonedLockIsRemoved()
{
    m_home->write("");
    const QString lock = m_home->file() + QStringLiteral(".lock");
    writeFile(lock, "");
    age(lock, 2000);

    QElapsedTimer clock;
    clock.start();
    const SettingsForm page;
    QVERIFY(!QFileInfo::exists(lock));
    change(page);
    QCOMPARE(m_home->read(), QByteArray("[msg]\nuploadInterval=7\n"));
    QVERIFY2(clock.elapsed() < QuickMs, qPrintable(QString::number(clock.elapsed())));
}

void tst_SettingsFaults::signedLockIsLeftAlone_data()
{
    QTest::addColumn<QByteArray>("content");

    QTest::newRow("signed") << QByteArray("1\nprogram\nhost\n");
    QTest::newRow("partly signed") << QByteArray("1");
}

//! Whether it is stale is for QSettings to tell.
void tst_SettingsFaults::signedLockIsLeftAlone()
{
    QFETCH(QByteArray, content);
    m_home->write("");
    const QString lock = m_home->file() + QStringLiteral(".lock");
    writeFile(lock, content);
    age(lock, 5000);

    const SettingsForm page;

    QCOMPARE(readFile(lock), content);
}

//! Its owner may be about to sign it.
void tst_SettingsFaults::youngLockIsLeftAlone()
{
    constexpr int AgeMs = 500;
    constexpr int YoungMs = 1000;
    m_home->write("");
    const QString lock = m_home->file() + QStringLiteral(".lock");

    bool isLeft = false;
    QElapsedTimer clock;
    do {
        // On a slow machine it may have grown too old before the page looked at it.
        clock.start();
        writeFile(lock, "");
        age(lock, AgeMs);
        const SettingsForm page;
        isLeft = QFile::exists(lock);
    } while (!isLeft && AgeMs + clock.elapsed() >= YoungMs);
    QVERIFY(isLeft);
}

QTEST_MAIN(tst_SettingsFaults)
#include "tst_SettingsFaults.moc"
