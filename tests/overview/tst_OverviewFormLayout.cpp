#include "tests/support/AskingTranslator.h"
#include "tests/support/LayoutDump.h"
#include "ui_OverviewForm.h"

#include <QTest>

namespace {

constexpr auto TitleSheet = "font-size:14px;\nfont-weight:bold;";
constexpr auto NoServiceSheet = "color:rgb(117, 80, 123); \nfont:bold 12px; \n"
                                "border: 1px solid gray;\nborder-top-width:0px;";
constexpr auto NoTagSheet = "color:rgb(117, 80, 123);\nfont:bold 12px;\n"
                            "border: 1px solid gray;\nborder-top-width:0px;";
constexpr auto ButtonSheet = "QPushButton{ \nborder: 1px solid #0078D4; \nfont-size: 14px;\n}\n"
                             "QPushButton:hover{\nbackground-color:#E5F3FF;\n}\n"
                             "QPushButton:pressed{\nbackground-color:#CCE8FF;\n}";
constexpr auto ProcessTableSheet =
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
constexpr auto NodeTableSheet =
        "QHeaderView::section {\nfont: 12px;\ncolor: white;\nheight: 36px;\n"
        "border: 1px solid white;\nbackground-color: #0078D4;\n}\n"
        "QTreeWidget {\noutline: 0px;\nselection-background-color: transparent;\n}\n\n"
        "QTreeWidget::item {\nmargin-top: 1px;\nmargin-bottom: 1px;\nmargin-left: 1px;\n"
        "margin-right:1px;\nbackground: #E7ECF7;\nborder: none;\nheight: 40px;\n"
        "padding: 0px;\nfont-size: 12px;\n}";

constexpr auto NoticeSize = "minimumSize=0×40 maximumSize=max×40";
constexpr auto ButtonSize = "minimumSize=160×80 maximumSize=160×80";

// The arguments are, in this order, the texts above.
constexpr auto ExpectedForm = R"(800×916
QWidget OverviewForm windowTitle=Form styleSheet=font:12px;
QVBoxLayout verticalLayout_6
  QHBoxLayout horizontalLayout spacing 0
    QLabel labelOW styleSheet=%1 text=运行概况
    QLabel labelOWError styleSheet=color:red; text=(未运行)
    spacer 40×20 Expanding Minimum
  QVBoxLayout verticalLayout spacing 0
    QTreeWidget treeWidgetOW minimumSize=0×76 maximumSize=max×76 styleSheet=%5
    QLabel labelNoService %7 styleSheet=%2 text=统一服务未启动 alignment=AlignCenter
  QFrame line sizePolicy=Minimum,Fixed frameShape=HLine frameShadow=Sunken
  QFrame frameService frameShape=StyledPanel frameShadow=Raised
    QVBoxLayout verticalLayout_3 margins 0,0,0,0
      QHBoxLayout horizontalLayout_2 spacing 0
        QLabel labelTag styleSheet=%1 text=服务节点
        QLabel labelTagError styleSheet=color:red; text=(未注册)
        spacer 40×20 Expanding Minimum
      QVBoxLayout verticalLayout_2 spacing 0
        QTreeWidget treeWidgetTag styleSheet=%6
        QLabel labelNoTag %7 styleSheet=%3 text=无服务节点 alignment=AlignCenter
  QFrame lineService sizePolicy=Minimum,Fixed frameShape=HLine frameShadow=Sunken
  QFrame frameWebsite styleSheet=border:none; frameShape=StyledPanel frameShadow=Raised
    QVBoxLayout verticalLayout_4 margins 0,0,0,0
      QHBoxLayout horizontalLayout_3
        QLabel label styleSheet=%1 text=常用网站
        spacer 40×20 Expanding Minimum
      QHBoxLayout horizontalLayout_4 spacing 20
        QPushButton kqfwdt %8 styleSheet=%4 text= 朔川服务大厅 iconSize=32×32
        QPushButton kqzsk %8 styleSheet=%4 text= 朔川知识库 iconSize=32×32
        spacer 40×20 Expanding Minimum
  QFrame line_3 sizePolicy=Minimum,Fixed frameShape=HLine frameShadow=Sunken
  QFrame frameRepair styleSheet=border:none; frameShape=StyledPanel frameShadow=Raised
    QVBoxLayout verticalLayout_5 margins 0,0,0,0
      QHBoxLayout horizontalLayout_5
        QLabel label_2 styleSheet=%1 text=软件修复
        spacer 40×20 Expanding Minimum
      QHBoxLayout horizontalLayout_6 spacing 20
        QPushButton xfkqfw %8 styleSheet=%4 text= 修复朔川服务 iconSize=32×32
        spacer 40×20 Expanding Minimum
  spacer 20×40 Minimum Expanding
)";

} // namespace

class tst_OverviewFormLayout : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void form();
    void keepsAGivenName();
    void icons();
    void textsAreTranslatable();
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
    const QString expected =
            QString::fromUtf8(ExpectedForm)
                    .arg(TitleSheet, NoServiceSheet, NoTagSheet, ButtonSheet, ProcessTableSheet,
                         NodeTableSheet, NoticeSize, ButtonSize);
    QCOMPARE(dumpForm(*m_form).split(QLatin1Char('\n')), expected.split(QLatin1Char('\n')));
    for (const QTreeWidget *tree : {m_ui.treeWidgetOW, m_ui.treeWidgetTag}) {
        QCOMPARE(tree->headerItem()->text(0), QStringLiteral("1"));
        QCOMPARE(tree->topLevelItemCount(), 0);
    }

    // The members point at what bears their name.
    QCOMPARE(m_ui.horizontalSpacer, m_ui.horizontalLayout->itemAt(2));
    QCOMPARE(m_ui.horizontalSpacer_2, m_ui.horizontalLayout_2->itemAt(2));
    QCOMPARE(m_ui.horizontalSpacer_3, m_ui.horizontalLayout_3->itemAt(1));
    QCOMPARE(m_ui.horizontalSpacer_4, m_ui.horizontalLayout_4->itemAt(2));
    QCOMPARE(m_ui.horizontalSpacer_5, m_ui.horizontalLayout_5->itemAt(1));
    QCOMPARE(m_ui.horizontalSpacer_6, m_ui.horizontalLayout_6->itemAt(1));
    QCOMPARE(m_ui.verticalSpacer, m_ui.verticalLayout_6->itemAt(8));
}

void tst_OverviewFormLayout::keepsAGivenName()
{
    QWidget named;
    named.setObjectName(QStringLiteral("mine"));
    Ui_OverviewForm ui = {};
    ui.setupUi(&named);
    QCOMPARE(named.objectName(), QStringLiteral("mine"));
}

void tst_OverviewFormLayout::icons()
{
    const auto image = [](const QIcon &icon) {
        return icon.pixmap(32, 32, QIcon::Normal, QIcon::Off).toImage();
    };
    const QList<QPair<QPushButton *, QString>> icons = {
            {m_ui.kqfwdt, QStringLiteral("dt")},
            {m_ui.kqzsk, QStringLiteral("zsk")},
            {m_ui.xfkqfw, QStringLiteral("xf")},
    };
    for (const auto &[button, name] : icons) {
        QVERIFY(!button->icon().isNull());
        QCOMPARE(image(button->icon()),
                 image(QIcon(QStringLiteral(":/client/resources/%1.ico").arg(name))));
    }
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
    for (const QTreeWidget *tree : {m_ui.treeWidgetOW, m_ui.treeWidgetTag})
        QCOMPARE(tree->headerItem()->text(0), QStringLiteral("1"));
}

void tst_OverviewFormLayout::sizesWhenResized_data()
{
    QTest::addColumn<QSize>("size");

    QTest::newRow("wide and tall") << QSize(1600, 1600);
    QTest::newRow("small") << QSize(500, 760);
}

void tst_OverviewFormLayout::sizesWhenResized()
{
    QFETCH(const QSize, size);

    m_form->setAttribute(Qt::WA_DontShowOnScreen);
    m_form->resize(size);
    m_form->show();
    QCOMPARE(m_form->size(), size);

    QCOMPARE(m_ui.treeWidgetOW->height(), 76);
    QCOMPARE(m_ui.labelNoService->height(), 40);
    QCOMPARE(m_ui.labelNoTag->height(), 40);
    // What is left over goes to the node table and to the bottom, and behind the buttons.
    QCOMPARE(m_ui.frameWebsite->height(), m_ui.frameWebsite->sizeHint().height());
    QCOMPARE(m_ui.frameRepair->height(), m_ui.frameRepair->sizeHint().height());
    const int bottom = m_ui.horizontalLayout_4->geometry().bottom();
    QCOMPARE(m_ui.kqfwdt->geometry(), QRect(0, bottom - 79, 160, 80));
    QCOMPARE(m_ui.kqzsk->geometry(), QRect(180, bottom - 79, 160, 80));
    QCOMPARE(m_ui.xfkqfw->geometry(), QRect(0, bottom - 79, 160, 80));
    QCOMPARE(m_ui.horizontalSpacer_4->geometry().right(), m_ui.frameWebsite->width() - 1);
    QCOMPARE(m_ui.horizontalSpacer_6->geometry().right(), m_ui.frameRepair->width() - 1);
    if (size.height() > 916) {
        QVERIFY(m_ui.treeWidgetTag->height() > m_ui.treeWidgetTag->sizeHint().height());
        QVERIFY(m_ui.verticalSpacer->geometry().height() > 40);
    }
}

QTEST_MAIN(tst_OverviewFormLayout)
#include "tst_OverviewFormLayout.moc"
