#include "tests/support/PanelProcess.h"
#include "tests/support/ShimFolder.h"
#include "tests/support/WebShortcuts.h"

#include <QStandardPaths>
#include <QTest>

namespace {

const auto Opener = QStringLiteral("xdg-open");

} // namespace

/*!
    From a click on a web shortcut to the desktop's opener, in the whole program.
*/
class tst_WebShortcuts : public QObject
{
    Q_OBJECT

private slots:
    void clicksOpenThePages();
    void missingOpenerDoesNothing();
};

void tst_WebShortcuts::clicksOpenThePages()
{
    ShimFolder shims;
    shims.add(Opener, "");
    PanelProcess panel;
    QVERIFY(panel.start());

    QList<QStringList> expected;
    for (const WebShortcut &shortcut : WebShortcuts) {
        // As often as it is clicked.
        for (int click = 0; click < 2; ++click) {
            panel.click(QLatin1String(shortcut.button));
            expected.append(QStringList(QLatin1String(shortcut.address)));
            QTRY_COMPARE(shims.calls(Opener), expected);
        }
    }

    QTRY_COMPARE(panel.application(QStringLiteral("children")).toList(), QVariantList());
    QVERIFY(panel.invoke(QStringLiteral("ServiceContainer"), "close"));
    QCOMPARE(panel.waitForExit(), std::optional<int>(0));
}

void tst_WebShortcuts::missingOpenerDoesNothing()
{
    // A PATH with the tools that the panel needs, and nothing else.
    const QTemporaryDir tools;
    for (const char *tool : {"pgrep", "ps", "grep", "awk"}) {
        const QString name = QString::fromLatin1(tool);
        QVERIFY(QFile::link(QStandardPaths::findExecutable(name), tools.filePath(name)));
    }
    PanelProcess panel;
    panel.environment().insert(QStringLiteral("PATH"), tools.path());
    QVERIFY(panel.start());
    const QStringList lines = panel.errorLines();

    for (const WebShortcut &shortcut : WebShortcuts) {
        QVERIFY(panel.invoke(QLatin1String(shortcut.button), "click"));
        QCOMPARE(panel.application(QStringLiteral("children")).toList(), QVariantList());
        QVERIFY(!panel.messageBox());
    }
    QCOMPARE(panel.errorLines(), lines);
    QVERIFY(panel.isRunning());
}

QTEST_MAIN(tst_WebShortcuts)
#include "tst_WebShortcuts.moc"
