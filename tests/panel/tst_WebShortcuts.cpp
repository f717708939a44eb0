#include "tests/support/PanelProcess.h"
#include "tests/support/ShimFolder.h"

#include <QStandardPaths>
#include <QTest>

namespace {

const auto Opener = QStringLiteral("xdg-open");
const auto ServiceHall = QStringLiteral("https://" PANEL_SERVICE_HALL_HOST "/#/software-selfHelp");
const auto KnowledgeBase =
        QStringLiteral("https://" PANEL_KNOWLEDGE_BASE_HOST "/kqwiki/fullTextSearch.xhtml");

} // namespace

/*!
    From a click on a web shortcut to the desktop's opener, in the whole program.
*/
class tst_WebShortcuts : public QObject
{
    Q_OBJECT

private slots:
    void clicksOpenThePages_data();
    void clicksOpenThePages();
    void missingOpenerDoesNothing();
};

void tst_WebShortcuts::clicksOpenThePages_data()
{
    QTest::addColumn<QString>("address");

    QTest::newRow("kqfwdt") << ServiceHall;
    QTest::newRow("kqzsk") << KnowledgeBase;
}

void tst_WebShortcuts::clicksOpenThePages()
{
    QFETCH(QString, address);
    ShimFolder shims;
    shims.add(Opener, "");
    PanelProcess panel;
    QVERIFY(panel.start());

    for (int clicks = 1; clicks <= 3; ++clicks) {
        panel.click(QString::fromLatin1(QTest::currentDataTag()));
        QTRY_COMPARE(shims.calls(Opener).size(), clicks);
        QCOMPARE(shims.calls(Opener).constLast(), QStringList(address));
    }
    QTRY_COMPARE(panel.application(QStringLiteral("children")).toList(), QVariantList());
    panel.invoke(QStringLiteral("ServiceContainer"), "close");
    QCOMPARE(panel.waitForExit(), std::optional<int>(0));
}

void tst_WebShortcuts::missingOpenerDoesNothing()
{
    // A PATH with the tools that the panel needs, and nothing else.
    QTemporaryDir tools;
    for (const char *tool : {"pgrep", "ps", "grep", "awk"}) {
        const QString name = QString::fromLatin1(tool);
        QVERIFY(QFile::link(QStandardPaths::findExecutable(name), tools.filePath(name)));
    }
    PanelProcess panel;
    panel.environment().insert(QStringLiteral("PATH"), tools.path());
    QVERIFY(panel.start());
    const QStringList lines = panel.errorLines();

    for (const char *slot : {"on_kqfwdt_clicked", "on_kqzsk_clicked"}) {
        QVERIFY(panel.invoke(QStringLiteral("OverviewForm"), slot));
        QCOMPARE(panel.application(QStringLiteral("children")).toList(), QVariantList());
        QVERIFY(!panel.messageBox());
    }
    QCOMPARE(panel.errorLines(), lines);
    QVERIFY(panel.isRunning());
}

QTEST_MAIN(tst_WebShortcuts)
#include "tst_WebShortcuts.moc"
