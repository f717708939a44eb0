#include "settings/SettingsForm.h"

#include "tests/settings/SettingsHome.h"
#include "tests/support/AskingTranslator.h"
#include "tests/support/LayoutDump.h"
#include "tests/support/PrivateMember.h"
#include "tests/support/waits.h"
#include "ui_SettingsForm.h"

#include <QHash>
#include <QMetaMethod>
#include <QRegularExpression>
#include <QTest>

#include <algorithm>
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
    void levelGoesByItsLabel();
    void levels();
    void textsAreTranslatable();
    void translatedLevelIsFound();
    void warningShowsWhileLoggingIsOn();
    void nothingIsCutOff();
    void tabFollowsTheReadingOrder();

private:
    Ui_SettingsForm &ui() { return *UiMember::of(*m_page); }
    //! Shows the page; whether it came up.
    bool show();

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

bool tst_SettingsForm::show()
{
    m_page->resize(PageSize);
    m_page->show();
    return QTest::qWaitForWindowActive(m_page.get(), WindowTimeoutMs);
}

void tst_SettingsForm::slotsInOrder()
{
    const QMetaObject &meta = SettingsForm::staticMetaObject;
    QStringList names;
    for (int index = meta.methodOffset(); index < meta.methodCount(); ++index) {
        QCOMPARE(meta.method(index).methodType(), QMetaMethod::Slot);
        QCOMPARE(meta.method(index).access(), QMetaMethod::Private);
        names.append(QString::fromLatin1(meta.method(index).name()));
    }
    QStringList listed;
    for (const Setting &setting : Settings)
        listed.append(QLatin1String(setting.slot));
    QCOMPARE(names.join(QStringLiteral(", ")), listed.join(QStringLiteral(", ")));
}

void tst_SettingsForm::form()
{
    QVERIFY(matchesDump(*m_page, QStringLiteral("settings/SettingsForm.txt")));

    const Ui_SettingsForm &form = ui();
    const QHash<QLayout *, QSpacerItem *> spacers = {
            {form.horizontalLayout, form.horizontalSpacer},
            {form.horizontalLayout_2, form.horizontalSpacer_2},
            {form.horizontalLayout_3, form.horizontalSpacer_3},
            {form.horizontalLayout_4, form.horizontalSpacer_4},
            {form.horizontalLayout_5, form.horizontalSpacer_5},
            {form.horizontalLayout_6, form.horizontalSpacer_6},
            {form.horizontalLayout_7, form.horizontalSpacer_7},
            {form.verticalLayout_4, form.verticalSpacer},
    };
    QCOMPARE(otherSpacers(*m_page, spacers), QString());
}

void tst_SettingsForm::givenObjectNameStays()
{
    QWidget named;
    named.setObjectName(QStringLiteral("mine"));
    Ui_SettingsForm form {};
    form.setupUi(&named);
    QCOMPARE(named.objectName(), QStringLiteral("mine"));
}

//! For assistive tools, as the accessible names of the other fields, which are in the dump.
void tst_SettingsForm::levelGoesByItsLabel()
{
    QCOMPARE(ui().label_7->buddy(), ui().cbLogLevel);
}

void tst_SettingsForm::levels()
{
    const QComboBox *level = ui().cbLogLevel;
    QStringList items;
    for (int item = 0; item < level->count(); ++item) {
        items.append(level->itemText(item));
        QCOMPARE(level->itemData(item), QVariant(item));
    }
    const QString names = items.join(QStringLiteral(", "));
    // QCOMPARE would show the names as escapes.
    QVERIFY2(names == QStringLiteral("调试, 信息, 警告, 错误, 致命"), qPrintable(names));
}

void tst_SettingsForm::textsAreTranslatable()
{
    QStringList expected = formTexts(*m_page);
    QVERIFY(!expected.isEmpty());
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
    const QString level = QStringLiteral("SettingsForm|%1|").arg(ui().cbLogLevel->itemText(2));
    m_home->write(oneKey(LevelSetting, escaped(level)));
    const SettingsForm page;
    QCOMPARE(page.findChild<QComboBox *>()->currentText(), level);
}

void tst_SettingsForm::warningShowsWhileLoggingIsOn()
{
    m_home->write("[rpc]\nenableLogs=true\n");
    m_page = std::make_unique<SettingsForm>();
    QVERIFY(show());
    QVERIFY(ui().labelRpcLog->isVisible());
    for (const bool on : {false, true, false}) {
        ui().cbRpcLog->setChecked(on);
        QCOMPARE(ui().labelRpcLog->isVisible(), on);
    }
}

void tst_SettingsForm::nothingIsCutOff()
{
    ui().cbRpcLog->setChecked(true);
    QVERIFY(show());
    const QList<QWidget *> widgets = m_page->findChildren<QWidget *>(
            QRegularExpression(QStringLiteral("^(label|cb|spin|frame)")));
    QVERIFY(!widgets.isEmpty());
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
    QVERIFY(show());
    QList<QWidget *> fields;
    for (const Setting &setting : Settings)
        fields.append(fieldOf<QWidget>(*m_page, setting.field));
    std::sort(fields.begin(), fields.end(), [this](const QWidget *a, const QWidget *b) {
        return a->mapTo(m_page.get(), QPoint()).y() < b->mapTo(m_page.get(), QPoint()).y();
    });
    QCOMPARE(fields.first(), ui().cbLogLevel);

    fields.first()->setFocus();
    // Around, back to the first.
    fields.append(fields.first());
    for (int i = 1; i < fields.size(); ++i) {
        QTest::keyClick(m_page->focusWidget(), Qt::Key_Tab);
        QCOMPARE(m_page->focusWidget()->objectName(), fields.at(i)->objectName());
    }
}

QTEST_MAIN(tst_SettingsForm)
#include "tst_SettingsForm.moc"
