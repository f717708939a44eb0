#include "settings/SettingsForm.h"

#include "tests/settings/SettingsHome.h"
#include "tests/support/files.h"

#include <QAbstractItemView>
#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QFileInfo>
#include <QMetaProperty>
#include <QRegularExpression>
#include <QSettings>
#include <QSpinBox>
#include <QStandardPaths>
#include <QTest>

Q_DECLARE_METATYPE(Setting)

namespace {

constexpr int OtherUpload = 7;

//! What the page shows after such a change.
QStringList defaultsButUpload()
{
    return defaultsBut("spinUpload", QString::number(OtherUpload));
}

QStringList levelNames()
{
    const SettingsHome home;
    const SettingsForm page;
    const auto *level = fieldOf<QComboBox>(page, LevelSetting.field);
    QStringList names;
    for (int item = 0; item < level->count(); ++item)
        names.append(level->itemText(item));
    return names;
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
    for (const Setting &number : settingsOf(SettingKind::Number)) {
        const auto *field = fieldOf<QSpinBox>(page, number.field);
        const QByteArray name = QByteArray(number.name) + ' ';
        for (const int value : {field->minimum(), field->maximum()}) {
            const QByteArray text = QByteArray::number(value);
            // The default is left alone, as it stands.
            const bool isRewritten = value != field->value();
            loadRow(name + text, oneKey(number, text),
                    defaultsBut(number.field, QString::fromLatin1(text)),
                    isRewritten ? oneKey(number, text) : QByteArray());
        }
        const QByteArray initial = QByteArray::number(field->value());
        loadRow(name + "default", oneKey(number, initial), defaults());
        for (const int value : {field->minimum() - 1, field->maximum() + 1}) {
            const QByteArray text = QByteArray::number(value);
            loadRow(name + text, oneKey(number, text), defaults());
        }
        for (const char *text : {"many", "", "20.5", "7days"})
            loadRow(name + "is " + text, oneKey(number, text), defaults());
    }
}

void addLevelRows()
{
    const QStringList names = levelNames();
    for (const QString &name : names) {
        loadRow(name.toUtf8(), oneKey(LevelSetting, escaped(name)),
                defaultsBut(LevelSetting.field, name));
    }
    const auto unknown = [](const char *name, const QByteArray &stored) {
        loadRow(QByteArray("level: ") + name, oneKey(LevelSetting, stored), defaults());
    };
    const QString &known = names.last();
    unknown("unknown", "\\x8be6\\x7ec6");
    unknown("beginning of one", escaped(known.at(0)));
    unknown("more than one", escaped(known + known.at(0)));
    unknown("blank before it", "\" " + escaped(known) + '"');
    unknown("number of one", "2");
    unknown("empty", "");
}

void addSwitchRows()
{
    const SettingsHome home;
    const SettingsForm page;
    for (const Setting &setting : settingsOf(SettingKind::Switch)) {
        const bool initial = fieldOf<QCheckBox>(page, setting.field)->isChecked();
        const auto rows = [&setting, initial](bool isOn, const QByteArrayList &texts) {
            const QByteArray stored = isOn ? "true" : "false";
            for (const QByteArray &text : texts) {
                loadRow(QByteArray(setting.name) + ' ' + text, oneKey(setting, text),
                        defaultsBut(setting.field, QString::fromLatin1(stored)),
                        isOn == initial ? QByteArray() : oneKey(setting, stored));
            }
        };
        rows(true, {"true", "1"});
        rows(false, {"false", "0", ""});
    }
}

void addFileRows()
{
    loadRow("zero bytes", "", defaults());
    const QString level = levelNames().constLast();
    const QByteArray mixed = "[log]\ndays=10\nlevel=" + escaped(level)
                             + "\n\n[msg]\npullInterval=4\nuploadInterval=1\n\n"
                               "[rpc]\nenableLogs=true\nthreads=8\n";
    QStringList expected = defaultsBut("spinLogDays", QStringLiteral("10"));
    expected = replaced(expected, LevelSetting.field, level);
    expected = replaced(expected, "spinUpload", QStringLiteral("1"));
    expected = replaced(expected, "cbRpcLog", QStringLiteral("true"));
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
    void changesAreWritten_data();
    void changesAreWritten();
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

//! The other tests go by the list.
void tst_SettingsFile::everyFieldIsListed()
{
    const SettingsHome home;
    const SettingsForm page;
    QStringList names;
    const QStringList fields = shown(page);
    for (const QString &field : fields)
        names.append(field.section(QLatin1Char('='), 0, 0));

    QStringList listed;
    for (const Setting &setting : Settings)
        listed.append(QLatin1String(setting.field));
    QCOMPARE(names.join(QStringLiteral(", ")), listed.join(QStringLiteral(", ")));
}

void tst_SettingsFile::firstStart()
{
    const SettingsHome home;
    {
        const SettingsForm page;
        QVERIFY(QFileInfo(home.folder()).isDir());
        QCoreApplication::processEvents();
    }
    QCOMPARE(home.entries(), QString());
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
    QCOMPARE(home.entries(), QStringLiteral("settings.ini"));
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

void tst_SettingsFile::changesAreWritten_data()
{
    QTest::addColumn<Setting>("setting");
    QTest::addColumn<QVariantList>("values");

    const SettingsHome home;
    const SettingsForm page;
    for (const Setting &number : settingsOf(SettingKind::Number)) {
        const auto *field = fieldOf<QSpinBox>(page, number.field);
        QTest::newRow(number.field) << number << QVariantList {field->minimum(), field->maximum()};
    }
    for (const Setting &setting : settingsOf(SettingKind::Switch)) {
        const bool initial = fieldOf<QCheckBox>(page, setting.field)->isChecked();
        QTest::newRow(setting.field) << setting << QVariantList {!initial, initial};
    }
}

void tst_SettingsFile::changesAreWritten()
{
    QFETCH(Setting, setting);
    QFETCH(QVariantList, values);

    const SettingsHome home;
    const SettingsForm page;
    auto *field = fieldOf<QWidget>(page, setting.field);
    // The last is the default as often as not, and written nonetheless.
    for (const QVariant &value : qAsConst(values)) {
        QVERIFY(field->metaObject()->userProperty().write(field, value));
        QCoreApplication::processEvents();
        QCOMPARE(home.read(), oneKey(setting, value.toByteArray()));
    }
}

//! The document holds the levels as they are stored, to the byte.
void tst_SettingsFile::documentedKeys()
{
    const auto rowOf = [](const Setting &setting, const QString &rest) {
        return QStringLiteral("\n| `[%1]` | `%2` | %3 |")
                .arg(QLatin1String(setting.section), QLatin1String(setting.name), rest);
    };
    const SettingsHome home;
    const SettingsForm page;
    QStringList rows;
    for (const Setting &number : settingsOf(SettingKind::Number)) {
        const auto *field = fieldOf<QSpinBox>(page, number.field);
        rows.append(rowOf(number, QStringLiteral("whole number | %1 | %2 to %3")
                                          .arg(field->value())
                                          .arg(field->minimum())
                                          .arg(field->maximum())));
    }
    for (const Setting &setting : settingsOf(SettingKind::Switch)) {
        const QVariant initial = fieldOf<QCheckBox>(page, setting.field)->isChecked();
        rows.append(
                rowOf(setting, QStringLiteral("`true` or `false` | %1 |").arg(initial.toString())));
    }
    const QString level = fieldOf<QComboBox>(page, LevelSetting.field)->currentText();
    rows.append(rowOf(LevelSetting, QStringLiteral("name of a level | `%1` (%2)")
                                            .arg(QLatin1String(escaped(level)), level)));

    const QString document =
            QString::fromUtf8(readFile(QStringLiteral(PANEL_TEST_SETTINGS_DOCUMENT)));
    for (const QString &row : qAsConst(rows))
        QVERIFY2(document.contains(row), qPrintable(row));
    const QStringList names = levelNames();
    for (const QString &name : names) {
        const QRegularExpression row(
                QStringLiteral("\n\\| %1 \\(\\w+\\) \\| `%2` \\|\n")
                        .arg(name, QRegularExpression::escape(QLatin1String(escaped(name)))));
        QVERIFY2(row.match(document).hasMatch(), qPrintable(name));
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

    const QStringList names = levelNames();
    for (int item = 0; item < names.size(); ++item) {
        const QString &name = names.at(item);
        QTest::newRow(qUtf8Printable(name)) << item << oneKey(LevelSetting, escaped(name));
    }
}

void tst_SettingsFile::levelIsStoredAsEscapes()
{
    QFETCH(int, item);
    QFETCH(QByteArray, content);

    const SettingsHome home;
    const SettingsForm page;
    auto *level = fieldOf<QComboBox>(page, LevelSetting.field);

    // A change of the current item that is not the user's choice writes nothing.
    level->setCurrentIndex(item);
    QCoreApplication::processEvents();
    QCOMPARE(home.entries(), QString());

    // What the user chooses is written, also when it is what was current before.
    level->showPopup();
    QTest::keyClick(level->view(), Qt::Key_Return);
    QCOMPARE(level->currentIndex(), item);
    QCoreApplication::processEvents();
    QCOMPARE(home.read(), content);

    const SettingsForm next;
    QCOMPARE(shown(next), defaultsBut(LevelSetting.field, level->currentText()));
}

void tst_SettingsFile::changeWaitsForTheEventLoop()
{
    const SettingsHome home;
    {
        const SettingsForm page;
        fieldOf<QSpinBox>(page, "spinUpload")->setValue(OtherUpload);
        QCOMPARE(home.entries(), QString());
        QCoreApplication::processEvents();
        QCOMPARE(home.read(), QByteArray("[msg]\nuploadInterval=7\n"));
        fieldOf<QSpinBox>(page, "spinUpload")->setValue(OtherUpload + 1);
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
    fieldOf<QSpinBox>(page, "spinUpload")->setValue(OtherUpload);
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
        fieldOf<QSpinBox>(page, "spinUpload")->setValue(OtherUpload);
    }
    qputenv("HOME", formerHome);

    QCOMPARE(QDir::cleanPath(QDir(home.path()).absoluteFilePath(location)), home.path(expected));
    const QString entries = QDir(home.path(expected + QStringLiteral("/KqVantora")))
                                    .entryList(QDir::AllEntries | QDir::NoDotAndDotDot, QDir::Name)
                                    .join(QStringLiteral(", "));
    QCOMPARE(entries, QDir::isRelativePath(location) ? QStringLiteral("relative, settings.ini")
                                                     : QStringLiteral("settings.ini"));
    QCOMPARE(readFile(home.path(expected + QStringLiteral("/KqVantora/settings.ini"))),
             QByteArray("[msg]\nuploadInterval=7\n"));
}

QTEST_MAIN(tst_SettingsFile)
#include "tst_SettingsFile.moc"
