#include "tests/support/AskingTranslator.h"
#include "tests/support/LayoutDump.h"
#include "ui_OverviewForm.h"

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
