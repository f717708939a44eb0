#include "tests/settings/SettingsHome.h"
#include "tests/support/files.h"

#include <QCheckBox>
#include <QComboBox>
#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QSpinBox>

#include <sys/stat.h>

namespace {

constexpr const char *ConfigVariable = "XDG_CONFIG_HOME";

template<typename Widget>
Widget *field(const QWidget &page, const char *name)
{
    auto *widget = page.findChild<Widget *>(QLatin1String(name));
    if (!widget)
        qFatal("the page has no %s", name);
    return widget;
}

QString number(const QWidget &page, const char *name)
{
    return QString::number(field<QSpinBox>(page, name)->value());
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

QSpinBox *numberField(const QWidget &page, const char *objectName)
{
    return field<QSpinBox>(page, objectName);
}

void changeNumber(const QWidget &page, const char *objectName, int value)
{
    numberField(page, objectName)->setValue(value);
    QCoreApplication::processEvents();
}

QByteArray oneKey(const QByteArray &section, const QByteArray &name, const QByteArray &value)
{
    return '[' + section + "]\n" + name + '=' + value + '\n';
}

QStringList shown(const QWidget &page)
{
    return {field<QComboBox>(page, "cbLogLevel")->currentText(),
            number(page, "spinLogDays"),
            field<QCheckBox>(page, "cbRpcLog")->isChecked() ? QStringLiteral("on")
                                                            : QStringLiteral("off"),
            number(page, "spinRpcTimeout"),
            number(page, "spinThreadNums"),
            number(page, "spinPullMessage"),
            number(page, "spinStatusUpdate"),
            number(page, "spinUpload")};
}

QStringList defaults()
{
    return {QStringLiteral("信息"), QStringLiteral("30"), QStringLiteral("off"),
            QStringLiteral("30"),   QStringLiteral("5"),  QStringLiteral("10"),
            QStringLiteral("3"),    QStringLiteral("3")};
}

QStringList defaultsBut(int index, const QString &text)
{
    QStringList texts = defaults();
    texts[index] = text;
    return texts;
}
