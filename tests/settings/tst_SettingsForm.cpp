#include "settings/SettingsForm.h"

#include "tests/settings/SettingsHome.h"
#include "tests/support/PrivateMember.h"
#include "ui_SettingsForm.h"

#include <QAbstractItemView>
#include <QMetaMethod>
#include <QSettings>
#include <QTranslator>
#include <QtTest>

#include <array>
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

//! The room that the page has in the window.
constexpr QSize PageSize(800, 568);

//! Notes what is asked for in the context of the page, and answers with the text in brackets.
class RecordingTranslator : public QTranslator
{
public:
    QString translate(const char *context, const char *source, const char *disambiguation,
                      int n) const override
    {
        if (qstrcmp(context, "SettingsForm") != 0)
            return {};
        texts.append(QString::fromUtf8(source));
        plain = plain && !disambiguation && n == -1;
        return QLatin1Char('[') + QString::fromUtf8(source) + QLatin1Char(']');
    }
    bool isEmpty() const override { return false; }

    mutable QStringList texts;
    mutable bool plain = true;
};

QString nameOf(const QLayoutItem *item, const Ui_SettingsForm &ui)
{
    const QList<QPair<const QSpacerItem *, QString>> spacers = {
            {ui.horizontalSpacer, QStringLiteral("horizontalSpacer")},
            {ui.horizontalSpacer_2, QStringLiteral("horizontalSpacer_2")},
            {ui.horizontalSpacer_3, QStringLiteral("horizontalSpacer_3")},
            {ui.horizontalSpacer_4, QStringLiteral("horizontalSpacer_4")},
            {ui.horizontalSpacer_5, QStringLiteral("horizontalSpacer_5")},
            {ui.horizontalSpacer_6, QStringLiteral("horizontalSpacer_6")},
            {ui.horizontalSpacer_7, QStringLiteral("horizontalSpacer_7")},
            {ui.verticalSpacer, QStringLiteral("verticalSpacer")},
    };
    for (const auto &spacer : spacers) {
        if (spacer.first == item)
            return spacer.second;
    }
    auto *asked = const_cast<QLayoutItem *>(item);
    if (asked->widget())
        return asked->widget()->objectName();
    return asked->layout() ? asked->layout()->objectName() : QString();
}

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
    void layouts_data();
    void layouts();
    void spacersAndFrames();
    void fieldsStartWithTheirDefaults();
    void fieldsHaveNames();
    void levels();
    void textsAreTranslatable();
    void translatedLevelIsFound();
    void warningShowsWhileLoggingIsOn();
    void storedSwitchShowsTheWarning();
    void nothingIsCutOff();
    void unitsStandBesideTheirFields();
    void tabFollowsTheReadingOrder();
    void keysAndWheelKeepWithinRange_data();
    void keysAndWheelKeepWithinRange();
    void typingKeepsWithinRange_data();
    void typingKeepsWithinRange();
    void choosingALevelWritesIt();
    void mouseTicksTheSwitch();

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
    const Ui_SettingsForm &form = ui();
    const std::array<const void *, 48> members = {
            &form.verticalLayout_4,
            &form.label_6,
            &form.frame_2,
            &form.verticalLayout_2,
            &form.horizontalLayout_3,
            &form.label_7,
            &form.cbLogLevel,
            &form.horizontalSpacer_3,
            &form.horizontalLayout_4,
            &form.label_8,
            &form.spinLogDays,
            &form.label_9,
            &form.horizontalSpacer_4,
            &form.line,
            &form.label,
            &form.frame,
            &form.verticalLayout,
            &form.cbRpcLog,
            &form.labelRpcLog,
            &form.horizontalLayout,
            &form.label_3,
            &form.spinRpcTimeout,
            &form.label_4,
            &form.horizontalSpacer,
            &form.horizontalLayout_2,
            &form.label_5,
            &form.spinThreadNums,
            &form.horizontalSpacer_2,
            &form.line_2,
            &form.label_10,
            &form.frame_3,
            &form.verticalLayout_3,
            &form.horizontalLayout_5,
            &form.label_11,
            &form.spinPullMessage,
            &form.label_12,
            &form.horizontalSpacer_5,
            &form.horizontalLayout_6,
            &form.label_13,
            &form.spinStatusUpdate,
            &form.label_14,
            &form.horizontalSpacer_6,
            &form.horizontalLayout_7,
            &form.label_15,
            &form.spinUpload,
            &form.label_16,
            &form.horizontalSpacer_7,
            &form.verticalSpacer,
    };
    const auto *place = reinterpret_cast<const char *>(&form);
    for (const void *member : members) {
        QCOMPARE(member, static_cast<const void *>(place));
        place += sizeof(void *);
    }
    QCOMPARE(sizeof(Ui_SettingsForm), sizeof members);
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

void tst_SettingsForm::layouts_data()
{
    QTest::addColumn<QByteArray>("className");
    QTest::addColumn<QString>("parent");
    QTest::addColumn<QString>("items");

    const auto row = [](const char *name, const char *parent, const char *items) {
        const char *className = name[0] == 'v' ? "QVBoxLayout" : "QHBoxLayout";
        QTest::newRow(name) << QByteArray(className) << QString::fromLatin1(parent)
                            << QString::fromLatin1(items);
    };
    row("verticalLayout_4", "SettingsForm",
        "label_6 frame_2 line label frame line_2 label_10 frame_3 verticalSpacer");
    row("verticalLayout_2", "frame_2", "horizontalLayout_3 horizontalLayout_4");
    row("horizontalLayout_3", "verticalLayout_2", "label_7 cbLogLevel horizontalSpacer_3");
    row("horizontalLayout_4", "verticalLayout_2", "label_8 spinLogDays label_9 horizontalSpacer_4");
    row("verticalLayout", "frame", "cbRpcLog labelRpcLog horizontalLayout horizontalLayout_2");
    row("horizontalLayout", "verticalLayout", "label_3 spinRpcTimeout label_4 horizontalSpacer");
    row("horizontalLayout_2", "verticalLayout", "label_5 spinThreadNums horizontalSpacer_2");
    row("verticalLayout_3", "frame_3", "horizontalLayout_5 horizontalLayout_6 horizontalLayout_7");
    row("horizontalLayout_5", "verticalLayout_3",
        "label_11 spinPullMessage label_12 horizontalSpacer_5");
    row("horizontalLayout_6", "verticalLayout_3",
        "label_13 spinStatusUpdate label_14 horizontalSpacer_6");
    row("horizontalLayout_7", "verticalLayout_3",
        "label_15 spinUpload label_16 horizontalSpacer_7");
}

void tst_SettingsForm::layouts()
{
    QFETCH(QByteArray, className);
    QFETCH(QString, parent);
    QFETCH(QString, items);

    auto *layout = m_page->findChild<QBoxLayout *>(QString::fromLatin1(QTest::currentDataTag()));
    QVERIFY(layout);
    QCOMPARE(QByteArray(layout->metaObject()->className()), className);
    QCOMPARE(layout->parent()->objectName(), parent);

    QStringList names;
    for (int i = 0; i < layout->count(); ++i) {
        names.append(nameOf(layout->itemAt(i), ui()));
        QCOMPARE(layout->stretch(i), 0);
        QCOMPARE(layout->itemAt(i)->alignment(), Qt::Alignment());
    }
    QCOMPARE(names.join(QLatin1Char(' ')), items);

    // What a layout has that nobody gave any spacing or margins: a window's differ from a child's.
    QWidget window;
    QWidget child(&window);
    const QVBoxLayout untouched(layout->parent() == m_page.get() ? &window : &child);
    const bool nested = qobject_cast<QLayout *>(layout->parent()) != nullptr;
    QCOMPARE(layout->spacing(), untouched.spacing());
    QCOMPARE(layout->contentsMargins(), nested ? QMargins() : untouched.contentsMargins());
}

void tst_SettingsForm::spacersAndFrames()
{
    const Ui_SettingsForm &form = ui();
    for (QSpacerItem *spacer :
         {form.horizontalSpacer, form.horizontalSpacer_2, form.horizontalSpacer_3,
          form.horizontalSpacer_4, form.horizontalSpacer_5, form.horizontalSpacer_6,
          form.horizontalSpacer_7}) {
        QCOMPARE(spacer->sizeHint(), QSize(40, 20));
        QCOMPARE(spacer->sizePolicy(), QSizePolicy(QSizePolicy::Expanding, QSizePolicy::Minimum));
    }
    QCOMPARE(form.verticalSpacer->sizeHint(), QSize(20, 40));
    QCOMPARE(form.verticalSpacer->sizePolicy(),
             QSizePolicy(QSizePolicy::Minimum, QSizePolicy::Expanding));

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
    const auto range = [](const QSpinBox *box) {
        return qMakePair(box->minimum(), box->maximum());
    };
    QCOMPARE(range(form.spinLogDays), qMakePair(10, 30));
    QCOMPARE(range(form.spinRpcTimeout), qMakePair(10, 60));
    QCOMPARE(range(form.spinThreadNums), qMakePair(1, 8));
    QCOMPARE(range(form.spinPullMessage), qMakePair(5, 30));
    QCOMPARE(range(form.spinStatusUpdate), qMakePair(1, 10));
    QCOMPARE(range(form.spinUpload), qMakePair(1, 30));
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
    RecordingTranslator translator;
    QVERIFY(QCoreApplication::installTranslator(&translator));
    {
        QWidget widget;
        Ui_SettingsForm form {};
        form.setupUi(&widget);
        QCOMPARE(widget.windowTitle(), QStringLiteral("[Form]"));
        const auto labels = widget.findChildren<QLabel *>();
        for (const QLabel *label : labels)
            QVERIFY2(label->text().startsWith(QLatin1Char('[')), qPrintable(label->text()));
        QCOMPARE(form.cbRpcLog->text(), QStringLiteral("[开启RPC日志]"));
    }
    // The title, 16 labels and the switch.
    QCOMPARE(translator.texts.size(), 18);
    QVERIFY(translator.plain);
}

void tst_SettingsForm::translatedLevelIsFound()
{
    RecordingTranslator translator;
    QVERIFY(QCoreApplication::installTranslator(&translator));
    m_home->write("[log]\nlevel=[\\x8b66\\x544a]\n");
    const SettingsForm page;
    QCOMPARE(shown(page).constFirst(), QStringLiteral("[警告]"));
    QVERIFY(translator.plain);
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

    const QString pictures = qEnvironmentVariable("PANEL_TEST_PICTURES");
    if (!pictures.isEmpty())
        QVERIFY(m_page->grab().save(pictures + QStringLiteral("/settings.png")));
}

void tst_SettingsForm::unitsStandBesideTheirFields()
{
    show();
    const Ui_SettingsForm &form = ui();
    const QList<QPair<const QWidget *, const QWidget *>> pairs = {
            {form.spinLogDays, form.label_9},      {form.spinRpcTimeout, form.label_4},
            {form.spinPullMessage, form.label_12}, {form.spinStatusUpdate, form.label_14},
            {form.spinUpload, form.label_16},
    };
    for (const auto &pair : pairs) {
        const QRect field = pair.first->geometry();
        const QRect unit = pair.second->geometry();
        QCOMPARE(unit.left() - field.right() - 1, form.horizontalLayout->spacing());
        QVERIFY(qAbs(unit.center().y() - field.center().y()) <= 1);
    }
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

void tst_SettingsForm::keysAndWheelKeepWithinRange_data()
{
    QTest::addColumn<int>("minimum");
    QTest::addColumn<int>("maximum");
    QTest::addColumn<QByteArray>("key");
    QTest::newRow("spinLogDays") << 10 << 30 << QByteArray("[log]\ndays=");
    QTest::newRow("spinRpcTimeout") << 10 << 60 << QByteArray("[rpc]\ntimeout=");
    QTest::newRow("spinThreadNums") << 1 << 8 << QByteArray("[rpc]\nthreads=");
    QTest::newRow("spinPullMessage") << 5 << 30 << QByteArray("[msg]\npullInterval=");
    QTest::newRow("spinStatusUpdate") << 1 << 10 << QByteArray("[msg]\nupdateInterval=");
    QTest::newRow("spinUpload") << 1 << 30 << QByteArray("[msg]\nuploadInterval=");
}

void tst_SettingsForm::keysAndWheelKeepWithinRange()
{
    QFETCH(int, minimum);
    QFETCH(int, maximum);
    QFETCH(QByteArray, key);

    show();
    auto *box = m_page->findChild<QSpinBox *>(QString::fromLatin1(QTest::currentDataTag()));
    box->setFocus();
    const auto wheel = [box](int turn) {
        const QPointF centre = box->rect().center();
        QWheelEvent event(centre, box->mapToGlobal(centre.toPoint()), QPoint(), QPoint(0, turn),
                          Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
        QCoreApplication::sendEvent(box, &event);
    };
    const auto file = [this] {
        QCoreApplication::processEvents();
        return m_home->read();
    };
    constexpr int Notch = 120;
    constexpr int Enough = 10;

    const auto line = [&key](int value) { return key + QByteArray::number(value) + '\n'; };
    for (int i = 0; i < Enough; ++i)
        QTest::keyClick(box, Qt::Key_PageDown);
    QCOMPARE(box->value(), minimum);
    QTest::keyClick(box, Qt::Key_Down);
    wheel(-Notch);
    QCOMPARE(box->value(), minimum);
    QCOMPARE(file(), line(minimum));
    wheel(Notch);
    QCOMPARE(file(), line(minimum + 1));

    for (int i = 0; i < Enough; ++i)
        QTest::keyClick(box, Qt::Key_PageUp);
    QCOMPARE(box->value(), maximum);
    QTest::keyClick(box, Qt::Key_Up);
    wheel(Notch);
    QCOMPARE(box->value(), maximum);
    QCOMPARE(file(), line(maximum));
    QTest::keyClick(box, Qt::Key_Down);
    QCOMPARE(file(), line(maximum - 1));
    wheel(-Notch);
    QCOMPARE(file(), line(maximum - 2));
}

void tst_SettingsForm::typingKeepsWithinRange_data()
{
    QTest::addColumn<QString>("box");
    QTest::addColumn<QString>("typed");
    QTest::addColumn<int>("value");
    QTest::addColumn<QByteArray>("content");

    // Return confirms, and a confirmed value is written also when it is what it was before.
    const QString days = QStringLiteral("spinLogDays");
    QTest::newRow("in range") << days << QStringLiteral("25") << 25
                              << QByteArray("[log]\ndays=25\n");
    QTest::newRow("too large: the last digit is refused")
            << days << QStringLiteral("299") << 29 << QByteArray("[log]\ndays=29\n");
    QTest::newRow("too small: back to what it was")
            << days << QStringLiteral("9") << 30 << QByteArray("[log]\ndays=30\n");
    QTest::newRow("nothing: back to what it was")
            << days << QString() << 30 << QByteArray("[log]\ndays=30\n");
    QTest::newRow("a sign is refused")
            << days << QStringLiteral("-12") << 12 << QByteArray("[log]\ndays=12\n");
    QTest::newRow("letters are refused")
            << days << QStringLiteral("1x5.") << 15 << QByteArray("[log]\ndays=15\n");
    const QString threads = QStringLiteral("spinThreadNums");
    QTest::newRow("digit past the end")
            << threads << QStringLiteral("9") << 5 << QByteArray("[rpc]\nthreads=5\n");
    QTest::newRow("zero") << threads << QStringLiteral("0") << 5
                          << QByteArray("[rpc]\nthreads=5\n");
    QTest::newRow("second digit") << threads << QStringLiteral("88") << 8
                                  << QByteArray("[rpc]\nthreads=8\n");
    QTest::newRow("two digits where they serve")
            << QStringLiteral("spinStatusUpdate") << QStringLiteral("10") << 10
            << QByteArray("[msg]\nupdateInterval=10\n");
}

void tst_SettingsForm::typingKeepsWithinRange()
{
    QFETCH(QString, box);
    QFETCH(QString, typed);
    QFETCH(int, value);
    QFETCH(QByteArray, content);

    show();
    auto *field = m_page->findChild<QSpinBox *>(box);
    field->setFocus();
    QTest::keyClick(field, Qt::Key_A, Qt::ControlModifier);
    QTest::keyClick(field, Qt::Key_Delete);
    QTest::keyClicks(field, typed);
    QTest::keyClick(field, Qt::Key_Return);
    QCOMPARE(field->value(), value);
    QCOMPARE(field->text(), QString::number(value));
    QCoreApplication::processEvents();
    QCOMPARE(m_home->read(), content);
}

void tst_SettingsForm::choosingALevelWritesIt()
{
    show();
    QComboBox *level = ui().cbLogLevel;
    level->setFocus();
    const auto file = [this] {
        QCoreApplication::processEvents();
        return m_home->read();
    };
    QTest::keyClick(level, Qt::Key_Down);
    QCOMPARE(level->currentIndex(), 2);
    QCOMPARE(file(), QByteArray("[log]\nlevel=\\x8b66\\x544a\n"));
    QTest::keyClick(level, Qt::Key_Up);
    QCOMPARE(level->currentIndex(), 1);
    QCOMPARE(file(), QByteArray("[log]\nlevel=\\x4fe1\\x606f\n"));

    QVERIFY(QFile::remove(m_home->file()));
    QTest::mouseClick(level, Qt::LeftButton);
    QTRY_VERIFY(level->view()->isVisible());
    QTest::keyClick(level->view(), Qt::Key_Return);
    QCOMPARE(level->currentIndex(), 1);
    QCOMPARE(file(), QByteArray("[log]\nlevel=\\x4fe1\\x606f\n"));
}

void tst_SettingsForm::mouseTicksTheSwitch()
{
    show();
    QCheckBox *check = ui().cbRpcLog;
    const QPoint mark(8, check->height() / 2);
    QTest::mouseClick(check, Qt::LeftButton, Qt::NoModifier, mark);
    QVERIFY(ui().labelRpcLog->isVisible());
    QCoreApplication::processEvents();
    QCOMPARE(m_home->read(), QByteArray("[rpc]\nenableLogs=true\n"));
    QTest::mouseClick(check, Qt::LeftButton, Qt::NoModifier, mark);
    QVERIFY(!ui().labelRpcLog->isVisible());
    QCoreApplication::processEvents();
    QCOMPARE(m_home->read(), QByteArray("[rpc]\nenableLogs=false\n"));
}

QTEST_MAIN(tst_SettingsForm)
#include "tst_SettingsForm.moc"
