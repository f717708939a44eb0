#include "settings/SettingsForm.h"

#include "tests/settings/SettingsHome.h"
#include "tests/support/AskingTranslator.h"
#include "tests/support/LayoutDump.h"
#include "tests/support/PrivateMember.h"
#include "tests/support/waits.h"
#include "ui_SettingsForm.h"

#include <QMetaMethod>
#include <QRegularExpression>
#include <QTest>

#include <memory>

struct UiMember : PrivateMember<UiMember, Ui_SettingsForm *, SettingsForm>
{
};
template struct ExposePrivateMember<UiMember, &SettingsForm::ui>;

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
    void givenObjectNameStays();
    void form();
    void fieldsHaveNames();
    void levels();
    void textsAreTranslatable();
    void translatedLevelIsFound();
    void warningShowsWhileLoggingIsOn();
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
    QVERIFY(QTest::qWaitForWindowActive(m_page.get(), WindowTimeoutMs));
}

void tst_SettingsForm::slotsInOrder()
{
    const QMetaObject &meta = SettingsForm::staticMetaObject;
    QByteArrayList names;
    for (int index = meta.methodOffset(); index < meta.methodCount(); ++index) {
        QCOMPARE(meta.method(index).methodType(), QMetaMethod::Slot);
        QCOMPARE(meta.method(index).access(), QMetaMethod::Private);
        names.append(meta.method(index).name());
    }
    QCOMPARE(names, QByteArrayList({"logLevelChanged", "logDaysChanged", "rpcLogChanged",
                                    "rpcTimeoutChanged", "rpcThreadsChanged", "msgPullChanged",
                                    "msgUpdateChanged", "msgUploadChanged"}));
}

void tst_SettingsForm::form()
{
    QVERIFY(matchesDump(*m_page, QStringLiteral("settings/SettingsForm.txt")));

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

void tst_SettingsForm::givenObjectNameStays()
{
    QWidget named;
    named.setObjectName(QStringLiteral("mine"));
    Ui_SettingsForm form {};
    form.setupUi(&named);
    QCOMPARE(named.objectName(), QStringLiteral("mine"));
}

//! What assistive tools tell of each field.
void tst_SettingsForm::fieldsHaveNames()
{
    const Ui_SettingsForm &form = ui();
    const QList<QPair<const QWidget *, QStringList>> fields = {
            {form.spinLogDays, {"保留时间", "天"}},
            {form.spinRpcTimeout, {"超时时间", "秒"}},
            {form.spinThreadNums, {"任务调度线程数", ""}},
            {form.spinPullMessage, {"消息拉取频率", "分钟/次"}},
            {form.spinStatusUpdate, {"消息状态更新频率", "秒/次"}},
            {form.spinUpload, {"回执上传频率", "分钟/次"}},
    };
    for (const auto &[field, texts] : fields) {
        QCOMPARE(field->accessibleName(), texts.at(0));
        QCOMPARE(field->accessibleDescription(), texts.at(1));
    }
    QCOMPARE(form.label_7->buddy(), form.cbLogLevel);
}

void tst_SettingsForm::levels()
{
    const QComboBox *level = ui().cbLogLevel;
    const QStringList names = {"调试", "信息", "警告", "错误", "致命"};
    QCOMPARE(level->count(), names.size());
    for (int i = 0; i < names.size(); ++i) {
        QCOMPARE(level->itemText(i), names.at(i));
        QCOMPARE(level->itemData(i), QVariant(i));
    }
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
    m_home->write("[rpc]\nenableLogs=true\n");
    m_page = std::make_unique<SettingsForm>();
    show();
    QVERIFY(ui().labelRpcLog->isVisible());
    for (const bool on : {false, true, false}) {
        ui().cbRpcLog->setChecked(on);
        QCOMPARE(ui().labelRpcLog->isVisible(), on);
    }
}

void tst_SettingsForm::nothingIsCutOff()
{
    ui().cbRpcLog->setChecked(true);
    show();
    const QList<QWidget *> widgets = m_page->findChildren<QWidget *>(
            QRegularExpression(QStringLiteral("^(label|cb|spin|frame)")));
    QCOMPARE(widgets.size(), 27);
    for (const QWidget *widget : widgets) {
        const QSize needed(widget->sizeHint().width(), widget->minimumSizeHint().height());
        QVERIFY2(widget->size().expandedTo(needed) == widget->size(),
                 qPrintable(widget->objectName()));
        QVERIFY2(widget->parentWidget()->rect().contains(widget->geometry()),
                 qPrintable(widget->objectName()));
    }
    QCOMPARE(m_page->size(), PageSize);
}

void tst_SettingsForm::tabFollowsTheReadingOrder()
{
    show();
    const Ui_SettingsForm &form = ui();
    const QList<QWidget *> order = {
            form.spinLogDays,     form.cbRpcLog,         form.spinRpcTimeout, form.spinThreadNums,
            form.spinPullMessage, form.spinStatusUpdate, form.spinUpload,     form.cbLogLevel};
    form.cbLogLevel->setFocus();
    for (QWidget *next : order) {
        QTest::keyClick(m_page->focusWidget(), Qt::Key_Tab);
        QCOMPARE(m_page->focusWidget(), next);
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
    QFETCH(const int, index);
    const NumberSetting &number = NumberSettings[size_t(index)];
    show();
    QSpinBox *field = numberField(*m_page, number.objectName);
    const auto verifyTyped = [&](int typed, int expected) {
        field->selectAll();
        QTest::keyClicks(field, QString::number(typed));
        QTest::keyClick(field, Qt::Key_Return);
        QCOMPARE(field->value(), expected);
        QCoreApplication::processEvents();
        QCOMPARE(m_home->read(), oneKey(number.section, number.name, QByteArray::number(expected)));
    };

    verifyTyped(number.minimum, number.minimum);
    // Refused: a number too small in whole, a digit too many by itself.
    verifyTyped(number.minimum - 1, number.minimum);
    verifyTyped(number.maximum * 10, number.maximum);
}

QTEST_MAIN(tst_SettingsForm)
#include "tst_SettingsForm.moc"
