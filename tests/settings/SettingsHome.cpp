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

QStringList SettingsHome::entries() const
{
    return QDir(folder()).entryList(
            QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot, QDir::Name);
}

QSpinBox *numberField(const QWidget &page, const char *name)
{
    auto *field = page.findChild<QSpinBox *>(QLatin1String(name));
    if (!field)
        qFatal("the page has no %s", name);
    return field;
}

void changeNumber(const QWidget &page, const char *name, int value)
{
    numberField(page, name)->setValue(value);
    QCoreApplication::processEvents();
}

QByteArray oneKey(const QByteArray &section, const QByteArray &name, const QByteArray &value)
{
    return '[' + section + "]\n" + name + '=' + value + '\n';
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
