#include "tests/support/PanelProcess.h"
#include "tests/support/ShimFolder.h"

#include <QDir>
#include <QStandardPaths>
#include <QTest>

namespace {

const auto Opener = QStringLiteral("xdg-open");
const auto ServiceHall = QStringLiteral("https://" PANEL_SERVICE_HALL_HOST "/#/software-selfHelp");
const auto KnowledgeBase =
        QStringLiteral("https://" PANEL_KNOWLEDGE_BASE_HOST "/kqwiki/fullTextSearch.xhtml");

} // namespace

/*!
    The road from a press on a web shortcut to the desktop's opener, on the whole program.
*/
class tst_WebShortcuts : public QObject
{
    Q_OBJECT

private slots:
    void clicksOpenThePages_data();
    void clicksOpenThePages();
    void openerSeesNoPrivateVariable();
    void missingOpenerDoesNothing();
    void worksByKeyboard();
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
}

void tst_WebShortcuts::openerSeesNoPrivateVariable()
{
    ShimFolder shims;
    shims.add(Opener, "env -0 > '" + QFile::encodeName(shims.path()) + "/draft'\nmv '"
                              + QFile::encodeName(shims.path()) + "/draft' '"
                              + QFile::encodeName(shims.path()) + "/environment'");
    PanelProcess panel;
    panel.environment().insert(QStringLiteral("LD_LIBRARY_PATH"), QStringLiteral("/nonexistent"));
    panel.environment().insert(QStringLiteral("LD_PRELOAD"), QStringLiteral("libm.so.6"));
    panel.environment().insert(QStringLiteral("QT_QPA_PLATFORM_PLUGIN_PATH"),
                               QStringLiteral("/nonexistent"));
    panel.environment().insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
    panel.environment().insert(QStringLiteral("PANEL_TEST_MARK"), QStringLiteral("kept"));
    // The sanitizer's runtime insists on being the first library otherwise.
    panel.environment().insert(QStringLiteral("ASAN_OPTIONS"),
                               QStringLiteral("verify_asan_link_order=0"));
    QVERIFY(panel.start());

    panel.click(QStringLiteral("kqfwdt"));
    QFile file(shims.path() + QStringLiteral("/environment"));
    QTRY_VERIFY(file.exists());
    QVERIFY(file.open(QIODevice::ReadOnly));
    QMap<QByteArray, QByteArray> variables;
    const QList<QByteArray> lines = file.readAll().split('\0');
    for (const QByteArray &line : lines)
        variables.insert(line.left(line.indexOf('=')), line.mid(line.indexOf('=') + 1));

    QCOMPARE(variables.value("PANEL_TEST_MARK"), QByteArray("kept"));
    QCOMPARE(variables.value("QT_QPA_PLATFORM"), QByteArray("xcb"));
    for (const char *name :
         {"LD_LIBRARY_PATH", "LD_PRELOAD", "QT_PLUGIN_PATH", "QT_QPA_PLATFORM_PLUGIN_PATH"})
        QVERIFY2(!variables.contains(name), name);
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

void tst_WebShortcuts::worksByKeyboard()
{
    ShimFolder shims;
    shims.add(Opener, "");
    PanelProcess panel;
    QVERIFY(panel.start());
    const QString focus = QStringLiteral("focus");
    QTRY_VERIFY(panel.property(QStringLiteral("OverviewForm"), "isActiveWindow").toBool());

    // The reading order, once around.
    while (panel.application(focus).toString() != QLatin1String("kqfwdt")) {
        const QString former = panel.application(focus).toString();
        PanelProcess::pressKeys("Tab");
        QTRY_VERIFY(panel.application(focus).toString() != former);
    }
    for (const char *key : {"space", "Return", "KP_Enter"}) {
        shims.clearCalls();
        PanelProcess::pressKeys(key);
        QTRY_COMPARE(shims.calls(Opener), QList<QStringList> {{ServiceHall}});
    }
    PanelProcess::pressKeys("Tab");
    QTRY_COMPARE(panel.application(focus).toString(), QStringLiteral("kqzsk"));
    shims.clearCalls();
    PanelProcess::pressKeys("Return");
    QTRY_COMPARE(shims.calls(Opener), QList<QStringList> {{KnowledgeBase}});
    PanelProcess::pressKeys("Tab");
    QTRY_COMPARE(panel.application(focus).toString(), QStringLiteral("xfkqfw"));
    PanelProcess::pressKeys("shift+Tab");
    QTRY_COMPARE(panel.application(focus).toString(), QStringLiteral("kqzsk"));
}

QTEST_MAIN(tst_WebShortcuts)
#include "tst_WebShortcuts.moc"
