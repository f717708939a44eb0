#include "settings/SettingsForm.h"

#include "tests/settings/SettingsHome.h"
#include "tests/support/files.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QSpinBox>
#include <QtTest>

namespace {

constexpr qint64 PageBytes = 4096;
constexpr int OtherUpload = 7;
constexpr int OtherThreads = 8;

//! Three pages, of which two are none of the panel's keys.
const QByteArray Ballast = "\n[zz]\na=" + QByteArray(int(2 * PageBytes), 'x') + '\n';
const QByteArray Old = "[msg]\nuploadInterval=3\n" + Ballast;
const QByteArray Changed = "[msg]\nuploadInterval=7\n" + Ballast;

} // namespace

//! To be run under small-disk.sh.
class tst_SettingsDiskFull : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanup();
    void changeWaitsForRoom_data();
    void changeWaitsForRoom();
    void noFileWhereThereIsNoRoom();

private:
    [[nodiscard]] QString path(const char *name) const
    {
        return m_disk + QLatin1Char('/') + QLatin1String(name);
    }
    //! Leaves \a pages pages of the disk free.
    void fill(int pages) const;

    QString m_disk;
};

void tst_SettingsDiskFull::initTestCase()
{
    m_disk = qEnvironmentVariable("PANEL_TEST_SMALL_DISK");
    QVERIFY(QFileInfo(m_disk).isDir());
    qputenv("XDG_CONFIG_HOME", QFile::encodeName(m_disk));
}

void tst_SettingsDiskFull::cleanup()
{
    QFile::remove(path("filler"));
    QVERIFY(QDir(path("KqVantora")).removeRecursively());
}

void tst_SettingsDiskFull::fill(int pages) const
{
    QFile filler(path("filler"));
    QVERIFY(filler.open(QIODevice::WriteOnly | QIODevice::Unbuffered));
    const QByteArray page(int(PageBytes), 'f');
    while (filler.write(page) == page.size()) { }
    QVERIFY(filler.size() > pages * PageBytes);
    QVERIFY(filler.resize(filler.size() / PageBytes * PageBytes - pages * PageBytes));
}

void tst_SettingsDiskFull::changeWaitsForRoom_data()
{
    QTest::addColumn<int>("freePages");
    QTest::addColumn<QByteArray>("meanwhile");

    QTest::newRow("0 free pages") << 0 << Old;
    // There is room for the lock, and not for the whole of the file: what QSettings makes of it
    // depends on Qt's version. Up to 5.15 it cuts the file short until the next change.
    for (const int pages : {1, 2, 3})
        QTest::addRow("%d free pages", pages) << pages << QByteArray();
    QTest::newRow("4 free pages") << 4 << Changed;
}

void tst_SettingsDiskFull::changeWaitsForRoom()
{
    QFETCH(int, freePages);
    QFETCH(QByteArray, meanwhile);

    const QString file = path("KqVantora/settings.ini");
    QVERIFY(QDir(m_disk).mkdir(QStringLiteral("KqVantora")));
    writeFile(file, Old);
    const SettingsForm page;
    QCoreApplication::processEvents();
    QVERIFY(readFile(file) == Old);

    fill(freePages);
    page.findChild<QSpinBox *>(QStringLiteral("spinUpload"))->setValue(OtherUpload);
    QCoreApplication::processEvents();
    if (!meanwhile.isEmpty())
        QVERIFY(readFile(file) == meanwhile);
    QCOMPARE(shown(page), defaultsBut(MsgUpload, QStringLiteral("7")));
    QVERIFY(!QApplication::activeModalWidget());

    // With room again, the next change takes along whatever could not be written.
    QVERIFY(QFile::remove(path("filler")));
    page.findChild<QSpinBox *>(QStringLiteral("spinThreadNums"))->setValue(OtherThreads);
    QCoreApplication::processEvents();
    QVERIFY(readFile(file) == "[msg]\nuploadInterval=7\n\n[rpc]\nthreads=8\n" + Ballast);
    QCOMPARE(QDir(path("KqVantora")).entryList(QDir::Files | QDir::Hidden),
             QStringList(QStringLiteral("settings.ini")));
}

void tst_SettingsDiskFull::noFileWhereThereIsNoRoom()
{
    fill(0);
    {
        const SettingsForm page;
        QCOMPARE(shown(page), defaults());
        page.findChild<QSpinBox *>(QStringLiteral("spinUpload"))->setValue(OtherUpload);
        QCoreApplication::processEvents();
        QCOMPARE(shown(page), defaultsBut(MsgUpload, QStringLiteral("7")));
    }
    QCOMPARE(QDir(path("KqVantora")).entryList(QDir::Files | QDir::Hidden), QStringList());
}

QTEST_MAIN(tst_SettingsDiskFull)
#include "tst_SettingsDiskFull.moc"
