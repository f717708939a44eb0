#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>
#include <QWidget>

#include <array>
#include <vector>

/*!
    A configuration folder that XDG_CONFIG_HOME names while the object lives, for settings files
    whose bytes a test chooses. Whatever can't be had fails the test by qFatal().
*/
class SettingsHome
{
public:
    //! Creates the folder, without the panel's own folder in it.
    SettingsHome();
    //! Restores XDG_CONFIG_HOME and removes the folder.
    ~SettingsHome();

    SettingsHome(const SettingsHome &) = delete;
    SettingsHome &operator=(const SettingsHome &) = delete;

    //! The configuration folder, or \a name in it.
    QString path(const QString &name = QString()) const;
    //! The panel's folder in it.
    QString folder() const;
    //! The settings file.
    QString file() const;

    //! Replaces the settings file by \a content, creating the panel's folder where it is missing.
    void write(const QByteArray &content) const;
    //! The settings file's bytes; a null array when there is no such file.
    QByteArray read() const;
    /*!
        What changes whenever the settings file is written or replaced: its inode, size, and time
        of modification in nanoseconds. Empty when there is no such file.
    */
    QByteArray state() const;
    //! The names of what lies in the panel's folder.
    QString entries() const;

private:
    QTemporaryDir m_dir;
    QByteArray m_formerConfig;
};

enum class SettingKind { Level, Number, Switch };

//! A setting: its key in the file, its field on the page, and the slot that writes it.
struct Setting
{
    SettingKind kind;
    const char *section;
    const char *name;
    const char *field;
    const char *slot;
};

//! The only list to choose from. Its tests go by the levels: a second list needs its own.
inline constexpr Setting LevelSetting {SettingKind::Level, "log", "level", "cbLogLevel",
                                       "logLevelChanged"};

//! All of them, in the order of the page and of the slots.
inline constexpr std::array Settings = {
        LevelSetting,
        Setting {SettingKind::Number, "log", "days", "spinLogDays", "logDaysChanged"},
        Setting {SettingKind::Switch, "rpc", "enableLogs", "cbRpcLog", "rpcLogChanged"},
        Setting {SettingKind::Number, "rpc", "timeout", "spinRpcTimeout", "rpcTimeoutChanged"},
        Setting {SettingKind::Number, "rpc", "threads", "spinThreadNums", "rpcThreadsChanged"},
        Setting {SettingKind::Number, "msg", "pullInterval", "spinPullMessage", "msgPullChanged"},
        Setting {SettingKind::Number, "msg", "updateInterval", "spinStatusUpdate",
                 "msgUpdateChanged"},
        Setting {SettingKind::Number, "msg", "uploadInterval", "spinUpload", "msgUploadChanged"},
};

//! Those of one kind.
std::vector<Setting> settingsOf(SettingKind kind);

//! The field \a name of the settings page \a page.
template<typename Field>
Field *fieldOf(const QWidget &page, const char *name)
{
    auto *field = page.findChild<Field *>(QLatin1String(name));
    if (!field)
        qFatal("the page has no %s of that kind", name);
    return field;
}

//! Sets the number field \a name of \a page to \a value and lets the change be written.
void changeNumber(const QWidget &page, const char *name, int value);

//! A settings file with the key of \a setting alone.
QByteArray oneKey(const Setting &setting, const QByteArray &value);
//! \a text as a settings file holds it.
QByteArray escaped(const QString &text);

/*!
    What every field of the settings page \a page shows, each as "name=value", in reading order: the
    level's text, "true" or "false" for a switch, and the numbers.
*/
QStringList shown(const QWidget &page);

//! What a page shows that has read nothing.
QStringList defaults();
//! The same, with \a value in the field \a name.
QStringList defaultsBut(const char *name, const QString &value);
//! \a texts, with \a value in the field \a name.
QStringList replaced(QStringList texts, const char *name, const QString &value);
