#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

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

/*!
    What the eight fields of the settings page \a page show, in reading order: the level's text, the
    switch as "on" or "off", and the numbers.
*/
QStringList shown(const QWidget &page);

//! What a page shows that has read nothing.
QStringList defaults();
//! The same, with \a text in the place of field \a index.
QStringList defaultsBut(int index, const QString &text);

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
