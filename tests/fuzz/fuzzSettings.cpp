#include "tests/fuzz/fuzzSettings.h"

#include "settings/SettingsForm.h"
#include "tests/support/files.h"

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QFile>
#include <QMap>
#include <QSettings>
#include <QSpinBox>
#include <QTemporaryDir>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <optional>

namespace {

using Entries = QMap<QByteArray, QByteArray>;

struct Number
{
    const char *field;
    const char *key;
    int initial;
    int minimum;
    int maximum;
};

constexpr std::array<Number, 6> Numbers = {{{"spinLogDays", "log/days", 30, 10, 30},
                                            {"spinRpcTimeout", "rpc/timeout", 30, 10, 60},
                                            {"spinThreadNums", "rpc/threads", 5, 1, 8},
                                            {"spinPullMessage", "msg/pullInterval", 10, 5, 30},
                                            {"spinStatusUpdate", "msg/updateInterval", 3, 1, 10},
                                            {"spinUpload", "msg/uploadInterval", 3, 1, 30}}};
constexpr const char *SwitchKey = "rpc/enableLogs";
constexpr const char *LevelKey = "log/level";

//! What files are made of, for inputs that choose among them.
constexpr const char *Words[] = {"[log]\n",
                                 "[rpc]\n",
                                 "[msg]\n",
                                 "[zz]\n",
                                 "[General]\n",
                                 "days=",
                                 "timeout=",
                                 "threads=",
                                 "pullInterval=",
                                 "updateInterval=",
                                 "uploadInterval=",
                                 "enableLogs=",
                                 "level=",
                                 "other=",
                                 "more=",
                                 "x=",
                                 "10\n",
                                 "30\n",
                                 "60\n",
                                 "7\n",
                                 "1\n",
                                 "0\n",
                                 "-1\n",
                                 "4294967316\n",
                                 "true\n",
                                 "false\n",
                                 "True\n",
                                 "no\n",
                                 "word\n",
                                 "two words\n",
                                 "\n",
                                 "; note\n",
                                 "\\x8b66\\x544a\n",
                                 "\\x4fe1\\x606f\n",
                                 "\"quoted\"\n",
                                 "a, b\n",
                                 "@ByteArray(x)\n",
                                 "@Invalid()\n",
                                 "%41=",
                                 "\\",
                                 "[log\n",
                                 "=",
                                 " ",
                                 "\r\n"};

[[noreturn]] void fail(const char *what, const QByteArray &content)
{
    std::fprintf(stderr, "%s, with a file of %d bytes in base 64: %s\n", what, content.size(),
                 content.toBase64().constData());
    abort();
}

QByteArray composed(const uint8_t *data, size_t size)
{
    QByteArray content;
    for (size_t i = 0; i < size; ++i)
        content += Words[data[i] % std::size(Words)];
    return content;
}

bool isPlain(const QByteArray &text, const char *more)
{
    for (const char c : text) {
        const bool isWord =
                (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9');
        if (!isWord && !QByteArray(more).contains(c))
            return false;
    }
    return true;
}

//! Whether \a value is one of two levels of \a key as the file holds them; other escapes may mean
//! anything.
bool isLevel(const QByteArray &key, const QByteArray &value)
{
    return key == LevelKey && (value == "\\x8b66\\x544a" || value == "\\x4fe1\\x606f");
}

/*!
    The keys and values of \a content where it is beyond doubt what they are: sections, keys of
   plain words, each once, values of plain words, comments of whole lines. Read without any of Qt's
   own reading of such files.
*/
std::optional<Entries> entriesOf(const QByteArray &content)
{
    if (content.contains('\r')) // which ends a line too
        return std::nullopt;
    Entries entries;
    QByteArray section;
    const QList<QByteArray> lines = content.split('\n');
    for (const QByteArray &line : lines) {
        if (line.isEmpty() || line.startsWith(';'))
            continue;
        if (line.startsWith('[') && line.endsWith(']')) {
            section = line.mid(1, line.size() - 2);
            if (section.isEmpty() || !isPlain(section, "") || section.toLower() == "general")
                return std::nullopt;
            continue;
        }
        const int equals = line.indexOf('=');
        if (equals <= 0 || section.isEmpty())
            return std::nullopt;
        const QByteArray key = section + '/' + line.left(equals);
        const QByteArray value = line.mid(equals + 1);
        if (!isPlain(line.left(equals), "") || !isPlain(value, " -.\\") || value != value.trimmed()
            || (value.contains('\\') && !isLevel(key, value)) || entries.contains(key))
            return std::nullopt;
        entries.insert(key, value);
    }
    return entries;
}

bool isKnown(const QByteArray &key)
{
    for (const Number &number : Numbers) {
        if (key == number.key)
            return true;
    }
    return key == SwitchKey || key == LevelKey;
}

int shownNumber(const SettingsForm &page, const Number &number)
{
    return page.findChild<QSpinBox *>(QLatin1String(number.field))->value();
}

//! Aborts unless each field of \a page shows its initial value, or the value in \a settings where
//! that is accepted.
void checkFields(const SettingsForm &page, const QSettings &settings, const QByteArray &content)
{
    const bool isReadable = settings.status() == QSettings::NoError;
    for (const Number &number : Numbers) {
        const int value = settings.value(QLatin1String(number.key), number.initial).toInt();
        const bool isAccepted = isReadable && value >= number.minimum && value <= number.maximum;
        if (shownNumber(page, number) != (isAccepted ? value : number.initial))
            fail(number.field, content);
    }
    const bool isOn = isReadable && settings.value(QLatin1String(SwitchKey), false).toBool();
    if (page.findChild<QCheckBox *>(QStringLiteral("cbRpcLog"))->isChecked() != isOn)
        fail("cbRpcLog", content);
    const auto *levels = page.findChild<QComboBox *>(QStringLiteral("cbLogLevel"));
    const QString level = settings.value(QLatin1String(LevelKey)).toString();
    const bool isListed = isReadable && levels->findText(level) >= 0;
    if (levels->currentText() != (isListed ? level : QStringLiteral("信息")))
        fail("cbLogLevel", content);
}

//! A configuration folder that no page has seen, while the object lives.
class InputFolder
{
public:
    InputFolder()
    {
        static quint64 count = 0;
        m_path = root() + QLatin1Char('/') + QString::number(++count);
        if (!QDir().mkpath(folder()))
            qFatal("can't make %s", qPrintable(folder()));
        qputenv("XDG_CONFIG_HOME", QFile::encodeName(m_path));
    }
    ~InputFolder() { QDir(m_path).removeRecursively(); }
    Q_DISABLE_COPY_MOVE(InputFolder)

    //! In memory where the system has such a folder.
    static QString root()
    {
        static const QTemporaryDir dir((QDir(QStringLiteral("/dev/shm")).exists()
                                                ? QStringLiteral("/dev/shm")
                                                : QDir::tempPath())
                                       + QStringLiteral("/panel-fuzz.XXXXXX"));
        return dir.path();
    }

    [[nodiscard]] QString folder() const { return m_path + QStringLiteral("/KqVantora"); }
    [[nodiscard]] QString file() const { return folder() + QStringLiteral("/settings.ini"); }
    //! The path for a copy of the file, which the page doesn't see.
    [[nodiscard]] QString copy() const { return m_path + QStringLiteral("/copy"); }

private:
    QString m_path;
};

void checkFile(const Entries &before, const Number &changed, int value, const QByteArray &after,
               const QByteArray &content)
{
    const std::optional<Entries> entries = entriesOf(after);
    if (!entries)
        fail("a well-formed file is none any more", content);
    for (auto entry = before.cbegin(); entry != before.cend(); ++entry) {
        if (!isKnown(entry.key()) && entries->value(entry.key(), "lost") != entry.value())
            fail("an unknown key is lost", content);
        if (isKnown(entry.key()) && !entries->contains(entry.key()))
            fail("a known key is lost", content);
    }
    if (entries->value(changed.key) != QByteArray::number(value))
        fail("the change is not in the file", content);
}

void ignoreMessage(QtMsgType /*type*/, const QMessageLogContext & /*context*/,
                   const QString & /*text*/)
{
}

} // namespace

QtMessageHandler ignoreMessages()
{
    return qInstallMessageHandler(ignoreMessage);
}

void fuzzSettingsInitialize()
{
    static int count = 3;
    static char name[] = "fuzz";
    static char option[] = "-platform";
    static char platform[] = "offscreen";
    static char *arguments[] = {name, option, platform, nullptr};
    ignoreMessages();
    // Never deleted: the fuzzer ends the process from within.
    new QApplication(count, arguments);
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    if (size == 0)
        return 0;
    const QByteArray content =
            *data % 2 == 0 ? QByteArray(reinterpret_cast<const char *>(data + 1), int(size - 1))
                           : composed(data + 1, size - 1);
    const Number &number = Numbers[size % Numbers.size()];
    int value = 0;
    QByteArray written;
    {
        const InputFolder folder;
        writeFile(folder.file(), content);
        writeFile(folder.copy(), content);
        const QSettings settings(folder.copy(), QSettings::IniFormat);
        {
            const SettingsForm page;
            checkFields(page, settings, content);
            value = shownNumber(page, number);
            value = value < number.maximum ? value + 1 : number.minimum;
            page.findChild<QSpinBox *>(QLatin1String(number.field))->setValue(value);
        }
        written = readFile(folder.file());
    }
    if (const std::optional<Entries> entries = entriesOf(content))
        checkFile(*entries, number, value, written, content);

    // Elsewhere, as for a panel that has just started: what Qt has read it remembers by the path.
    const InputFolder folder;
    writeFile(folder.file(), written);
    writeFile(folder.copy(), written);
    const QSettings settings(folder.copy(), QSettings::IniFormat);
    const SettingsForm page;
    checkFields(page, settings, content);
    if (shownNumber(page, number) != value)
        fail("the change doesn't come back", content);
    return 0;
}
