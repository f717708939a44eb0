#include "settings/SettingsForm.h"

#include "ui_SettingsForm.h"

#include <QDir>
#include <QFileInfo>
#include <QLockFile>
#include <QMetaProperty>
#include <QSettings>
#include <QStandardPaths>

#include <array>

namespace {

//! A key of the settings file, its field on the page, its default and, for a number, its range.
struct Setting
{
    const char *key = nullptr;
    const char *field = nullptr;
    int initial = 0;
    int minimum = 0;
    int maximum = 0;
};

constexpr std::array Settings = {
        Setting {"log/level", "cbLogLevel", 1}, // index into LevelNames
        Setting {"log/days", "spinLogDays", 30, 10, 30},
        Setting {"rpc/enableLogs", "cbRpcLog", false},
        Setting {"rpc/timeout", "spinRpcTimeout", 30, 10, 60}, // seconds
        Setting {"rpc/threads", "spinThreadNums", 5, 1, 8},
        Setting {"msg/pullInterval", "spinPullMessage", 10, 5, 30}, // minutes
        Setting {"msg/updateInterval", "spinStatusUpdate", 3, 1, 10}, // seconds
        Setting {"msg/uploadInterval", "spinUpload", 3, 1, 30}, // minutes
};

//! As shown and as stored in the file.
constexpr std::array<const char *, 5> LevelNames = {
        QT_TRANSLATE_NOOP("SettingsForm", "调试"), QT_TRANSLATE_NOOP("SettingsForm", "信息"),
        QT_TRANSLATE_NOOP("SettingsForm", "警告"), QT_TRANSLATE_NOOP("SettingsForm", "错误"),
        QT_TRANSLATE_NOOP("SettingsForm", "致命"),
};

//! An unsigned lock of this age has no owner: signing takes microseconds.
constexpr int AbandonedLockMs = 1000;

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
    for (const Setting &setting : Settings) {
        auto *field = findChild<QWidget *>(QLatin1String(setting.field));
        if (auto *number = qobject_cast<QSpinBox *>(field)) {
            number->setRange(setting.minimum, setting.maximum);
            number->setValue(setting.initial);
        } else if (auto *list = qobject_cast<QComboBox *>(field)) {
            list->setCurrentIndex(setting.initial);
        } else if (auto *box = qobject_cast<QCheckBox *>(field)) {
            box->setChecked(setting.initial != 0);
        }
    }
    ui->labelRpcLog->hide();
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
    const QList<QHBoxLayout *> rows = findChildren<QHBoxLayout *>();
    for (const QHBoxLayout *row : rows) {
        // A label, its field, in some a unit, and a spacer.
        auto *label = qobject_cast<QLabel *>(row->itemAt(0)->widget());
        QWidget *field = row->itemAt(1)->widget();
        const auto *unit = qobject_cast<QLabel *>(row->itemAt(2)->widget());
        // The accessible name of a combo box is its value, so its label becomes its buddy instead.
        if (qobject_cast<QComboBox *>(field))
            label->setBuddy(field);
        else
            field->setAccessibleName(label->text());
        if (unit)
            field->setAccessibleDescription(unit->text());
    }
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

    for (const Setting &setting : Settings) {
        auto *field = findChild<QWidget *>(QLatin1String(setting.field));
        const QString key = QLatin1String(setting.key);
        if (auto *number = qobject_cast<QSpinBox *>(field)) {
            bool isNumber = false;
            const int value = settings->value(key, setting.initial).toInt(&isNumber);
            // setValue() would clamp a value out of range; it must be ignored.
            if (isNumber && value >= setting.minimum && value <= setting.maximum)
                number->setValue(value);
        } else if (auto *list = qobject_cast<QComboBox *>(field)) {
            list->setCurrentText(settings->value(key, list->itemText(setting.initial)).toString());
        } else if (auto *box = qobject_cast<QCheckBox *>(field)) {
            box->setChecked(settings->value(key, setting.initial != 0).toBool());
        }
    }
}

void SettingsForm::saveConfig()
{
    // Empty: each slot below already hands its change to QSettings.
}

//! Hands what \a field shows to the settings file.
void SettingsForm::write(const QWidget *field)
{
    // What a user sets: the number of a spin box, the text of a list, whether a box is checked.
    const QVariant value = field->metaObject()->userProperty().read(field);
    for (const Setting &setting : Settings) {
        if (field->objectName() == QLatin1String(setting.field))
            settings->setValue(QLatin1String(setting.key), value);
    }
}

void SettingsForm::logLevelChanged()
{
    write(ui->cbLogLevel);
}

void SettingsForm::logDaysChanged()
{
    write(ui->spinLogDays);
}

void SettingsForm::rpcLogChanged()
{
    ui->labelRpcLog->setVisible(ui->cbRpcLog->isChecked());
    write(ui->cbRpcLog);
}

void SettingsForm::rpcTimeoutChanged()
{
    write(ui->spinRpcTimeout);
}

void SettingsForm::rpcThreadsChanged()
{
    write(ui->spinThreadNums);
}

void SettingsForm::msgPullChanged()
{
    write(ui->spinPullMessage);
}

void SettingsForm::msgUpdateChanged()
{
    write(ui->spinStatusUpdate);
}

void SettingsForm::msgUploadChanged()
{
    write(ui->spinUpload);
}
