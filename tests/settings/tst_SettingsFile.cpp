#include "settings/SettingsForm.h"

#include "tests/settings/SettingsHome.h"
#include "tests/support/files.h"

#include <QAbstractItemView>
#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QFileInfo>
#include <QSettings>
#include <QSpinBox>
#include <QStandardPaths>
#include <QTest>

namespace {

constexpr int OtherUpload = 7;

void loadColumns()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QStringList>("expected");
    QTest::addColumn<QByteArray>("rewritten");
}

//! A row of loading: \a rewritten is null where the file must not be touched.
void loadRow(const QByteArray &name, const QByteArray &content, const QStringList &expected,
             const QByteArray &rewritten = {})
{
    QTest::newRow(name.constData()) << content << expected << rewritten;
}

} // namespace

class tst_SettingsFile : public QObject
{
    Q_OBJECT

private slots:
    void firstStart();
    void pathAndFormat();
    void loadsRanges_data();
    void loadsRanges() { load(); }
    void loadsLevels_data();
    void loadsLevels() { load(); }
    void loadsSwitch_data();
    void loadsSwitch() { load(); }
    void loadsWholeFiles_data();
    void loadsWholeFiles() { load(); }
    void keepsWhatItDoesNotKnow_data();
    void keepsWhatItDoesNotKnow();
    void switchIsWritten();
    void documentedExample();
    void levelIsStoredAsEscapes_data();
    void levelIsStoredAsEscapes();
    void changeWaitsForTheEventLoop();
    void saveConfigChangesNothing();
    void whatAnotherProgramChangesIsNotShown();
    void configurationFolder_data();
    void configurationFolder();

private:
    static void load();
};

void tst_SettingsFile::load()
{
    QFETCH(QByteArray, content);
    QFETCH(QStringList, expected);
    QFETCH(QByteArray, rewritten);

    const SettingsHome home;
    home.write(content);
    const QByteArray before = home.state();
    {
        const SettingsForm page;
        QCOMPARE(shown(page), expected);
        QCoreApplication::processEvents();
        QCOMPARE(shown(page), expected);
    }
    if (rewritten.isNull()) {
        QCOMPARE(home.state(), before);
        QCOMPARE(home.read(), content);
    } else {
        QVERIFY(home.state() != before);
        QCOMPARE(home.read(), rewritten);
    }
    QCOMPARE(home.entries(), QStringList(QStringLiteral("settings.ini")));
}

void tst_SettingsFile::firstStart()
{
    const SettingsHome home;
    {
        const SettingsForm page;
        QVERIFY(QFileInfo(home.folder()).isDir());
        QCOMPARE(shown(page), defaults());
        QVERIFY(page.findChild<QWidget *>(QStringLiteral("labelRpcLog"))->isHidden());
        QCoreApplication::processEvents();
    }
    QCOMPARE(home.entries(), QStringList());
}

void tst_SettingsFile::pathAndFormat()
{
    const SettingsHome home;
    const SettingsForm page;
    const auto found = page.findChildren<QSettings *>(QString(), Qt::FindDirectChildrenOnly);
    QCOMPARE(found.size(), 1);
    QCOMPARE(found.first()->fileName(), home.file());
    QCOMPARE(found.first()->format(), QSettings::IniFormat);
    QVERIFY(!found.first()->iniCodec());
    QCOMPARE(found.first()->status(), QSettings::NoError);
}

void tst_SettingsFile::loadsRanges_data()
{
    loadColumns();
    for (const NumberSetting &number : NumberSettings) {
        for (const int value : {number.minimum - 1, number.minimum, number.initial, number.maximum,
                                number.maximum + 1}) {
            const QByteArray text = QByteArray::number(value);
            const QByteArray content = oneKey(number.section, number.name, text);
            const bool accepted = value >= number.minimum && value <= number.maximum;
            const QByteArray row = QByteArray(number.name) + ' ' + text;
            if (accepted && value != number.initial)
                loadRow(row, content, defaultsBut(number.field, QString::fromLatin1(text)),
                        content);
            else if (value != number.maximum || number.maximum != number.initial)
                loadRow(row, content, defaults());
        }
        for (const char *text : {"many", "", "20.5", "7days"}) {
            const QByteArray content = oneKey(number.section, number.name, text);
            loadRow(QByteArray(number.name) + " is " + text, content, defaults());
        }
    }
    loadRow("days 30", "[log]\ndays=30\n", defaults());
}

void tst_SettingsFile::loadsLevels_data()
{
    loadColumns();
    const auto row = [](const char *name, const QByteArray &stored, const char *level) {
        loadRow(name, oneKey("log", "level", stored),
                defaultsBut(LogLevel, QString::fromUtf8(level)));
    };
    row("debug", "\\x8c03\\x8bd5", "调试");
    row("information", "\\x4fe1\\x606f", "信息");
    row("warning", "\\x8b66\\x544a", "警告");
    row("error", "\\x9519\\x8bef", "错误");
    row("fatal", "\\x81f4\\x547d", "致命");

    row("unknown", "\\x8be6\\x7ec6", "信息");
    row("beginning of a level", "\\x8b66", "信息");
    row("more than a level", R"(\x8b66\x544a\x8b66)", "信息");
    row("blank before a level", R"(" \x8b66\x544a")", "信息");
    row("number of a level", "2", "信息");
    row("empty", "", "信息");
}

void tst_SettingsFile::loadsSwitch_data()
{
    loadColumns();
    for (const char *text : {"true", "1"})
        loadRow(text, oneKey("rpc", "enableLogs", text), defaultsBut(RpcLogs, QStringLiteral("on")),
                oneKey("rpc", "enableLogs", "true"));
    for (const char *text : {"false", "0", ""})
        loadRow(text, oneKey("rpc", "enableLogs", text), defaults());
}

void tst_SettingsFile::loadsWholeFiles_data()
{
    loadColumns();
    loadRow("zero bytes", "", defaults());
    loadRow("defaults only",
            "[log]\nlevel=\\x4fe1\\x606f\ndays=30\n[rpc]\nenableLogs=false\ntimeout=30\nthreads=5\n"
            "[msg]\npullInterval=10\nupdateInterval=3\nuploadInterval=3\n",
            defaults());
    loadRow("rejected values only",
            "[log]\nlevel=none\ndays=5\n[rpc]\nenableLogs=0\ntimeout=61\nthreads=0\n"
            "[msg]\npullInterval=4\nupdateInterval=11\nuploadInterval=31\n",
            defaults());
    const QByteArray eight =
            "[log]\ndays=10\nlevel=\\x81f4\\x547d\n\n[msg]\npullInterval=30\nupdateInterval=10\n"
            "uploadInterval=1\n\n[rpc]\nenableLogs=true\nthreads=8\ntimeout=60\n";
    loadRow("all eight", eight,
            {QStringLiteral("致命"), QStringLiteral("10"), QStringLiteral("on"),
             QStringLiteral("60"), QStringLiteral("8"), QStringLiteral("30"), QStringLiteral("10"),
             QStringLiteral("1")},
            eight);

    loadRow("other case", "[Log]\ndays=20\n[log]\nDays=20\n", defaults());
    loadRow("in another section", "days=20\n[rpc]\ndays=20\n", defaults());
    // Only a section header without its bracket is found out while the file is opened.
    loadRow("broken header", "[log\ndays=20\n[rpc]\ntimeout=20\n", defaults());
}

void tst_SettingsFile::keepsWhatItDoesNotKnow_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QByteArray>("changed");

    const QByteArray upload = "[msg]\nuploadInterval=7\n";
    QTest::newRow("keys and sections")
            << QByteArray("[log]\nunknown=5\n\n[other]\na=1\nlist=1, 2\n")
            << "[log]\nunknown=5\n\n" + upload + "\n[other]\na=1\nlist=1, 2\n";
    QTest::newRow("rejected values")
            << QByteArray("[log]\nlevel=none\ndays=5\n[rpc]\nthreads=0x4\ntimeout=\n")
            << "[log]\ndays=5\nlevel=none\n\n" + upload + "\n[rpc]\nthreads=0x4\ntimeout=\n";
    QTest::newRow("a broken header keeps its keys")
            << QByteArray("[log\ndays=20\n[rpc]\ntimeout=20\n")
            << "[log]\ndays=20\n\n" + upload + "\n[rpc]\ntimeout=20\n";
}

void tst_SettingsFile::keepsWhatItDoesNotKnow()
{
    QFETCH(QByteArray, content);
    QFETCH(QByteArray, changed);

    const SettingsHome home;
    home.write(content);
    const SettingsForm page;
    QCoreApplication::processEvents();
    QCOMPARE(home.read(), content);
    changeNumber(page, "spinUpload", OtherUpload);
    QCOMPARE(home.read(), changed);
}

void tst_SettingsFile::switchIsWritten()
{
    const SettingsHome home;
    const SettingsForm page;
    auto *check = page.findChild<QCheckBox *>(QStringLiteral("cbRpcLog"));
    for (const bool isOn : {true, false}) {
        check->setChecked(isOn);
        QCoreApplication::processEvents();
        QCOMPARE(home.read(), oneKey("rpc", "enableLogs", isOn ? "true" : "false"));
    }
}

void tst_SettingsFile::documentedExample()
{
    const SettingsHome home;
    const SettingsForm page;
    const QList<QPair<const char *, int>> values = {
            {"spinLogDays", 14},     {"spinRpcTimeout", 45},  {"spinThreadNums", 4},
            {"spinPullMessage", 15}, {"spinStatusUpdate", 5}, {"spinUpload", 10},
    };
    for (const auto &value : values)
        numberField(page, value.first)->setValue(value.second);
    page.findChild<QCheckBox *>(QStringLiteral("cbRpcLog"))->setChecked(true);
    auto *level = page.findChild<QComboBox *>(QStringLiteral("cbLogLevel"));
    QTest::keyClick(level, Qt::Key_Down);
    QCoreApplication::processEvents();

    const QByteArray content = "[log]\ndays=14\nlevel=\\x8b66\\x544a\n\n"
                               "[msg]\npullInterval=15\nupdateInterval=5\nuploadInterval=10\n\n"
                               "[rpc]\nenableLogs=true\nthreads=4\ntimeout=45\n";
    QCOMPARE(home.read(), content);
    QVERIFY(readFile(QStringLiteral(PANEL_TEST_SETTINGS_DOCUMENT))
                    .contains("\n```ini\n" + content + "```\n"));
}

void tst_SettingsFile::levelIsStoredAsEscapes_data()
{
    QTest::addColumn<int>("item");
    QTest::addColumn<QByteArray>("content");

    const QList<QByteArray> stored = {"\\x8c03\\x8bd5", "\\x4fe1\\x606f", "\\x8b66\\x544a",
                                      "\\x9519\\x8bef", "\\x81f4\\x547d"};
    int item = 0;
    for (const QByteArray &level : stored) {
        QTest::addRow("%d", item) << item << oneKey("log", "level", level);
        ++item;
    }
}

void tst_SettingsFile::levelIsStoredAsEscapes()
{
    QFETCH(int, item);
    QFETCH(QByteArray, content);

    const SettingsHome home;
    const SettingsForm page;
    auto *level = page.findChild<QComboBox *>(QStringLiteral("cbLogLevel"));

    // A change of the current item that is not the user's choice writes nothing.
    level->setCurrentIndex(item);
    QCoreApplication::processEvents();
    QCOMPARE(home.entries(), QStringList());

    // What the user chooses is written, also when it is what was current before.
    level->showPopup();
    QTest::keyClick(level->view(), Qt::Key_Return);
    QCOMPARE(level->currentIndex(), item);
    QCoreApplication::processEvents();
    QCOMPARE(home.read(), content);

    const SettingsForm next;
    QCOMPARE(shown(next), defaultsBut(LogLevel, level->currentText()));
}

void tst_SettingsFile::changeWaitsForTheEventLoop()
{
    const SettingsHome home;
    {
        const SettingsForm page;
        numberField(page, "spinUpload")->setValue(OtherUpload);
        QCOMPARE(home.entries(), QStringList());
        QCoreApplication::processEvents();
        QCOMPARE(home.read(), QByteArray("[msg]\nuploadInterval=7\n"));
        numberField(page, "spinUpload")->setValue(OtherUpload + 1);
        QCOMPARE(home.read(), QByteArray("[msg]\nuploadInterval=7\n"));
    }
    // The end of the page is the latest.
    QCOMPARE(home.read(), QByteArray("[msg]\nuploadInterval=8\n"));
}

void tst_SettingsFile::saveConfigChangesNothing()
{
    const SettingsHome home;
    const QByteArray content = "[log]\ndays=5\n";
    home.write(content);
    const QByteArray before = home.state();
    SettingsForm page;
    page.saveConfig();
    QCoreApplication::processEvents();
    QCOMPARE(home.state(), before);

    // Nor does it write what a change has left pending.
    numberField(page, "spinUpload")->setValue(OtherUpload);
    page.saveConfig();
    QCOMPARE(home.state(), before);
    QCOMPARE(shown(page), defaultsBut(MsgUpload, QStringLiteral("7")));
}

void tst_SettingsFile::whatAnotherProgramChangesIsNotShown()
{
    const SettingsHome home;
    const SettingsForm page;
    home.write("[rpc]\nenableLogs=true\nthreads=8\n");
    changeNumber(page, "spinUpload", OtherUpload);
    QCOMPARE(shown(page), defaultsBut(MsgUpload, QStringLiteral("7")));
    QCOMPARE(home.read(),
             QByteArray("[msg]\nuploadInterval=7\n\n[rpc]\nenableLogs=true\nthreads=8\n"));
}

void tst_SettingsFile::configurationFolder_data()
{
    QTest::addColumn<QByteArray>("variable");
    QTest::addColumn<QString>("expected");

    QTest::newRow("unset") << QByteArray() << QStringLiteral("home/.config");
    QTest::newRow("blanks and Chinese")
            << QByteArray("%1/my 配 置 %1 folder") << QStringLiteral("my 配 置 %1 folder");
    QTest::newRow("relative") << QByteArray("relative/config") << QStringLiteral("relative/config");
}

void tst_SettingsFile::configurationFolder()
{
    QFETCH(QByteArray, variable);
    QFETCH(QString, expected);

    const SettingsHome home;
    const QByteArray formerHome = qgetenv("HOME");
    const QString formerFolder = QDir::currentPath();
    qputenv("HOME", QFile::encodeName(home.path(QStringLiteral("home"))));
    QVERIFY(QDir::setCurrent(home.path()));
    if (variable.isNull())
        qunsetenv("XDG_CONFIG_HOME");
    else
        qputenv("XDG_CONFIG_HOME", variable.startsWith('%')
                                           ? QFile::encodeName(home.path()) + variable.mid(2)
                                           : variable);
    const QString location = QStandardPaths::writableLocation(QStandardPaths::ConfigLocation);
    {
        const SettingsForm page;
        // The file is fixed by now, whatever the current folder is.
        QVERIFY(QDir::setCurrent(formerFolder));
        numberField(page, "spinUpload")->setValue(OtherUpload);
    }
    qputenv("HOME", formerHome);

    QCOMPARE(QDir::cleanPath(QDir(home.path()).absoluteFilePath(location)), home.path(expected));
    QStringList entries(QStringLiteral("settings.ini"));
    if (QDir::isRelativePath(location))
        entries.prepend(QStringLiteral("relative"));
    QCOMPARE(QDir(home.path(expected + QStringLiteral("/KqVantora")))
                     .entryList(QDir::AllEntries | QDir::NoDotAndDotDot, QDir::Name),
             entries);
    QCOMPARE(readFile(home.path(expected + QStringLiteral("/KqVantora/settings.ini"))),
             QByteArray("[msg]\nuploadInterval=7\n"));
}

QTEST_MAIN(tst_SettingsFile)
#include "tst_SettingsFile.moc"
