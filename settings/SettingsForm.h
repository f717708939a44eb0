#pragma once

#include <QWidget>

class QSettings;
class Ui_SettingsForm;

/*!
    The settings page: shows what the daemon's settings file holds and writes each change of the
    user to it, key by key; there is nothing to confirm.

    The file is settings.ini in the folder KqVantora under the user's configuration folder. It is
    read once, while the page is constructed: what another program changes later is neither shown
    nor overwritten until the user changes that very field. A change reaches the disk at the next
    pass of the event loop, and at the latest when the page is destroyed. What can't be read or
    written is not reported. docs/settings-file.md describes the file.
*/
class SettingsForm : public QWidget
{
    Q_OBJECT

public:
    /*!
        Builds the page, creates the settings file's folder where it is missing, and loads the file.
        \a parent is the owner.
    */
    explicit SettingsForm(QWidget *parent = nullptr);
    //! Writes pending changes.
    ~SettingsForm() override;

    /*!
        Opens the settings file and shows its values; called once, by the constructor. A key that is
        missing or not accepted leaves its field unchanged and stays as it is in the file; a number
        or switch other than the default is written back, a level is not. A file that can't be
        opened or parsed changes no field; later changes are still handed to it.
    */
    void loadConfig();
    //! Does nothing: each change is already written.
    void saveConfig();

private slots:
    void logLevelChanged();
    void logDaysChanged();
    void rpcLogChanged();
    void rpcTimeoutChanged();
    void rpcThreadsChanged();
    void msgPullChanged();
    void msgUpdateChanged();
    void msgUploadChanged();

private:
    void nameFields();
    void write(const QWidget *field);

    Ui_SettingsForm *ui;
    QSettings *settings = nullptr;
};
