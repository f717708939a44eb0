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
    void loadsNumberTexts_data();
    void loadsNumberTexts() { load(); }
    void loadsLevels_data();
    void loadsLevels() { load(); }
    void loadsSwitch_data();
    void loadsSwitch() { load(); }
    void loadsWholeFiles_data();
    void loadsWholeFiles() { load(); }
    void keepsWhatItDoesNotKnow_data();
    void keepsWhatItDoesNotKnow();
    void changeWritesItsKeyOnly_data();
    void changeWritesItsKeyOnly();
    void documentedExample();
    void levelIsStoredAsEscapes_data();
    void levelIsStoredAsEscapes();
    void changeWaitsForTheEventLoop();
    void destructionWritesWhatIsPending();
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
        loadRow(QByteArray(number.name) + " is text", oneKey(number.section, number.name, "many"),
                defaults());
    }
    loadRow("days 30", "[log]\ndays=30\n", defaults());
}

void tst_SettingsFile::loadsNumberTexts_data()
{
    loadColumns();
    for (const char *text :
         {"-20", "0x14", "20.0", "20.5", "2e1", "", "99999999999999999999", "2147483648", "true",
          "10, 20", "1 5", "20days", "\xEF\xBC\x92\xEF\xBC\x90", "@Invalid()"})
        loadRow(QByteArray("rejected: ") + text, oneKey("log", "days", text), defaults());

    const QByteArray twenty = oneKey("log", "days", "20");
    const QStringList shows = defaultsBut(LogDays, QStringLiteral("20"));
    for (const QByteArray &text :
         {QByteArray("020"), QByteArray("+20"), QByteArray("  20  "), QByteArray("\" 20 \""),
          QByteArray("20 ; days"), QByteArray(R"(@Variant(\0\0\0\x2\0\0\0\x14))")})
        loadRow("accepted: " + text, oneKey("log", "days", text), shows, twenty);
    // 2^32 + 20: the conversion to int cuts the upper half off.
    loadRow("wrapped", oneKey("log", "days", "4294967316"), shows, twenty);
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
    row("quoted", R"("\x8b66\x544a")", "警告");
    row("upper-case digits", "\\x8B66\\x544A", "警告");
    row("bare blanks around", "  \\x8b66\\x544a  ", "警告");

    row("unknown", "\\x8be6\\x7ec6", "信息");
    row("quoted blank before", R"(" \x8b66\x544a")", "信息");
    row("quoted blank behind", R"("\x8b66\x544a ")", "信息");
    row("beginning of a level", "\\x8b66", "信息");
    row("more than a level", R"(\x8b66\x544a\x8b66)", "信息");
    row("number of a level", "2", "信息");
    row("other script", "warning", "信息");
    row("other case", "WARNING", "信息");
    row("empty", "", "信息");
    row("two levels", R"(\x8b66\x544a, \x8c03\x8bd5)", "信息");
    row("bare UTF-8", "警告", "信息");
    row("GBK", "\xBE\xAF\xB8\xE6", "信息");
}

void tst_SettingsFile::loadsSwitch_data()
{
    loadColumns();
    for (const char *text : {"true", "True", "TRUE", "1", "2", "yes", "no", "on", "off", "-1"})
        loadRow(QByteArray("on: ") + text, oneKey("rpc", "enableLogs", text),
                defaultsBut(RpcLogs, QStringLiteral("on")), oneKey("rpc", "enableLogs", "true"));
    for (const char *text : {"false", "False", "FALSE", "0", "", "@Invalid()", "true, true"})
        loadRow(QByteArray("off: ") + text, oneKey("rpc", "enableLogs", text), defaults());
}

void tst_SettingsFile::loadsWholeFiles_data()
{
    loadColumns();
    loadRow("zero bytes", "", defaults());
    loadRow("blank lines", "\n\r\n  \n", defaults());
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

    const QStringList twentyDays = defaultsBut(LogDays, QStringLiteral("20"));
    const QByteArray twenty = "[log]\ndays=20\n";
    loadRow("carriage returns", "[log]\r\ndays=20\r\n", twentyDays, twenty);
    loadRow("no new-line at the end", "[log]\ndays=20", twentyDays, twenty);
    loadRow("the same key twice", "[log]\ndays=25\ndays=20\n", twentyDays, twenty);
    loadRow("the same section twice", "[log]\ndays=25\n[x]\n[log]\ndays=20\n", twentyDays, twenty);
    loadRow("other case", "[Log]\ndays=20\n[log]\nDays=20\n", defaults());
    loadRow("without a section", "days=20\n[log]\n", defaults());
    loadRow("in another section", "[rpc]\ndays=20\n[General]\ndays=20\n", defaults());

    // Only a section header without its bracket is found out while the file is opened.
    loadRow("broken header", "[log\ndays=20\n[rpc]\ntimeout=20\n", defaults());
    loadRow("line without a value", "[log]\nnonsense\ndays=20\n", twentyDays, twenty);
    loadRow("no settings at all",
            QByteArray("\x7f"
                       "ELF\x02\x00\x01",
                       7),
            defaults());

    loadRow("byte-order mark", "\xEF\xBB\xBF[log]\ndays=20\n", twentyDays, twenty);
    loadRow("byte-order mark and bare UTF-8", "\xEF\xBB\xBF[log]\nlevel=警告\n",
            defaultsBut(LogLevel, QStringLiteral("警告")));
}

void tst_SettingsFile::keepsWhatItDoesNotKnow_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QByteArray>("changed");

    const QByteArray upload = "[msg]\nuploadInterval=7\n";
    QTest::newRow("keys and sections")
            << QByteArray("[log]\nunknown=5\n\n[other]\na=1\nb\\c=2\nbytes=@ByteArray(x)\n"
                          "list=1, 2\nquoted=\"a;b\"\nname=\\x4fe1\n")
            << "[log]\nunknown=5\n\n" + upload
                       + "\n[other]\na=1\nb\\c=2\nbytes=@ByteArray(x)\nlist=1, 2\n"
                         "name=\\x4fe1\nquoted=\"a;b\"\n";
    QTest::newRow("rejected values")
            << QByteArray("[log]\nlevel=none\ndays=5\n[rpc]\nthreads=0x4\ntimeout=\n")
            << "[log]\ndays=5\nlevel=none\n\n" + upload + "\n[rpc]\nthreads=0x4\ntimeout=\n";
    QTest::newRow("a broken header keeps its keys")
            << QByteArray("[log\ndays=20\n[rpc]\ntimeout=20\n")
            << "[log]\ndays=20\n\n" + upload + "\n[rpc]\ntimeout=20\n";
    QTest::newRow("comments go") << QByteArray("; one\n# two\n[log]\n; three\ndays=5 ; four\n")
                                 << "[log]\ndays=5\n\n" + upload;
    QTest::newRow("bytes beyond ASCII are escaped")
            << QByteArray("[log]\nlevel=警告\n")
            << "[log]\nlevel=\\xe8\\xad\\xa6\\xe5\\x91\\x8a\n\n" + upload;
    QTest::newRow("zero bytes") << QByteArray("") << upload;
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

void tst_SettingsFile::changeWritesItsKeyOnly_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<int>("value");
    QTest::addColumn<QByteArray>("content");

    for (const NumberSetting &number : NumberSettings) {
        for (const int value : {number.minimum, number.initial + 1, number.maximum}) {
            const QByteArray text = QByteArray::number(qMin(value, number.maximum - 1));
            QTest::addRow("%s %s %d", number.name, text.constData(), value)
                    << QByteArray(number.objectName) << text.toInt()
                    << oneKey(number.section, number.name, text);
        }
    }
    QTest::newRow("on") << QByteArray("cbRpcLog") << 1 << oneKey("rpc", "enableLogs", "true");
    QTest::newRow("off") << QByteArray("cbRpcLog") << 0 << oneKey("rpc", "enableLogs", "false");
}

void tst_SettingsFile::changeWritesItsKeyOnly()
{
    QFETCH(QByteArray, name);
    QFETCH(int, value);
    QFETCH(QByteArray, content);

    const SettingsHome home;
    const SettingsForm page;
    auto *widget = page.findChild<QWidget *>(QString::fromLatin1(name));
    if (auto *number = qobject_cast<QSpinBox *>(widget)) {
        number->setValue(value);
    } else {
        auto *check = qobject_cast<QCheckBox *>(widget);
        check->setChecked(true);
        check->setChecked(value != 0);
    }
    QCoreApplication::processEvents();
    QCOMPARE(home.read(), content);
    QCOMPARE(home.entries(), QStringList(QStringLiteral("settings.ini")));
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
    const SettingsForm page;
    numberField(page, "spinUpload")->setValue(OtherUpload);
    QCOMPARE(home.entries(), QStringList());
    QCoreApplication::processEvents();
    QCOMPARE(home.read(), QByteArray("[msg]\nuploadInterval=7\n"));
}

void tst_SettingsFile::destructionWritesWhatIsPending()
{
    const SettingsHome home;
    {
        const SettingsForm page;
        numberField(page, "spinUpload")->setValue(OtherUpload);
        QCOMPARE(home.entries(), QStringList());
    }
    QCOMPARE(home.read(), QByteArray("[msg]\nuploadInterval=7\n"));
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
    QTest::newRow("empty") << QByteArray("") << QStringLiteral("home/.config");
    QTest::newRow("blanks and Chinese")
            << QByteArray("%1/my 配 置 %1 folder") << QStringLiteral("my 配 置 %1 folder");
    QTest::newRow("deep, with a slash behind")
            << QByteArray("%1/a/b/c/") << QStringLiteral("a/b/c");
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
