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

//! The fields in reading order, as the index of shown().
enum Field {
    LogLevel,
    LogDays,
    RpcLogs,
    RpcTimeout,
    RpcThreads,
    MsgPull,
    MsgUpdate,
    MsgUpload,
    FieldCount
};

//! A number among the settings: its key in the file, its field on the page, default and range.
struct NumberSetting
{
    const char *section;
    const char *name;
    const char *objectName;
    Field field;
    int initial;
    int minimum;
    int maximum;
};

constexpr std::array<NumberSetting, 6> NumberSettings = {{
        {"log", "days", "spinLogDays", LogDays, 30, 10, 30},
        {"rpc", "timeout", "spinRpcTimeout", RpcTimeout, 30, 10, 60},
        {"rpc", "threads", "spinThreadNums", RpcThreads, 5, 1, 8},
        {"msg", "pullInterval", "spinPullMessage", MsgPull, 10, 5, 30},
        {"msg", "updateInterval", "spinStatusUpdate", MsgUpdate, 3, 1, 10},
        {"msg", "uploadInterval", "spinUpload", MsgUpload, 3, 1, 30},
}};

//! The field \a objectName of the settings page \a page.
QSpinBox *numberField(const QWidget &page, const char *objectName);

//! Sets \a field of \a page to \a value and lets the change be written.
void changeNumber(const QWidget &page, const char *objectName, int value);

//! A settings file with a single key.
QByteArray oneKey(const QByteArray &section, const QByteArray &name, const QByteArray &value);

/*!
    What the eight fields of the settings page \a page show, in reading order: the level's text, the
    switch as "on" or "off", and the numbers.
*/
QStringList shown(const QWidget &page);

//! What a page shows that has read nothing.
QStringList defaults();
//! The same, with \a text in the place of field \a index.
QStringList defaultsBut(int index, const QString &text);
