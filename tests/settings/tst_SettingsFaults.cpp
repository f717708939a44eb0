#include "settings/SettingsForm.h"

#include "tests/settings/SettingsHome.h"
#include "tests/support/OrdinaryUser.h"
#include "tests/support/files.h"

#include <QApplication>
#include <QDateTime>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QSettings>
#include <QSpinBox>
#include <QtTest>

#include <memory>

#include <sys/stat.h>

namespace {

constexpr const char *Old = "[log]\ndays=5\n\n[rpc]\ntimeout=30\n";
constexpr const char *Changed = "[log]\ndays=5\n\n[msg]\nuploadInterval=7\n\n[rpc]\ntimeout=30\n";
constexpr int OtherUpload = 7;
constexpr int OtherThreads = 8;

//! Changes one setting and lets it be written.
void change(const SettingsForm &page)
{
    page.findChild<QSpinBox *>(QStringLiteral("spinUpload"))->setValue(OtherUpload);
    QCoreApplication::processEvents();
}

QSettings::Status status(const SettingsForm &page)
{
    const auto *settings = page.findChild<QSettings *>();
    return settings ? settings->status() : QSettings::NoError;
}

bool isLink(const QString &path)
{
    return QFileInfo(path).isSymLink();
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
    void changesWaitUntilTheFileIsReadable();
    void unwritableConfigurationFolder();
    void fileInPlaceOfTheFolder();
    void folderInPlaceOfTheFile();
    void linkToAFileElsewhere();
    void linkToTheFolderElsewhere();
    void danglingLink();
    void linkInACircle();
    void malformedFileTakesChanges();
    void fileRemovedMeanwhile();
    void abandonedLock();
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

void tst_SettingsFaults::changesWaitUntilTheFileIsReadable()
{
    m_home->write(Old);
    chmod(m_home->path(), 0700);
    chmod(m_home->folder(), 0700);
    chmod(m_home->file(), 0000);
    const OrdinaryUser user;
    const SettingsForm page;
    change(page);
    QCOMPARE(::chmod(QFile::encodeName(m_home->file()).constData(), 0600), 0);
    QCOMPARE(m_home->read(), QByteArray(Old));

    page.findChild<QSpinBox *>(QStringLiteral("spinThreadNums"))->setValue(OtherThreads);
    QCoreApplication::processEvents();
    QCOMPARE(m_home->read(), QByteArray("[log]\ndays=5\n\n[msg]\nuploadInterval=7\n\n[rpc]\n"
                                        "threads=8\ntimeout=30\n"));
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

void tst_SettingsFaults::fileInPlaceOfTheFolder()
{
    writeFile(m_home->folder(), Old);
    {
        const SettingsForm page;
        QCOMPARE(shown(page), defaults());
        change(page);
        QCOMPARE(shown(page), defaultsBut(MsgUpload, QStringLiteral("7")));
    }
    QCOMPARE(readFile(m_home->folder()), QByteArray(Old));
}

void tst_SettingsFaults::folderInPlaceOfTheFile()
{
    QVERIFY(QDir().mkpath(m_home->file()));
    {
        const SettingsForm page;
        QCOMPARE(shown(page), defaults());
        QCOMPARE(status(page), QSettings::AccessError);
        change(page);
        QCOMPARE(shown(page), defaultsBut(MsgUpload, QStringLiteral("7")));
    }
    QVERIFY(QFileInfo(m_home->file()).isDir());
    QCOMPARE(m_home->entries(), QStringList(QStringLiteral("settings.ini")));
}

void tst_SettingsFaults::linkToAFileElsewhere()
{
    QVERIFY(QDir().mkpath(m_home->folder()));
    const QString target = m_home->path(QStringLiteral("kept elsewhere.ini"));
    writeFile(target, "[log]\ndays=20\n");
    QVERIFY(QFile::link(target, m_home->file()));
    {
        const SettingsForm page;
        QCOMPARE(shown(page), defaultsBut(LogDays, QStringLiteral("20")));
        change(page);
    }
    QVERIFY(isLink(m_home->file()));
    QCOMPARE(readFile(target), QByteArray("[log]\ndays=20\n\n[msg]\nuploadInterval=7\n"));
    QCOMPARE(m_home->entries(), QStringList(QStringLiteral("settings.ini")));
}

void tst_SettingsFaults::linkToTheFolderElsewhere()
{
    const QString elsewhere = m_home->path(QStringLiteral("elsewhere"));
    QVERIFY(QDir().mkpath(elsewhere));
    QVERIFY(QFile::link(elsewhere, m_home->folder()));
    {
        const SettingsForm page;
        change(page);
    }
    QVERIFY(isLink(m_home->folder()));
    QCOMPARE(readFile(elsewhere + QStringLiteral("/settings.ini")),
             QByteArray("[msg]\nuploadInterval=7\n"));
}

void tst_SettingsFaults::danglingLink()
{
    QVERIFY(QDir().mkpath(m_home->folder()));
    const QString target = m_home->path(QStringLiteral("not there yet.ini"));
    QVERIFY(QFile::link(target, m_home->file()));
    {
        const SettingsForm page;
        QCOMPARE(shown(page), defaults());
        QCOMPARE(status(page), QSettings::NoError);
        QCoreApplication::processEvents();
        QVERIFY(!QFileInfo::exists(target));
        change(page);
    }
    QVERIFY(isLink(m_home->file()));
    QCOMPARE(readFile(target), QByteArray("[msg]\nuploadInterval=7\n"));
}

void tst_SettingsFaults::linkInACircle()
{
    QVERIFY(QDir().mkpath(m_home->folder()));
    QVERIFY(QFile::link(m_home->file(), m_home->file()));
    {
        const SettingsForm page;
        QCOMPARE(shown(page), defaults());
        change(page);
        QCOMPARE(shown(page), defaultsBut(MsgUpload, QStringLiteral("7")));
    }
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

void tst_SettingsFaults::abandonedLock()
{
    m_home->write(Old);
    const QString lock = m_home->file() + QStringLiteral(".lock");
    writeFile(lock, QByteArray());
    QFile file(lock);
    QVERIFY(file.open(QIODevice::ReadWrite));
    QVERIFY(file.setFileTime(QDateTime::currentDateTime().addSecs(-2),
                             QFileDevice::FileModificationTime));
    file.close();

    QElapsedTimer clock;
    clock.start();
    const SettingsForm page;
    QVERIFY(!QFile::exists(lock));
    change(page);
    QCOMPARE(m_home->read(), QByteArray(Changed));
    // Qt itself would wait half a minute.
    QVERIFY2(clock.elapsed() < 10000, qPrintable(QString::number(clock.elapsed())));
}

void tst_SettingsFaults::youngLockIsLeftAlone()
{
    m_home->write(Old);
    const QString lock = m_home->file() + QStringLiteral(".lock");
    const auto loads = [&](const QByteArray &content, int age) {
        writeFile(lock, content);
        QFile file(lock);
        QVERIFY(file.open(QIODevice::ReadWrite));
        QVERIFY(file.setFileTime(QDateTime::currentDateTime().addSecs(-age),
                                 QFileDevice::FileModificationTime));
        file.close();
        const SettingsForm page;
        QCOMPARE(readFile(lock), content);
        QVERIFY(QFile::exists(lock));
    };

    // Somebody may be about to sign it.
    loads(QByteArray(""), 0);
    // Somebody has: whether it is stale is for the file's own lock to tell.
    loads(QByteArray("1\nprogram\nhost\n"), 5);
    loads(QByteArray("1"), 5);
}

QTEST_MAIN(tst_SettingsFaults)
#include "tst_SettingsFaults.moc"
