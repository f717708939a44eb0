#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

#include <array>

class QSpinBox;
class QWidget;

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
    //! What lies in the panel's folder, by name.
    QStringList entries() const;

private:
    QTemporaryDir m_dir;
    QByteArray m_formerConfig;
};

//! A number among the settings: its key in the file, and its field on the page.
struct NumberSetting
{
    const char *section;
    const char *name;
    const char *field;
};

inline constexpr std::array NumberSettings = {
        NumberSetting {"log", "days", "spinLogDays"},
        NumberSetting {"rpc", "timeout", "spinRpcTimeout"},
        NumberSetting {"rpc", "threads", "spinThreadNums"},
        NumberSetting {"msg", "pullInterval", "spinPullMessage"},
        NumberSetting {"msg", "updateInterval", "spinStatusUpdate"},
        NumberSetting {"msg", "uploadInterval", "spinUpload"},
};

//! The fields of the settings that are no numbers.
inline constexpr const char *LevelField = "cbLogLevel";
inline constexpr const char *SwitchField = "cbRpcLog";

//! A level of logging, as the page shows it and as the file holds it.
struct Level
{
    const char *name;
    const char *stored;
};

inline constexpr std::array Levels = {
        Level {"调试", "\\x8c03\\x8bd5"}, Level {"信息", "\\x4fe1\\x606f"},
        Level {"警告", "\\x8b66\\x544a"}, Level {"错误", "\\x9519\\x8bef"},
        Level {"致命", "\\x81f4\\x547d"},
};

//! The number field \a name of the settings page \a page.
QSpinBox *numberField(const QWidget &page, const char *name);

//! Sets the number field \a name of \a page to \a value and lets the change be written.
void changeNumber(const QWidget &page, const char *name, int value);

//! A settings file with a single key.
QByteArray oneKey(const QByteArray &section, const QByteArray &name, const QByteArray &value);

/*!
    What every field of the settings page \a page shows, each as "name=value", in reading order: the
    level's text, "true" or "false" for the switch, and the numbers.
*/
QStringList shown(const QWidget &page);

//! What a page shows that has read nothing.
QStringList defaults();
//! The same, with \a value in the field \a name.
QStringList defaultsBut(const char *name, const QString &value);
//! \a texts, with \a value in the field \a name.
QStringList replaced(QStringList texts, const char *name, const QString &value);
