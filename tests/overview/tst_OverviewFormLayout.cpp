#include "tests/support/AskingTranslator.h"
#include "tests/support/LayoutDump.h"
#include "tests/support/WebShortcuts.h"
#include "ui_OverviewForm.h"

#include <QHash>
#include <QMap>
#include <QTest>

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
    QVERIFY(matchesDump(*m_form, QStringLiteral("overview/OverviewForm.txt")));
    for (const QTreeWidget *tree : {m_ui.treeWidgetOW, m_ui.treeWidgetTag}) {
        QCOMPARE(tree->headerItem()->text(0), QStringLiteral("1"));
        QCOMPARE(tree->topLevelItemCount(), 0);
    }

    const QHash<QLayout *, QSpacerItem *> spacers = {
            {m_ui.horizontalLayout, m_ui.horizontalSpacer},
            {m_ui.horizontalLayout_2, m_ui.horizontalSpacer_2},
            {m_ui.horizontalLayout_3, m_ui.horizontalSpacer_3},
            {m_ui.horizontalLayout_4, m_ui.horizontalSpacer_4},
            {m_ui.horizontalLayout_5, m_ui.horizontalSpacer_5},
            {m_ui.horizontalLayout_6, m_ui.horizontalSpacer_6},
            {m_ui.verticalLayout_6, m_ui.verticalSpacer},
    };
    QCOMPARE(otherSpacers(*m_form, spacers), QString());
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
    QMap<QString, QString> icons = {{QStringLiteral("xfkqfw"), QStringLiteral("xf.ico")}};
    for (const WebShortcut &shortcut : WebShortcuts)
        icons.insert(QString::fromLatin1(shortcut.button), QString::fromLatin1(shortcut.icon));
    for (auto icon = icons.cbegin(); icon != icons.cend(); ++icon) {
        const auto *button = m_form->findChild<QPushButton *>(icon.key());
        QVERIFY2(button, qPrintable(icon.key()));
        const QImage shown = image(button->icon());
        QVERIFY(!shown.isNull());
        QCOMPARE(shown, image(QIcon(QStringLiteral(":/client/resources/%1").arg(icon.value()))));
    }
}

void tst_OverviewFormLayout::textsAreTranslatable()
{
    QStringList expected = formTexts(*m_form);
    QVERIFY(!expected.isEmpty());
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
    QTest::newRow("as small as it gets") << QSize(1, 1);
}

void tst_OverviewFormLayout::sizesWhenResized()
{
    QFETCH(const QSize, size);
    const int usualHeight = m_form->height();

    m_form->setAttribute(Qt::WA_DontShowOnScreen);
    m_form->resize(size);
    m_form->show();
    QCOMPARE(m_form->size(), size.expandedTo(m_form->minimumSizeHint()));

    for (const QWidget *fixed :
         std::initializer_list<QWidget *> {m_ui.treeWidgetOW, m_ui.labelNoService, m_ui.labelNoTag})
        QCOMPARE(fixed->height(), fixed->maximumHeight());
    // What is left over goes to the node table and to the bottom, and after the buttons.
    for (const QFrame *frame : {m_ui.frameWebsite, m_ui.frameRepair}) {
        QCOMPARE(frame->height(), frame->sizeHint().height());
        const QList<QPushButton *> buttons = frame->findChildren<QPushButton *>();
        int left = 0;
        for (const QPushButton *button : buttons) {
            QCOMPARE(button->size(), button->minimumSize());
            QCOMPARE(button->geometry().left(), left);
            QCOMPARE(button->geometry().bottom(), frame->height() - 1);
            left += button->width() + m_ui.horizontalLayout_4->spacing();
        }
    }
    QCOMPARE(m_ui.horizontalSpacer_4->geometry().right(), m_ui.frameWebsite->width() - 1);
    QCOMPARE(m_ui.horizontalSpacer_6->geometry().right(), m_ui.frameRepair->width() - 1);
    if (size.height() > usualHeight) {
        QVERIFY(m_ui.treeWidgetTag->height() > m_ui.treeWidgetTag->sizeHint().height());
        QVERIFY(m_ui.verticalSpacer->geometry().height()
                > m_ui.verticalSpacer->sizeHint().height());
    }
}

QTEST_MAIN(tst_OverviewFormLayout)
#include "tst_OverviewFormLayout.moc"
