#include "settings/SettingsForm.h"

#include "tests/settings/SettingsHome.h"
#include "tests/support/files.h"

#include <QAbstractItemView>
#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QFileInfo>
#include <QRegularExpression>
#include <QSettings>
#include <QSpinBox>
#include <QStandardPaths>
#include <QTest>

namespace {

constexpr int OtherUpload = 7;

//! What the page shows after such a change.
QStringList defaultsButUpload()
{
    return defaultsBut("spinUpload", QString::number(OtherUpload));
}

//! A row of loading: \a rewritten is null where the file must not be touched.
void loadRow(const QByteArray &name, const QByteArray &content, const QStringList &expected,
             const QByteArray &rewritten = {})
{
    QTest::newRow(name.constData()) << content << expected << rewritten;
}

void addNumberRows()
{
    const SettingsHome home;
    const SettingsForm page;
    for (const NumberSetting &number : NumberSettings) {
        const QSpinBox *field = numberField(page, number.field);
        const QByteArray name = QByteArray(number.name) + ' ';
        const auto contentWith = [&number](const QByteArray &text) {
            return oneKey(number.section, number.name, text);
        };
        for (const int value : {field->minimum(), field->maximum()}) {
            const QByteArray text = QByteArray::number(value);
            // The default is left alone, as it stands.
            const bool isRewritten = value != field->value();
            loadRow(name + text, contentWith(text),
                    defaultsBut(number.field, QString::fromLatin1(text)),
                    isRewritten ? contentWith(text) : QByteArray());
        }
        const QByteArray initial = QByteArray::number(field->value());
        loadRow(name + "default", contentWith(initial), defaults());
        for (const int value : {field->minimum() - 1, field->maximum() + 1}) {
            const QByteArray text = QByteArray::number(value);
            loadRow(name + text, contentWith(text), defaults());
        }
        for (const char *text : {"many", "", "20.5", "7days"})
            loadRow(name + "is " + text, contentWith(text), defaults());
    }
}

void addLevelRows()
{
    for (const Level &level : Levels) {
        loadRow(level.name, oneKey("log", "level", level.stored),
                defaultsBut(LevelField, QString::fromUtf8(level.name)));
    }
    const auto unknown = [](const char *name, const QByteArray &stored) {
        loadRow(QByteArray("level: ") + name, oneKey("log", "level", stored), defaults());
    };
    unknown("unknown", "\\x8be6\\x7ec6");
    unknown("beginning of one", "\\x8b66");
    unknown("more than one", R"(\x8b66\x544a\x8b66)");
    unknown("blank before it", R"(" \x8b66\x544a")");
    unknown("number of one", "2");
    unknown("empty", "");
}

void addSwitchRows()
{
    for (const char *text : {"true", "1"}) {
        loadRow(QByteArray("switch ") + text, oneKey("rpc", "enableLogs", text),
                defaultsBut(SwitchField, QStringLiteral("true")),
                oneKey("rpc", "enableLogs", "true"));
    }
    for (const char *text : {"false", "0", ""})
        loadRow(QByteArray("switch ") + text, oneKey("rpc", "enableLogs", text), defaults());
}

void addFileRows()
{
    loadRow("zero bytes", "", defaults());
    const QByteArray mixed = "[log]\ndays=10\nlevel=\\x81f4\\x547d\n\n"
                             "[msg]\npullInterval=4\nuploadInterval=1\n\n"
                             "[rpc]\nenableLogs=true\nthreads=8\n";
    QStringList expected = defaultsBut("spinLogDays", QStringLiteral("10"));
    expected = replaced(expected, LevelField, QStringLiteral("致命"));
    expected = replaced(expected, "spinUpload", QStringLiteral("1"));
    expected = replaced(expected, SwitchField, QStringLiteral("true"));
    expected = replaced(expected, "spinThreadNums", QStringLiteral("8"));
    loadRow("accepted and rejected values", mixed, expected, mixed);

    loadRow("other case", "[Log]\ndays=20\n[log]\nDays=20\n", defaults());
    loadRow("in another section", "days=20\n[rpc]\ndays=20\n", defaults());
    // Only a section header without its bracket is found out while the file is opened.
    loadRow("broken header", "[log\ndays=20\n[rpc]\ntimeout=20\n", defaults());
}

} // namespace

class tst_SettingsFile : public QObject
{
    Q_OBJECT

private slots:
    void everyFieldIsListed();
    void firstStart();
    void pathAndFormat();
    void loads_data();
    void loads();
    void keepsWhatItDoesNotKnow_data();
    void keepsWhatItDoesNotKnow();
    void numbersAreWritten();
    void switchIsWritten();
    void documentedKeys();
    void documentedExample();
    void levelIsStoredAsEscapes_data();
    void levelIsStoredAsEscapes();
    void changeWaitsForTheEventLoop();
    void saveConfigChangesNothing();
    void whatAnotherProgramChangesIsNotShown();
    void configurationFolder_data();
    void configurationFolder();
};

//! The other tests go by these lists.
void tst_SettingsFile::everyFieldIsListed()
{
    const SettingsHome home;
    const SettingsForm page;
    QStringList names;
    const QStringList fields = shown(page);
    for (const QString &field : fields)
        names.append(field.section(QLatin1Char('='), 0, 0));
    names.sort();

    QStringList listed = {QLatin1String(LevelField), QLatin1String(SwitchField)};
    for (const NumberSetting &number : NumberSettings)
        listed.append(QLatin1String(number.field));
    listed.sort();
    QCOMPARE(names, listed);
}

void tst_SettingsFile::firstStart()
{
    const SettingsHome home;
    {
        const SettingsForm page;
        QVERIFY(QFileInfo(home.folder()).isDir());
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

void tst_SettingsFile::loads_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QStringList>("expected");
    QTest::addColumn<QByteArray>("rewritten");

    addNumberRows();
    addLevelRows();
    addSwitchRows();
    addFileRows();
}

void tst_SettingsFile::loads()
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

void tst_SettingsFile::numbersAreWritten()
{
    for (const NumberSetting &number : NumberSettings) {
        const SettingsHome home;
        const SettingsForm page;
        const QSpinBox *field = numberField(page, number.field);
        // The second is the default as often as not, and written nonetheless.
        for (const int value : {field->minimum(), field->maximum()}) {
            changeNumber(page, number.field, value);
            QCOMPARE(home.read(), oneKey(number.section, number.name, QByteArray::number(value)));
        }
    }
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

void tst_SettingsFile::documentedKeys()
{
    const QByteArray document = readFile(QStringLiteral(PANEL_TEST_SETTINGS_DOCUMENT));
    const SettingsHome home;
    const SettingsForm page;
    for (const NumberSetting &number : NumberSettings) {
        const QSpinBox *field = numberField(page, number.field);
        const QString row = QStringLiteral("\n| `[%1]` | `%2` | whole number | %3 | %4 to %5 |")
                                    .arg(QLatin1String(number.section), QLatin1String(number.name))
                                    .arg(field->value())
                                    .arg(field->minimum())
                                    .arg(field->maximum());
        QVERIFY2(document.contains(row.toUtf8()), qPrintable(row));
    }
    for (const Level &level : Levels) {
        const QRegularExpression row(
                QStringLiteral("\n\\| %1 \\(\\w+\\) \\| `%2` \\|\n")
                        .arg(QString::fromUtf8(level.name),
                             QRegularExpression::escape(QLatin1String(level.stored))));
        QVERIFY2(row.match(QString::fromUtf8(document)).hasMatch(), level.name);
    }
}

//! The example holds every key, with another value than the default, as the page writes it.
void tst_SettingsFile::documentedExample()
{
    const QString document =
            QString::fromUtf8(readFile(QStringLiteral(PANEL_TEST_SETTINGS_DOCUMENT)));
    const QByteArray example = document.section(QStringLiteral("\n```ini\n"), 1)
                                       .section(QStringLiteral("```"), 0, 0)
                                       .toUtf8();
    const SettingsHome home;
    home.write(example);
    const SettingsForm page;
    const QStringList fields = shown(page);
    for (int i = 0; i < fields.size(); ++i)
        QVERIFY2(fields.at(i) != defaults().at(i), qPrintable(fields.at(i)));

    const QByteArray before = home.state();
    // Loading has changed values, and so the whole file is written anew.
    QCoreApplication::processEvents();
    QVERIFY(home.state() != before);
    QCOMPARE(home.read(), example);
}

void tst_SettingsFile::levelIsStoredAsEscapes_data()
{
    QTest::addColumn<int>("item");
    QTest::addColumn<QByteArray>("content");

    int item = 0;
    for (const Level &level : Levels) {
        QTest::newRow(level.name) << item << oneKey("log", "level", level.stored);
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
    QCOMPARE(shown(next), defaultsBut(LevelField, level->currentText()));
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
    QCOMPARE(shown(page), defaultsButUpload());
}

void tst_SettingsFile::whatAnotherProgramChangesIsNotShown()
{
    const SettingsHome home;
    const SettingsForm page;
    home.write("[rpc]\nenableLogs=true\nthreads=8\n");
    changeNumber(page, "spinUpload", OtherUpload);
    QCOMPARE(shown(page), defaultsButUpload());
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
