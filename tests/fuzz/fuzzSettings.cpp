// A settings page that loads any bytes, and then changes one number. The entries are libFuzzer's.

#include "settings/SettingsForm.h"
#include "tests/settings/SettingsHome.h"
#include "tests/support/files.h"

#include <QApplication>
#include <QComboBox>
#include <QSettings>
#include <QSpinBox>

#include <cstdio>

extern "C" int LLVMFuzzerInitialize(int *argc, char ***argv);
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size);

namespace {

//! A key that the page doesn't know, ahead of each input.
const QString UnknownKey = QStringLiteral("aa/unknown");
constexpr const char *UnknownLines = "[aa]\nunknown=kept\n";

[[noreturn]] void fail(const char *what, const QByteArray &content)
{
    std::fprintf(stderr, "%s, with the file:\n%s\n", what, content.constData());
    abort();
}

QString keyOf(const Setting &setting)
{
    return QLatin1String(setting.section) + QLatin1Char('/') + QLatin1String(setting.name);
}

//! What each field must show: its value of \a settings where that is accepted, else its default.
QStringList expectedFields(const SettingsForm &page, const QSettings &settings)
{
    QStringList expected = defaults();
    if (settings.status() != QSettings::NoError)
        return expected;
    for (const Setting &number : settingsOf(SettingKind::Number)) {
        const auto *field = fieldOf<QSpinBox>(page, number.field);
        bool isNumber = false;
        const int value = settings.value(keyOf(number)).toInt(&isNumber);
        if (isNumber && value >= field->minimum() && value <= field->maximum())
            expected = replaced(expected, number.field, QString::number(value));
    }
    for (const Setting &setting : settingsOf(SettingKind::Switch)) {
        const QVariant isOn = settings.value(keyOf(setting)).toBool();
        if (settings.contains(keyOf(setting)))
            expected = replaced(expected, setting.field, isOn.toString());
    }
    const QString level = settings.value(keyOf(LevelSetting)).toString();
    if (fieldOf<QComboBox>(page, LevelSetting.field)->findText(level) >= 0)
        expected = replaced(expected, LevelSetting.field, level);
    return expected;
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int * /*argc*/, char *** /*argv*/)
{
    static int count = 1;
    static char name[] = "fuzz";
    static char *arguments[] = {name, nullptr};
    qputenv("QT_QPA_PLATFORM", "offscreen");
    // Qt tells of each byte that it can't decode.
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext &, const QString &) {});
    // Never deleted: the fuzzer ends the process from within.
    new QApplication(count, arguments);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QByteArray content =
            UnknownLines + QByteArray(reinterpret_cast<const char *>(data), int(size));
    const std::vector<Setting> numbers = settingsOf(SettingKind::Number);
    const Setting &number = numbers[size % numbers.size()];
    // QSettings remembers what it has read by the path: each look needs a path of its own.
    const SettingsHome home;
    home.write(content);
    writeFile(home.path(QStringLiteral("before")), content);
    const QSettings before(home.path(QStringLiteral("before")), QSettings::IniFormat);
    int value = 0;
    {
        const SettingsForm page;
        if (shown(page) != expectedFields(page, before))
            fail("the page shows something else", content);
        const auto *field = fieldOf<QSpinBox>(page, number.field);
        value = field->value() < field->maximum() ? field->value() + 1 : field->minimum();
        changeNumber(page, number.field, value);
    }
    writeFile(home.path(QStringLiteral("after")), home.read());
    const QSettings after(home.path(QStringLiteral("after")), QSettings::IniFormat);
    if (after.value(UnknownKey) != before.value(UnknownKey))
        fail("an unknown key is lost", content);
    if (after.value(keyOf(number)) != value)
        fail("the change is not in the file", content);
    return 0;
}
