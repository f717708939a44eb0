#include "tests/support/AskingTranslator.h"
#include "tests/support/LayoutDump.h"
#include "ui_OverviewForm.h"

#include <QTest>

namespace {

const char *const TitleSheet = "font-size:14px;\nfont-weight:bold;";
const char *const ErrorSheet = "color:red;";
const char *const NoServiceSheet = "color:rgb(117, 80, 123); \nfont:bold 12px; \n"
                                   "border: 1px solid gray;\nborder-top-width:0px;";
const char *const NoTagSheet = "color:rgb(117, 80, 123);\nfont:bold 12px;\n"
                               "border: 1px solid gray;\nborder-top-width:0px;";
const char *const ButtonSheet = "QPushButton{ \nborder: 1px solid #0078D4; \nfont-size: 14px;\n}\n"
                                "QPushButton:hover{\nbackground-color:#E5F3FF;\n}\n"
                                "QPushButton:pressed{\nbackground-color:#CCE8FF;\n}";
const char *const ProcessTableSheet =
        "QHeaderView::section {\nfont: 12px;\ncolor: white;\nheight: 36px;\n"
        "border: 1px solid white;\nbackground-color: #0078D4;\n}\n"
        "QTreeWidget {\noutline: 0px;\nselection-background-color: transparent;\n}\n\n"
        "QTreeWidget::item {\nmargin-top: 1px;\nmargin-bottom: 1px;\nmargin-left: 1px;\n"
        "margin-right: 1px;\nborder: none;\nbackground: #E7ECF7;\ncolor: black;\nheight: 40px;\n"
        "padding: 0px;\nfont-size: 12px;\n}\n\n"
        "QTreeView::branch:has-children:!has-siblings:closed,\n"
        "QTreeView::branch:closed:has-children:has-siblings{border-image: none; image: none;}\n"
        "QTreeView::branch:open:has-children:!has-siblings,\n"
        "QTreeView::branch:open:has-children:has-siblings{border-image: none; image: none;}";
const char *const NodeTableSheet =
        "QHeaderView::section {\nfont: 12px;\ncolor: white;\nheight: 36px;\n"
        "border: 1px solid white;\nbackground-color: #0078D4;\n}\n"
        "QTreeWidget {\noutline: 0px;\nselection-background-color: transparent;\n}\n\n"
        "QTreeWidget::item {\nmargin-top: 1px;\nmargin-bottom: 1px;\nmargin-left: 1px;\n"
        "margin-right:1px;\nbackground: #E7ECF7;\nborder: none;\nheight: 40px;\n"
        "padding: 0px;\nfont-size: 12px;\n}";

constexpr QSize NoLimit(QWIDGETSIZE_MAX, QWIDGETSIZE_MAX);

} // namespace

class tst_OverviewFormLayout : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void form();
    void objectName();
    void members();
    void layouts();
    void parents();
    void labels_data();
    void labels();
    void frames_data();
    void frames();
    void tables_data();
    void tables();
    void buttons_data();
    void buttons();
    void textsAreTranslatable();
    void everythingStartsVisible();
    void sizesWhenResized_data();
    void sizesWhenResized();

private:
    QWidget *m_form = nullptr;
    Ui_OverviewForm m_ui = {};
};

void tst_OverviewFormLayout::init()
{
    m_form = new QWidget;
    m_ui.setupUi(m_form);
}

void tst_OverviewFormLayout::cleanup()
{
    delete m_form;
}

void tst_OverviewFormLayout::form()
{
    QCOMPARE(m_form->size(), QSize(800, 916));
    QCOMPARE(m_form->styleSheet(), QStringLiteral("font:12px;"));
    QCOMPARE(m_form->windowTitle(), QStringLiteral("Form"));
}

void tst_OverviewFormLayout::objectName()
{
    QCOMPARE(m_form->objectName(), QStringLiteral("OverviewForm"));

    QWidget named;
    named.setObjectName(QStringLiteral("mine"));
    Ui_OverviewForm ui = {};
    ui.setupUi(&named);
    QCOMPARE(named.objectName(), QStringLiteral("mine"));
}

void tst_OverviewFormLayout::members()
{
    const auto *const expected =
            "verticalLayout_6 horizontalLayout labelOW labelOWError spacer verticalLayout "
            "treeWidgetOW labelNoService line frameService verticalLayout_3 "
            "horizontalLayout_2 labelTag labelTagError spacer verticalLayout_2 treeWidgetTag "
            "labelNoTag lineService frameWebsite verticalLayout_4 horizontalLayout_3 label "
            "spacer horizontalLayout_4 kqfwdt kqzsk spacer line_3 frameRepair "
            "verticalLayout_5 horizontalLayout_5 label_2 spacer horizontalLayout_6 xfkqfw "
            "spacer spacer";
    QCOMPARE(formMembers(&m_ui, sizeof m_ui, *m_form).join(QLatin1Char(' ')),
             QString::fromLatin1(expected));
}

void tst_OverviewFormLayout::layouts()
{
    const char *const expected = "QVBoxLayout verticalLayout_6\n"
                                 "  QHBoxLayout horizontalLayout spacing 0\n"
                                 "    QLabel labelOW\n"
                                 "    QLabel labelOWError\n"
                                 "    spacer 40x20 Expanding Minimum\n"
                                 "  QVBoxLayout verticalLayout spacing 0\n"
                                 "    QTreeWidget treeWidgetOW\n"
                                 "    QLabel labelNoService\n"
                                 "  QFrame line\n"
                                 "  QFrame frameService\n"
                                 "    QVBoxLayout verticalLayout_3 margins 0,0,0,0\n"
                                 "      QHBoxLayout horizontalLayout_2 spacing 0\n"
                                 "        QLabel labelTag\n"
                                 "        QLabel labelTagError\n"
                                 "        spacer 40x20 Expanding Minimum\n"
                                 "      QVBoxLayout verticalLayout_2 spacing 0\n"
                                 "        QTreeWidget treeWidgetTag\n"
                                 "        QLabel labelNoTag\n"
                                 "  QFrame lineService\n"
                                 "  QFrame frameWebsite\n"
                                 "    QVBoxLayout verticalLayout_4 margins 0,0,0,0\n"
                                 "      QHBoxLayout horizontalLayout_3\n"
                                 "        QLabel label\n"
                                 "        spacer 40x20 Expanding Minimum\n"
                                 "      QHBoxLayout horizontalLayout_4 spacing 20\n"
                                 "        QPushButton kqfwdt\n"
                                 "        QPushButton kqzsk\n"
                                 "        spacer 40x20 Expanding Minimum\n"
                                 "  QFrame line_3\n"
                                 "  QFrame frameRepair\n"
                                 "    QVBoxLayout verticalLayout_5 margins 0,0,0,0\n"
                                 "      QHBoxLayout horizontalLayout_5\n"
                                 "        QLabel label_2\n"
                                 "        spacer 40x20 Expanding Minimum\n"
                                 "      QHBoxLayout horizontalLayout_6 spacing 20\n"
                                 "        QPushButton xfkqfw\n"
                                 "        spacer 40x20 Expanding Minimum\n"
                                 "  spacer 20x40 Minimum Expanding\n";
    QCOMPARE(dumpLayout(*m_form), QString::fromLatin1(expected));

    // The members point at what bears their name.
    QCOMPARE(m_ui.horizontalSpacer, m_ui.horizontalLayout->itemAt(2));
    QCOMPARE(m_ui.horizontalSpacer_2, m_ui.horizontalLayout_2->itemAt(2));
    QCOMPARE(m_ui.horizontalSpacer_3, m_ui.horizontalLayout_3->itemAt(1));
    QCOMPARE(m_ui.horizontalSpacer_4, m_ui.horizontalLayout_4->itemAt(2));
    QCOMPARE(m_ui.horizontalSpacer_5, m_ui.horizontalLayout_5->itemAt(1));
    QCOMPARE(m_ui.horizontalSpacer_6, m_ui.horizontalLayout_6->itemAt(1));
    QCOMPARE(m_ui.verticalSpacer, m_ui.verticalLayout_6->itemAt(8));
}

void tst_OverviewFormLayout::parents()
{
    QCOMPARE(namedChildren(*m_form),
             (QStringList {"verticalLayout_6", "labelOW", "labelOWError", "treeWidgetOW",
                           "labelNoService", "line", "frameService", "lineService", "frameWebsite",
                           "line_3", "frameRepair"}));
    QCOMPARE(namedChildren(*m_ui.frameService),
             (QStringList {"verticalLayout_3", "labelTag", "labelTagError", "treeWidgetTag",
                           "labelNoTag"}));
    QCOMPARE(namedChildren(*m_ui.frameWebsite),
             (QStringList {"verticalLayout_4", "label", "kqfwdt", "kqzsk"}));
    QCOMPARE(namedChildren(*m_ui.frameRepair),
             (QStringList {"verticalLayout_5", "label_2", "xfkqfw"}));
}

void tst_OverviewFormLayout::labels_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("sheet");
    QTest::addColumn<QSize>("minimum");
    QTest::addColumn<QSize>("maximum");
    QTest::addColumn<bool>("centred");

    const auto add = [](const char *name, const char *text, const char *sheet, bool notice) {
        QTest::newRow(name) << QString::fromUtf8(text) << QString::fromUtf8(sheet)
                            << (notice ? QSize(0, 40) : QSize(0, 0))
                            << (notice ? QSize(16777215, 40) : NoLimit) << notice;
    };
    add("labelOW", "运行概况", TitleSheet, false);
    add("labelOWError", "(未运行)", ErrorSheet, false);
    add("labelNoService", "统一服务未启动", NoServiceSheet, true);
    add("labelTag", "服务节点", TitleSheet, false);
    add("labelTagError", "(未注册)", ErrorSheet, false);
    add("labelNoTag", "无服务节点", NoTagSheet, true);
    add("label", "常用网站", TitleSheet, false);
    add("label_2", "软件修复", TitleSheet, false);
}

void tst_OverviewFormLayout::labels()
{
    QFETCH(QString, text);
    QFETCH(QString, sheet);
    QFETCH(QSize, minimum);
    QFETCH(QSize, maximum);
    QFETCH(bool, centred);

    const auto *label = m_form->findChild<QLabel *>(QString::fromLatin1(QTest::currentDataTag()));
    QVERIFY(label);
    QCOMPARE(label->text(), text);
    QCOMPARE(label->styleSheet(), sheet);
    QCOMPARE(label->minimumSize(), minimum);
    QCOMPARE(label->maximumSize(), maximum);
    QCOMPARE(label->alignment(),
             centred ? Qt::Alignment(Qt::AlignCenter) : Qt::AlignLeft | Qt::AlignVCenter);
    QCOMPARE(label->sizePolicy(), QLabel().sizePolicy());
}

void tst_OverviewFormLayout::frames_data()
{
    QTest::addColumn<QFrame::Shape>("shape");
    QTest::addColumn<QFrame::Shadow>("shadow");
    QTest::addColumn<QString>("sheet");

    for (const char *name : {"line", "lineService", "line_3"})
        QTest::newRow(name) << QFrame::HLine << QFrame::Sunken << QString();
    QTest::newRow("frameService") << QFrame::StyledPanel << QFrame::Raised << QString();
    for (const char *name : {"frameWebsite", "frameRepair"})
        QTest::newRow(name) << QFrame::StyledPanel << QFrame::Raised
                            << QStringLiteral("border:none;");
}

void tst_OverviewFormLayout::frames()
{
    QFETCH(QFrame::Shape, shape);
    QFETCH(QFrame::Shadow, shadow);
    QFETCH(QString, sheet);

    const auto *frame = m_form->findChild<QFrame *>(QString::fromLatin1(QTest::currentDataTag()));
    QVERIFY(frame);
    QCOMPARE(frame->frameShape(), shape);
    QCOMPARE(frame->frameShadow(), shadow);
    QCOMPARE(frame->styleSheet(), sheet);
    QCOMPARE(frame->minimumSize(), QSize(0, 0));
    QCOMPARE(frame->maximumSize(), NoLimit);
}

void tst_OverviewFormLayout::tables_data()
{
    QTest::addColumn<QString>("sheet");
    QTest::addColumn<QSize>("minimum");
    QTest::addColumn<QSize>("maximum");

    QTest::newRow("treeWidgetOW") << QString::fromUtf8(ProcessTableSheet) << QSize(0, 76)
                                  << QSize(16777215, 76);
    QTest::newRow("treeWidgetTag") << QString::fromUtf8(NodeTableSheet) << QSize(0, 0) << NoLimit;
}

void tst_OverviewFormLayout::tables()
{
    QFETCH(QString, sheet);
    QFETCH(QSize, minimum);
    QFETCH(QSize, maximum);

    const auto *tree =
            m_form->findChild<QTreeWidget *>(QString::fromLatin1(QTest::currentDataTag()));
    QVERIFY(tree);
    QCOMPARE(tree->styleSheet(), sheet);
    QCOMPARE(tree->minimumSize(), minimum);
    QCOMPARE(tree->maximumSize(), maximum);
    QCOMPARE(tree->columnCount(), 1);
    QCOMPARE(tree->headerItem()->text(0), QStringLiteral("1"));
    QCOMPARE(tree->topLevelItemCount(), 0);
    QCOMPARE(tree->sizePolicy(), QTreeWidget().sizePolicy());
}

void tst_OverviewFormLayout::buttons_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("icon");

    QTest::newRow("kqfwdt") << QStringLiteral(" 朔川服务大厅")
                            << QStringLiteral(":/client/resources/dt.ico");
    QTest::newRow("kqzsk") << QStringLiteral(" 朔川知识库")
                           << QStringLiteral(":/client/resources/zsk.ico");
    QTest::newRow("xfkqfw") << QStringLiteral(" 修复朔川服务")
                            << QStringLiteral(":/client/resources/xf.ico");
}

void tst_OverviewFormLayout::buttons()
{
    QFETCH(QString, text);
    QFETCH(QString, icon);

    const auto *button =
            m_form->findChild<QPushButton *>(QString::fromLatin1(QTest::currentDataTag()));
    QVERIFY(button);
    QCOMPARE(button->text(), text);
    QCOMPARE(button->styleSheet(), QString::fromUtf8(ButtonSheet));
    QCOMPARE(button->minimumSize(), QSize(160, 80));
    QCOMPARE(button->maximumSize(), QSize(160, 80));
    QCOMPARE(button->iconSize(), QSize(32, 32));
    QCOMPARE(button->sizePolicy(), QPushButton().sizePolicy());

    const QImage shown = button->icon().pixmap(32, 32, QIcon::Normal, QIcon::Off).toImage();
    QVERIFY(!shown.isNull());
    QCOMPARE(shown, QIcon(icon).pixmap(32, 32, QIcon::Normal, QIcon::Off).toImage());
}

void tst_OverviewFormLayout::textsAreTranslatable()
{
    QStringList expected = formTexts(*m_form);
    // The title, eight labels and three buttons.
    QCOMPARE(expected.size(), 12);
    for (QString &text : expected)
        text = QStringLiteral("OverviewForm|%1|").arg(text);
    AskingTranslator translator;
    QVERIFY(QCoreApplication::installTranslator(&translator));
    m_ui.retranslateUi(m_form);
    QCOMPARE(formTexts(*m_form), expected);
    // The placeholder column titles are not for translators.
    QCOMPARE(m_ui.treeWidgetOW->headerItem()->text(0), QStringLiteral("1"));
}

void tst_OverviewFormLayout::everythingStartsVisible()
{
    const QList<QWidget *> widgets = m_form->findChildren<QWidget *>();
    for (const QWidget *widget : widgets) {
        if (!widget->objectName().isEmpty()
            && !widget->objectName().startsWith(QLatin1String("qt_")))
            QVERIFY2(!widget->isHidden(), qPrintable(widget->objectName()));
    }
}

void tst_OverviewFormLayout::sizesWhenResized_data()
{
    QTest::addColumn<QSize>("size");

    QTest::newRow("as made") << QSize(800, 916);
    QTest::newRow("wide") << QSize(1600, 916);
    QTest::newRow("tall") << QSize(800, 1600);
    QTest::newRow("small") << QSize(500, 760);
}

void tst_OverviewFormLayout::sizesWhenResized()
{
    QFETCH(QSize, size);

    m_form->setAttribute(Qt::WA_DontShowOnScreen);
    m_form->resize(size);
    m_form->show();
    QCOMPARE(m_form->size(), size);

    QCOMPARE(m_ui.treeWidgetOW->height(), 76);
    QCOMPARE(m_ui.labelNoService->height(), 40);
    QCOMPARE(m_ui.labelNoTag->height(), 40);
    for (const QPushButton *button : {m_ui.kqfwdt, m_ui.kqzsk, m_ui.xfkqfw})
        QCOMPARE(button->size(), QSize(160, 80));

    // What is left over in height goes to the node table and to the bottom alone.
    for (const QWidget *widget :
         {static_cast<QWidget *>(m_ui.labelOW), static_cast<QWidget *>(m_ui.frameWebsite),
          static_cast<QWidget *>(m_ui.frameRepair)}) {
        if (size.height() >= 916)
            QCOMPARE(widget->height(), widget->sizeHint().height());
    }
    if (size.height() > 916) {
        QVERIFY(m_ui.treeWidgetTag->height() > m_ui.treeWidgetTag->sizeHint().height());
        QVERIFY(m_ui.verticalSpacer->geometry().height() > 40);
    }

    // The buttons stand at the left, 20 pixels apart; the spacers behind them take the rest.
    QCOMPARE(m_ui.kqfwdt->x(), 0);
    QCOMPARE(m_ui.kqzsk->x(), 180);
    QCOMPARE(m_ui.xfkqfw->x(), 0);
    QCOMPARE(m_ui.horizontalSpacer_4->geometry().right(), m_ui.frameWebsite->width() - 1);
    QCOMPARE(m_ui.horizontalSpacer_6->geometry().right(), m_ui.frameRepair->width() - 1);
}

QTEST_MAIN(tst_OverviewFormLayout)
#include "tst_OverviewFormLayout.moc"
