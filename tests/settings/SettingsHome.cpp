#include "tests/settings/SettingsHome.h"

#include "settings/SettingsForm.h"
#include "tests/support/files.h"

#include <QCheckBox>
#include <QComboBox>
#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QMetaProperty>
#include <QSpinBox>

#include <algorithm>
#include <iterator>

#include <sys/stat.h>

namespace {

constexpr const char *ConfigVariable = "XDG_CONFIG_HOME";

bool isField(const QWidget *widget)
{
    return qobject_cast<const QComboBox *>(widget) || qobject_cast<const QCheckBox *>(widget)
           || qobject_cast<const QSpinBox *>(widget);
}

} // namespace

SettingsHome::SettingsHome()
    : m_formerConfig(qgetenv(ConfigVariable))
{
    if (!m_dir.isValid())
        qFatal("can't make a configuration folder");
    qputenv(ConfigVariable, QFile::encodeName(m_dir.path()));
}

SettingsHome::~SettingsHome()
{
    qputenv(ConfigVariable, m_formerConfig);
}

QString SettingsHome::path(const QString &name) const
{
    return name.isEmpty() ? m_dir.path() : m_dir.filePath(name);
}

QString SettingsHome::folder() const
{
    return m_dir.filePath(QStringLiteral("KqVantora"));
}

QString SettingsHome::file() const
{
    return folder() + QStringLiteral("/settings.ini");
}

void SettingsHome::write(const QByteArray &content) const
{
    if (!QDir().mkpath(folder()))
        qFatal("can't make %s", qPrintable(folder()));
    writeFile(file(), content);
}

QByteArray SettingsHome::read() const
{
    return readFile(file());
}

QByteArray SettingsHome::state() const
{
    struct stat status = {};
    if (stat(QFile::encodeName(file()).constData(), &status) != 0)
        return {};
    QByteArray text;
    for (const long value : {static_cast<long>(status.st_ino), static_cast<long>(status.st_size),
                             status.st_mtim.tv_sec, status.st_mtim.tv_nsec})
        text += QByteArray::number(static_cast<qlonglong>(value)) + ' ';
    return text;
}

QString SettingsHome::entries() const
{
    return QDir(folder())
            .entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
                       QDir::Name)
            .join(QStringLiteral(", "));
}

std::vector<Setting> settingsOf(SettingKind kind)
{
    std::vector<Setting> found;
    std::copy_if(Settings.begin(), Settings.end(), std::back_inserter(found),
                 [kind](const Setting &setting) { return setting.kind == kind; });
    return found;
}

void changeNumber(const QWidget &page, const char *name, int value)
{
    fieldOf<QSpinBox>(page, name)->setValue(value);
    QCoreApplication::processEvents();
}

QByteArray oneKey(const Setting &setting, const QByteArray &value)
{
    return QByteArray("[") + setting.section + "]\n" + setting.name + '=' + value + '\n';
}

QByteArray escaped(const QString &text)
{
    QByteArray bytes;
    for (const QChar character : text) {
        if (character.unicode() < 0x80)
            bytes += character.toLatin1();
        else
            bytes += "\\x" + QByteArray::number(character.unicode(), 16);
    }
    return bytes;
}

QStringList shown(const QWidget &page)
{
    QStringList texts;
    const QList<QWidget *> widgets = page.findChildren<QWidget *>();
    for (const QWidget *widget : widgets) {
        if (isField(widget)) {
            const QVariant value = widget->metaObject()->userProperty().read(widget);
            texts.append(widget->objectName() + QLatin1Char('=') + value.toString());
        }
    }
    return texts;
}

QStringList defaults()
{
    static const QStringList texts = [] {
        const SettingsHome home;
        return shown(SettingsForm());
    }();
    return texts;
}

QStringList defaultsBut(const char *name, const QString &value)
{
    return replaced(defaults(), name, value);
}

QStringList replaced(QStringList texts, const char *name, const QString &value)
{
    const QString start = QLatin1String(name) + QLatin1Char('=');
    int count = 0;
    for (QString &text : texts) {
        if (text.startsWith(start)) {
            text = start + value;
            ++count;
        }
    }
    if (count != 1)
        qFatal("%d fields are called %s", count, name);
    return texts;
}
