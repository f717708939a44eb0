#include "settings/SettingsForm.h"

#include "tests/settings/SettingsHome.h"
#include "tests/support/AskingTranslator.h"
#include "tests/support/LayoutDump.h"
#include "tests/support/PrivateMember.h"
#include "ui_SettingsForm.h"

#include <QAbstractItemView>
#include <QFileInfo>
#include <QMetaMethod>
#include <QPointer>
#include <QRegularExpression>
#include <QSettings>
#include <QTest>

#include <memory>

struct UiMember : PrivateMember<UiMember, Ui_SettingsForm *, SettingsForm>
{
};
template struct ExposePrivateMember<UiMember, &SettingsForm::ui>;

struct SettingsMember : PrivateMember<SettingsMember, QSettings *, SettingsForm>
{
};
template struct ExposePrivateMember<SettingsMember, &SettingsForm::settings>;

namespace {

//! The page's size in the window.
constexpr QSize PageSize(800, 568);

} // namespace

class tst_SettingsForm : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void slotsInOrder();
    void formMembersInOrder();
    void settingsBelongToThePage();
    void givenObjectNameStays();
    void widgets_data();
    void widgets();
    void layouts();
    void frames();
    void fieldsStartWithTheirDefaults();
    void fieldsHaveNames();
    void levels();
    void textsAreTranslatable();
    void translatedLevelIsFound();
    void warningShowsWhileLoggingIsOn();
    void storedSwitchShowsTheWarning();
    void nothingIsCutOff();
    void tabFollowsTheReadingOrder();
    void inputKeepsWithinRange_data();
    void inputKeepsWithinRange();

private:
    Ui_SettingsForm &ui() { return *UiMember::of(*m_page); }
    void show();

    std::unique_ptr<SettingsHome> m_home;
    std::unique_ptr<SettingsForm> m_page;
};

void tst_SettingsForm::init()
{
    m_home = std::make_unique<SettingsHome>();
    m_page = std::make_unique<SettingsForm>();
}

void tst_SettingsForm::cleanup()
{
    m_page.reset();
    m_home.reset();
}

void tst_SettingsForm::show()
{
    m_page->resize(PageSize);
    m_page->show();
    QVERIFY(QTest::qWaitForWindowActive(m_page.get()));
}

void tst_SettingsForm::slotsInOrder()
{
    const QMetaObject &meta = SettingsForm::staticMetaObject;
    QCOMPARE(meta.className(), "SettingsForm");
    QCOMPARE(meta.superClass(), &QWidget::staticMetaObject);
    QStringList names;
    for (int index = meta.methodOffset(); index < meta.methodCount(); ++index) {
        const QMetaMethod method = meta.method(index);
        QCOMPARE(method.methodType(), QMetaMethod::Slot);
        QCOMPARE(method.access(), QMetaMethod::Private);
        QCOMPARE(method.returnType(), int(QMetaType::Void));
        names.append(QString::fromLatin1(method.methodSignature()));
    }
    QCOMPARE(names,
             QStringList({QStringLiteral("logLevelChanged()"), QStringLiteral("logDaysChanged()"),
                          QStringLiteral("rpcLogChanged()"), QStringLiteral("rpcTimeoutChanged()"),
                          QStringLiteral("rpcThreadsChanged()"), QStringLiteral("msgPullChanged()"),
                          QStringLiteral("msgUpdateChanged()"),
                          QStringLiteral("msgUploadChanged()")}));
    QCOMPARE(meta.propertyCount(), meta.propertyOffset());
}

void tst_SettingsForm::formMembersInOrder()
{
    const auto *const expected =
            "verticalLayout_4 label_6 frame_2 verticalLayout_2 horizontalLayout_3 label_7 "
            "cbLogLevel spacer horizontalLayout_4 label_8 spinLogDays label_9 spacer line "
            "label frame verticalLayout cbRpcLog labelRpcLog horizontalLayout label_3 "
            "spinRpcTimeout label_4 spacer horizontalLayout_2 label_5 spinThreadNums spacer "
            "line_2 label_10 frame_3 verticalLayout_3 horizontalLayout_5 label_11 "
            "spinPullMessage label_12 spacer horizontalLayout_6 label_13 spinStatusUpdate "
            "label_14 spacer horizontalLayout_7 label_15 spinUpload label_16 spacer spacer";
    QCOMPARE(formMembers(&ui(), sizeof(Ui_SettingsForm), *m_page).join(QLatin1Char(' ')),
             QString::fromLatin1(expected));
}

void tst_SettingsForm::settingsBelongToThePage()
{
    const QPointer<QSettings> settings = SettingsMember::of(*m_page);
    QVERIFY(settings);
    QCOMPARE(settings->parent(), m_page.get());
    m_page.reset();
    QVERIFY(!settings);
}

void tst_SettingsForm::givenObjectNameStays()
{
    QCOMPARE(m_page->objectName(), QStringLiteral("SettingsForm"));

    QWidget named;
    named.setObjectName(QStringLiteral("mine"));
    Ui_SettingsForm form {};
    form.setupUi(&named);
    QCOMPARE(named.objectName(), QStringLiteral("mine"));
    QCOMPARE(named.size(), QSize(400, 504));
    QCOMPARE(named.windowTitle(), QStringLiteral("Form"));
    QCOMPARE(named.styleSheet(), QString());
}

void tst_SettingsForm::widgets_data()
{
    QTest::addColumn<QByteArray>("className");
    QTest::addColumn<QString>("parent");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("styleSheet");

    const auto row = [](const char *name, const char *className, const char *parent,
                        const char *text = "", const char *styleSheet = "") {
        QTest::newRow(name) << QByteArray(className) << QString::fromLatin1(parent)
                            << QString::fromUtf8(text) << QString::fromLatin1(styleSheet);
    };
    const char *const page = "SettingsForm";
    row("label_6", "QLabel", page, "日志设置", "font:bold;");
    row("frame_2", "QFrame", page);
    row("label_7", "QLabel", "frame_2", "日志级别");
    row("cbLogLevel", "QComboBox", "frame_2");
    row("label_8", "QLabel", "frame_2", "保留时间");
    row("spinLogDays", "QSpinBox", "frame_2");
    row("label_9", "QLabel", "frame_2", "天");
    row("line", "QFrame", page);
    row("label", "QLabel", page, "RPC设置", "font:bold;");
    row("frame", "QFrame", page);
    row("cbRpcLog", "QCheckBox", "frame", "开启RPC日志");
    row("labelRpcLog", "QLabel", "frame", "RPC日志输出频繁，会占用较大的硬盘空间",
        "color:gray;font:10px;");
    row("label_3", "QLabel", "frame", "超时时间");
    row("spinRpcTimeout", "QSpinBox", "frame");
    row("label_4", "QLabel", "frame", "秒");
    row("label_5", "QLabel", "frame", "任务调度线程数");
    row("spinThreadNums", "QSpinBox", "frame");
    row("line_2", "QFrame", page);
    row("label_10", "QLabel", page, "消息推送", "font:bold;");
    row("frame_3", "QFrame", page);
    row("label_11", "QLabel", "frame_3", "消息拉取频率");
    row("spinPullMessage", "QSpinBox", "frame_3");
    row("label_12", "QLabel", "frame_3", "分钟/次");
    row("label_13", "QLabel", "frame_3", "消息状态更新频率");
    row("spinStatusUpdate", "QSpinBox", "frame_3");
    row("label_14", "QLabel", "frame_3", "秒/次");
    row("label_15", "QLabel", "frame_3", "回执上传频率");
    row("spinUpload", "QSpinBox", "frame_3");
    row("label_16", "QLabel", "frame_3", "分钟/次");
}

void tst_SettingsForm::widgets()
{
    QFETCH(QByteArray, className);
    QFETCH(QString, parent);
    QFETCH(QString, text);
    QFETCH(QString, styleSheet);

    const auto *widget = m_page->findChild<QWidget *>(QString::fromLatin1(QTest::currentDataTag()));
    QVERIFY(widget);
    QCOMPARE(QByteArray(widget->metaObject()->className()), className);
    QCOMPARE(widget->parentWidget()->objectName(), parent);
    QCOMPARE(widget->styleSheet(), styleSheet);
    QCOMPARE(widget->minimumSize(), QSize(0, 0));
    QCOMPARE(widget->maximumSize(), QSize(QWIDGETSIZE_MAX, QWIDGETSIZE_MAX));
    if (!text.isEmpty())
        QCOMPARE(widget->property("text").toString(), text);
    if (const auto *number = qobject_cast<const QSpinBox *>(widget)) {
        QCOMPARE(number->prefix(), QString());
        QCOMPARE(number->suffix(), QString());
        QCOMPARE(number->specialValueText(), QString());
        QCOMPARE(number->singleStep(), 1);
    }
}

void tst_SettingsForm::layouts()
{
    const char *const expected = "QVBoxLayout verticalLayout_4\n"
                                 "  QLabel label_6\n"
                                 "  QFrame frame_2\n"
                                 "    QVBoxLayout verticalLayout_2\n"
                                 "      QHBoxLayout horizontalLayout_3\n"
                                 "        QLabel label_7\n"
                                 "        QComboBox cbLogLevel\n"
                                 "        spacer 40x20 Expanding Minimum\n"
                                 "      QHBoxLayout horizontalLayout_4\n"
                                 "        QLabel label_8\n"
                                 "        QSpinBox spinLogDays\n"
                                 "        QLabel label_9\n"
                                 "        spacer 40x20 Expanding Minimum\n"
                                 "  QFrame line\n"
                                 "  QLabel label\n"
                                 "  QFrame frame\n"
                                 "    QVBoxLayout verticalLayout\n"
                                 "      QCheckBox cbRpcLog\n"
                                 "      QLabel labelRpcLog\n"
                                 "      QHBoxLayout horizontalLayout\n"
                                 "        QLabel label_3\n"
                                 "        QSpinBox spinRpcTimeout\n"
                                 "        QLabel label_4\n"
                                 "        spacer 40x20 Expanding Minimum\n"
                                 "      QHBoxLayout horizontalLayout_2\n"
                                 "        QLabel label_5\n"
                                 "        QSpinBox spinThreadNums\n"
                                 "        spacer 40x20 Expanding Minimum\n"
                                 "  QFrame line_2\n"
                                 "  QLabel label_10\n"
                                 "  QFrame frame_3\n"
                                 "    QVBoxLayout verticalLayout_3\n"
                                 "      QHBoxLayout horizontalLayout_5\n"
                                 "        QLabel label_11\n"
                                 "        QSpinBox spinPullMessage\n"
                                 "        QLabel label_12\n"
                                 "        spacer 40x20 Expanding Minimum\n"
                                 "      QHBoxLayout horizontalLayout_6\n"
                                 "        QLabel label_13\n"
                                 "        QSpinBox spinStatusUpdate\n"
                                 "        QLabel label_14\n"
                                 "        spacer 40x20 Expanding Minimum\n"
                                 "      QHBoxLayout horizontalLayout_7\n"
                                 "        QLabel label_15\n"
                                 "        QSpinBox spinUpload\n"
                                 "        QLabel label_16\n"
                                 "        spacer 40x20 Expanding Minimum\n"
                                 "  spacer 20x40 Minimum Expanding\n";
    // The layouts have a style's own spacing and margins, the items neither stretch nor alignment.
    QCOMPARE(dumpLayout(*m_page), QString::fromLatin1(expected));

    const Ui_SettingsForm &form = ui();
    QCOMPARE(form.horizontalSpacer, form.horizontalLayout->itemAt(3));
    QCOMPARE(form.horizontalSpacer_2, form.horizontalLayout_2->itemAt(2));
    QCOMPARE(form.horizontalSpacer_3, form.horizontalLayout_3->itemAt(2));
    QCOMPARE(form.horizontalSpacer_4, form.horizontalLayout_4->itemAt(3));
    QCOMPARE(form.horizontalSpacer_5, form.horizontalLayout_5->itemAt(3));
    QCOMPARE(form.horizontalSpacer_6, form.horizontalLayout_6->itemAt(3));
    QCOMPARE(form.horizontalSpacer_7, form.horizontalLayout_7->itemAt(3));
    QCOMPARE(form.verticalSpacer, form.verticalLayout_4->itemAt(8));
}

void tst_SettingsForm::frames()
{
    const Ui_SettingsForm &form = ui();
    for (const QFrame *frame : {form.frame, form.frame_2, form.frame_3}) {
        QCOMPARE(frame->frameShape(), QFrame::StyledPanel);
        QCOMPARE(frame->frameShadow(), QFrame::Raised);
    }
    for (const QFrame *line : {form.line, form.line_2}) {
        QCOMPARE(line->frameShape(), QFrame::HLine);
        QCOMPARE(line->frameShadow(), QFrame::Sunken);
    }
}

void tst_SettingsForm::fieldsStartWithTheirDefaults()
{
    const Ui_SettingsForm &form = ui();
    QCOMPARE(shown(*m_page), defaults());
    for (const NumberSetting &number : NumberSettings) {
        const QSpinBox *field = numberField(*m_page, number.objectName);
        QCOMPARE(field->value(), number.initial);
        QCOMPARE(field->minimum(), number.minimum);
        QCOMPARE(field->maximum(), number.maximum);
    }
    QCOMPARE(form.cbRpcLog->checkState(), Qt::Unchecked);
    QVERIFY(!form.cbRpcLog->isTristate());
}

//! What assistive tools tell of each field.
void tst_SettingsForm::fieldsHaveNames()
{
    const Ui_SettingsForm &form = ui();
    const auto told = [](const QWidget *field) {
        return QStringList {field->accessibleName(), field->accessibleDescription()};
    };
    const auto texts = [](const char *name, const char *description) {
        return QStringList {QString::fromUtf8(name), QString::fromUtf8(description)};
    };
    QCOMPARE(form.label_7->buddy(), form.cbLogLevel);
    QCOMPARE(told(form.spinLogDays), texts("保留时间", "天"));
    QCOMPARE(told(form.spinRpcTimeout), texts("超时时间", "秒"));
    QCOMPARE(told(form.spinThreadNums), texts("任务调度线程数", ""));
    QCOMPARE(told(form.spinPullMessage), texts("消息拉取频率", "分钟/次"));
    QCOMPARE(told(form.spinStatusUpdate), texts("消息状态更新频率", "秒/次"));
    QCOMPARE(told(form.spinUpload), texts("回执上传频率", "分钟/次"));
}

void tst_SettingsForm::levels()
{
    const QComboBox *level = ui().cbLogLevel;
    const QStringList names = {QStringLiteral("调试"), QStringLiteral("信息"),
                               QStringLiteral("警告"), QStringLiteral("错误"),
                               QStringLiteral("致命")};
    QCOMPARE(level->count(), names.size());
    for (int i = 0; i < names.size(); ++i) {
        QCOMPARE(level->itemText(i), names.at(i));
        QCOMPARE(level->itemData(i), QVariant(i));
    }
    QCOMPARE(level->currentIndex(), 1);
    QVERIFY(!level->isEditable());
}

void tst_SettingsForm::textsAreTranslatable()
{
    QStringList expected = formTexts(*m_page);
    // The title, 16 labels and the switch.
    QCOMPARE(expected.size(), 18);
    for (QString &text : expected)
        text = QStringLiteral("SettingsForm|%1|").arg(text);
    AskingTranslator translator;
    QVERIFY(QCoreApplication::installTranslator(&translator));
    ui().retranslateUi(m_page.get());
    QCOMPARE(formTexts(*m_page), expected);
}

void tst_SettingsForm::translatedLevelIsFound()
{
    AskingTranslator translator;
    QVERIFY(QCoreApplication::installTranslator(&translator));
    m_home->write("[log]\nlevel=SettingsForm|\\x8b66\\x544a|\n");
    const SettingsForm page;
    QCOMPARE(shown(page).constFirst(), QStringLiteral("SettingsForm|警告|"));
}

void tst_SettingsForm::warningShowsWhileLoggingIsOn()
{
    show();
    const QLabel *warning = ui().labelRpcLog;
    QVERIFY(!warning->isVisible());
    for (const bool on : {true, false, true}) {
        ui().cbRpcLog->setChecked(on);
        QCOMPARE(warning->isVisible(), on);
    }
    QVERIFY(warning->y() >= ui().cbRpcLog->geometry().bottom());
}

void tst_SettingsForm::storedSwitchShowsTheWarning()
{
    m_home->write("[rpc]\nenableLogs=true\n");
    m_page = std::make_unique<SettingsForm>();
    QVERIFY(!ui().labelRpcLog->isHidden());
    show();
    QVERIFY(ui().labelRpcLog->isVisible());
    QCOMPARE(ui().labelRpcLog->palette().color(QPalette::WindowText), QColor(128, 128, 128));
}

void tst_SettingsForm::nothingIsCutOff()
{
    ui().cbRpcLog->setChecked(true);
    show();
    const QList<QWidget *> widgets = m_page->findChildren<QWidget *>(
            QRegularExpression(QStringLiteral("^(label|cb|spin|frame)")));
    QCOMPARE(widgets.size(), 27);
    for (const QWidget *widget : widgets) {
        QVERIFY2(widget->width() >= widget->sizeHint().width(), qPrintable(widget->objectName()));
        QVERIFY2(widget->height() >= widget->minimumSizeHint().height(),
                 qPrintable(widget->objectName()));
        QVERIFY2(widget->parentWidget()->rect().contains(widget->geometry()),
                 qPrintable(widget->objectName()));
    }
    QCOMPARE(m_page->size(), PageSize);

    const QString pictures = qEnvironmentVariable("PANEL_TEST_SCREENSHOTS");
    if (!pictures.isEmpty())
        QVERIFY(m_page->grab().save(pictures + QStringLiteral("/settings.png")));
}

void tst_SettingsForm::tabFollowsTheReadingOrder()
{
    show();
    const Ui_SettingsForm &form = ui();
    const QList<QWidget *> order = {
            form.cbLogLevel,     form.spinLogDays,     form.cbRpcLog,         form.spinRpcTimeout,
            form.spinThreadNums, form.spinPullMessage, form.spinStatusUpdate, form.spinUpload};
    order.first()->setFocus();
    for (int i = 1; i <= order.size(); ++i) {
        QTest::keyClick(m_page->focusWidget(), Qt::Key_Tab);
        QCOMPARE(m_page->focusWidget(), order.at(i % order.size()));
    }
    for (int i = order.size() - 1; i >= 0; --i) {
        QTest::keyClick(m_page->focusWidget(), Qt::Key_Backtab, Qt::ShiftModifier);
        QCOMPARE(m_page->focusWidget(), order.at(i));
    }
}

void tst_SettingsForm::inputKeepsWithinRange_data()
{
    QTest::addColumn<int>("index");
    for (size_t i = 0; i < NumberSettings.size(); ++i)
        QTest::newRow(NumberSettings[i].objectName) << int(i);
}

void tst_SettingsForm::inputKeepsWithinRange()
{
    QFETCH(int, index);
    const NumberSetting &number = NumberSettings[size_t(index)];
    show();
    QSpinBox *field = numberField(*m_page, number.objectName);
    field->setFocus();
    const auto verify = [&](int value) {
        QCOMPARE(field->value(), value);
        QCoreApplication::processEvents();
        QCOMPARE(m_home->read(), oneKey(number.section, number.name, QByteArray::number(value)));
    };
    const auto press = [field](Qt::Key key) {
        constexpr int Enough = 10;
        for (int i = 0; i < Enough; ++i)
            QTest::keyClick(field, key);
    };
    const auto type = [field](int value) {
        field->selectAll();
        QTest::keyClicks(field, QString::number(value));
        QTest::keyClick(field, Qt::Key_Return);
    };

    press(Qt::Key_PageDown);
    verify(number.minimum);
    press(Qt::Key_PageUp);
    verify(number.maximum);
    QTest::keyClick(field, Qt::Key_Down);
    verify(number.maximum - 1);
    type(number.minimum);
    verify(number.minimum);
    // Refused: a number too small in whole, a digit too many by itself.
    type(number.minimum - 1);
    verify(number.minimum);
    type(number.maximum * 10);
    verify(number.maximum);
}

QTEST_MAIN(tst_SettingsForm)
#include "tst_SettingsForm.moc"
