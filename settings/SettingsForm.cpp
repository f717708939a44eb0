#include "settings/SettingsForm.h"

#include "ui_SettingsForm.h"

#include <QDir>
#include <QFileInfo>
#include <QLockFile>
#include <QSettings>
#include <QStandardPaths>

#include <array>

namespace {

//! A key of the settings file, its default and, for a number, its accepted range.
struct Setting
{
    const char *key = nullptr;
    int initial = 0;
    int minimum = 0;
    int maximum = 0;
};

constexpr Setting LogLevel = {"log/level", 1}; // index into LevelNames
constexpr Setting LogDays = {"log/days", 30, 10, 30};
constexpr Setting RpcLogs = {"rpc/enableLogs", false};
constexpr Setting RpcTimeout = {"rpc/timeout", 30, 10, 60}; // seconds
constexpr Setting RpcThreads = {"rpc/threads", 5, 1, 8};
constexpr Setting MsgPull = {"msg/pullInterval", 10, 5, 30}; // minutes
constexpr Setting MsgUpdate = {"msg/updateInterval", 3, 1, 10}; // seconds
constexpr Setting MsgUpload = {"msg/uploadInterval", 3, 1, 30}; // minutes

//! As shown and as stored in the file.
constexpr std::array<const char *, 5> LevelNames = {
        QT_TRANSLATE_NOOP("SettingsForm", "调试"), QT_TRANSLATE_NOOP("SettingsForm", "信息"),
        QT_TRANSLATE_NOOP("SettingsForm", "警告"), QT_TRANSLATE_NOOP("SettingsForm", "错误"),
        QT_TRANSLATE_NOOP("SettingsForm", "致命"),
};

//! An unsigned lock of this age has no owner: signing takes microseconds.
constexpr int AbandonedLockMs = 1000;

void setUpNumber(QSpinBox *field, const Setting &setting)
{
    field->setRange(setting.minimum, setting.maximum);
    field->setValue(setting.initial);
}

QVariant read(const QSettings *settings, const Setting &setting, const QVariant &initial)
{
    return settings->value(QLatin1String(setting.key), initial);
}

void readNumber(const QSettings *settings, const Setting &setting, QSpinBox *field)
{
    const int number = read(settings, setting, setting.initial).toInt();
    // setValue() would clamp a value out of range; it must be ignored.
    if (number >= setting.minimum && number <= setting.maximum)
        field->setValue(number);
}

void write(QSettings *settings, const Setting &setting, const QVariant &value)
{
    settings->setValue(QLatin1String(setting.key), value);
}

/*!
    Removes a lock of \a file that was left by a panel killed between creating and signing it.
    QSettings would wait half a minute for it before the first change.
*/
void removeAbandonedLock(const QString &file)
{
    const QString path = file + QStringLiteral(".lock");
    if (!QFileInfo::exists(path) || QFileInfo(path).size() > 0)
        return;
    QLockFile lock(path);
    lock.setStaleLockTime(AbandonedLockMs);
    // Replaces a stale lock; the new one is removed with this object.
    lock.tryLock(0);
}

} // namespace

SettingsForm::SettingsForm(QWidget *parent)
    : QWidget(parent)
    , ui(new Ui_SettingsForm)
{
    ui->setupUi(this);

    int level = 0;
    for (const char *name : LevelNames)
        ui->cbLogLevel->addItem(tr(name), level++);
    ui->cbLogLevel->setCurrentIndex(LogLevel.initial);
    setUpNumber(ui->spinLogDays, LogDays);
    ui->cbRpcLog->setChecked(RpcLogs.initial);
    ui->labelRpcLog->hide();
    setUpNumber(ui->spinRpcTimeout, RpcTimeout);
    setUpNumber(ui->spinThreadNums, RpcThreads);
    setUpNumber(ui->spinPullMessage, MsgPull);
    setUpNumber(ui->spinStatusUpdate, MsgUpdate);
    setUpNumber(ui->spinUpload, MsgUpload);
    nameFields();

    connect(ui->cbLogLevel, SIGNAL(activated(int)), this, SLOT(logLevelChanged()));
    connect(ui->spinLogDays, SIGNAL(valueChanged(int)), this, SLOT(logDaysChanged()));
    connect(ui->cbRpcLog, &QCheckBox::stateChanged, this, &SettingsForm::rpcLogChanged);
    connect(ui->spinRpcTimeout, SIGNAL(valueChanged(int)), this, SLOT(rpcTimeoutChanged()));
    connect(ui->spinThreadNums, SIGNAL(valueChanged(int)), this, SLOT(rpcThreadsChanged()));
    connect(ui->spinPullMessage, SIGNAL(valueChanged(int)), this, SLOT(msgPullChanged()));
    connect(ui->spinStatusUpdate, SIGNAL(valueChanged(int)), this, SLOT(msgUpdateChanged()));
    connect(ui->spinUpload, SIGNAL(valueChanged(int)), this, SLOT(msgUploadChanged()));

    // After the connections: values that loading changes are written back and show the warning.
    loadConfig();
}

SettingsForm::~SettingsForm()
{
    delete ui;
}

//! Names each field for assistive tools by the labels beside it.
void SettingsForm::nameFields()
{
    const auto name = [](QWidget *field, const QLabel *label, const QLabel *unit) {
        field->setAccessibleName(label->text());
        if (unit)
            field->setAccessibleDescription(unit->text());
    };
    // The accessible name of a combo box is its value, so its label becomes its buddy instead.
    ui->label_7->setBuddy(ui->cbLogLevel);
    name(ui->spinLogDays, ui->label_8, ui->label_9);
    name(ui->spinRpcTimeout, ui->label_3, ui->label_4);
    name(ui->spinThreadNums, ui->label_5, nullptr);
    name(ui->spinPullMessage, ui->label_11, ui->label_12);
    name(ui->spinStatusUpdate, ui->label_13, ui->label_14);
    name(ui->spinUpload, ui->label_15, ui->label_16);
}

void SettingsForm::loadConfig()
{
    const QString folder = QStandardPaths::writableLocation(QStandardPaths::ConfigLocation)
                           + QStringLiteral("/KqVantora");
    // Both calls' paths are the same: a relative one is created a second time inside itself.
    QDir(folder).mkpath(folder);
    const QString file = QStringLiteral("%1/settings.ini").arg(folder);
    removeAbandonedLock(file);
    settings = new QSettings(file, QSettings::IniFormat, this);
    if (settings->status() != QSettings::NoError)
        return;

    const QString level = read(settings, LogLevel, tr(LevelNames[LogLevel.initial])).toString();
    const int item = ui->cbLogLevel->findText(level);
    if (item >= 0)
        ui->cbLogLevel->setCurrentIndex(item);
    readNumber(settings, LogDays, ui->spinLogDays);
    ui->cbRpcLog->setChecked(read(settings, RpcLogs, bool(RpcLogs.initial)).toBool());
    readNumber(settings, RpcTimeout, ui->spinRpcTimeout);
    readNumber(settings, RpcThreads, ui->spinThreadNums);
    readNumber(settings, MsgPull, ui->spinPullMessage);
    readNumber(settings, MsgUpdate, ui->spinStatusUpdate);
    readNumber(settings, MsgUpload, ui->spinUpload);
}

void SettingsForm::saveConfig()
{
    // Empty: each slot below already hands its change to QSettings.
}

void SettingsForm::logLevelChanged()
{
    write(settings, LogLevel, ui->cbLogLevel->currentText());
}

void SettingsForm::logDaysChanged()
{
    write(settings, LogDays, ui->spinLogDays->value());
}

void SettingsForm::rpcLogChanged()
{
    ui->labelRpcLog->setVisible(ui->cbRpcLog->isChecked());
    write(settings, RpcLogs, ui->cbRpcLog->isChecked());
}

void SettingsForm::rpcTimeoutChanged()
{
    write(settings, RpcTimeout, ui->spinRpcTimeout->value());
}

void SettingsForm::rpcThreadsChanged()
{
    write(settings, RpcThreads, ui->spinThreadNums->value());
}

void SettingsForm::msgPullChanged()
{
    write(settings, MsgPull, ui->spinPullMessage->value());
}

void SettingsForm::msgUpdateChanged()
{
    write(settings, MsgUpdate, ui->spinStatusUpdate->value());
}

void SettingsForm::msgUploadChanged()
{
    write(settings, MsgUpload, ui->spinUpload->value());
}
