#include "tests/support/PanelProcess.h"
#include "tests/support/ShownCursor.h"

#include <QElapsedTimer>
#include <QMessageBox>
#include <QTest>

namespace {

const auto Title = QStringLiteral("修复朔川服务");
const auto Fine = QStringLiteral("统一服务运行正常，无需修复。");
const auto Repaired = QStringLiteral("朔川服务修复成功！");
const auto Failed = QStringLiteral("尝试修复失败：请重启电脑后再试或联系朔川客服人员！");

const auto RepairButton = QStringLiteral("xfkqfw");
const auto Table = QStringLiteral("treeWidgetOW");

constexpr int BoxTimeoutMs = 25000;

} // namespace

//! The repair as a user has it: the whole program, a real daemon, the mouse and the keyboard.
class tst_Repair : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void runningDaemonIsLeftAlone();
    void absentDaemonIsStarted();
    void failures_data();
    void failures();

private:
    //! The pointer's image over a widget that has the mouse.
    QImage cursorOver(const QString &widget);
    //! Waits for the box and compares all of it.
    static void verifyBox(PanelProcess &panel, const QString &text, QMessageBox::Icon icon);
    static void verifyLog(const PanelProcess &panel, int formerLines, qint64 elapsedMs);

    std::unique_ptr<PanelProcess> m_panel;
};

void tst_Repair::init()
{
    m_panel = std::make_unique<PanelProcess>();
}

void tst_Repair::cleanup()
{
    m_panel.reset();
}

QImage tst_Repair::cursorOver(const QString &widget)
{
    PanelProcess::moveMouse(m_panel->globalRect(widget).center());
    return shownCursor();
}

void tst_Repair::verifyBox(PanelProcess &panel, const QString &text, QMessageBox::Icon icon)
{
    QTRY_VERIFY_WITH_TIMEOUT(panel.messageBox(), BoxTimeoutMs);
    const PanelProcess::MessageBox box = *panel.messageBox();
    QCOMPARE(box.title, Title);
    QCOMPARE(box.text, text);
    QCOMPARE(box.icon, int(icon));
    QCOMPARE(box.standardButtons, int(QMessageBox::Ok));
    QCOMPARE(box.buttons.size(), 1);
    QCOMPARE(box.defaultButton, QStringLiteral("OK"));
    QCOMPARE(box.parentClass, QStringLiteral("OverviewForm"));
    QCOMPARE(panel.application(QStringLiteral("overrideCursor")).toInt(), -1);
}

void tst_Repair::verifyLog(const PanelProcess &panel, int formerLines, qint64 elapsedMs)
{
    const QStringList lines = panel.errorLines().mid(formerLines);
    QCOMPARE(lines.size(), 2);
    QCOMPARE(lines.at(0), QStringLiteral("file: \"%1\"").arg(panel.daemonPath()));

    bool ok = false;
    const int seconds = lines.at(1).toInt(&ok);
    QVERIFY2(ok && seconds >= 5 && seconds <= 14, qPrintable(lines.at(1)));
    QVERIFY2(elapsedMs >= qint64(seconds) * 1000, qPrintable(QString::number(elapsedMs)));
}

void tst_Repair::runningDaemonIsLeftAlone()
{
    m_panel->placeDaemon();
    QVERIFY(m_panel->start());
    QTRY_COMPARE(m_panel->rowTexts(Table).size(), 1);
    const QList<qint64> daemons = m_panel->daemonPids();
    QCOMPARE(daemons.size(), 1);
    const int formerLines = m_panel->errorLines().size();

    const QImage usualCursor = cursorOver(RepairButton);
    QElapsedTimer clock;
    clock.start();
    PanelProcess::clickAt(m_panel->globalRect(RepairButton).center());
    QTRY_VERIFY(shownCursor() != usualCursor);
    verifyBox(*m_panel, Fine, QMessageBox::Information);
    QVERIFY2(clock.elapsed() >= 2000, qPrintable(QString::number(clock.elapsed())));
    QTRY_COMPARE(shownCursor(), usualCursor);

    QCOMPARE(m_panel->daemonPids(), daemons);
    QCOMPARE(m_panel->errorLines().size(), formerLines);
    // Where the window manager has put it, and not before.
    QTRY_VERIFY(m_panel->property(QStringLiteral("QMessageBox"), "isActiveWindow").toBool());
    QTRY_VERIFY(m_panel->isExposed(QStringLiteral("QMessageBox")));
    m_panel->click(QStringLiteral("QMessageBox/QPushButton"));
    QTRY_VERIFY(!m_panel->messageBox());
}

void tst_Repair::absentDaemonIsStarted()
{
    QVERIFY(m_panel->start());
    QTRY_VERIFY(m_panel->property(QStringLiteral("labelNoService"), "visible").toBool());
    const int formerLines = m_panel->errorLines().size();
    m_panel->placeDaemon();
    // It is slow to start, too: only the check at the end of the wait finds it.
    m_panel->configureDaemon("CORVANE_APPEAR_AFTER_MS", "3000");

    const QImage usualCursor = cursorOver(RepairButton);
    const QPoint place = m_panel->globalRect(RepairButton).center();
    QElapsedTimer clock;
    clock.start();
    PanelProcess::clickAt(place);
    QTRY_VERIFY(shownCursor() != usualCursor);
    QTRY_VERIFY(m_panel->hasDaemonRecord());
    // A second click while the first is at work.
    PanelProcess::clickAt(place);

    QCOMPARE(m_panel->daemonRecord(QStringLiteral("argument")),
             (QStringList {m_panel->daemonPath(), QStringLiteral("quickboot")}));
    QCOMPARE(m_panel->daemonRecord(QStringLiteral("directory")), QStringList(m_panel->folder()));
    QVERIFY(shownCursor() != usualCursor);

    verifyBox(*m_panel, Repaired, QMessageBox::Information);
    verifyLog(*m_panel, formerLines, clock.elapsed());
    QTRY_COMPARE(shownCursor(), usualCursor);
    const QList<qint64> daemons = m_panel->daemonPids();
    QCOMPARE(daemons.size(), 1);
    QCOMPARE(m_panel->daemonRecord(QStringLiteral("pid")),
             QStringList(QString::number(daemons.first())));

    // The page catches up behind the open box.
    QTRY_COMPARE_WITH_TIMEOUT(m_panel->rowTexts(Table).size(), 1, BoxTimeoutMs);
    QCOMPARE(m_panel->rowTexts(Table).first().at(1), QString::number(daemons.first()));
    QVERIFY(m_panel->messageBox());
    QVERIFY(!m_panel->property(QStringLiteral("labelNoService"), "visible").toBool());

    QTRY_VERIFY(m_panel->property(QStringLiteral("QMessageBox"), "isActiveWindow").toBool());
    PanelProcess::pressKeys("Return");
    QTRY_VERIFY(!m_panel->messageBox());

    // Served or not, the second click came too late to start another daemon.
    QCOMPARE(m_panel->daemonPids(), daemons);
    QCOMPARE(m_panel->errorLines().size(), formerLines + 2);
}

void tst_Repair::failures_data()
{
    QTest::addColumn<bool>("isPlaced");

    QTest::newRow("executable missing") << false;
    QTest::newRow("exits before the check") << true;
}

void tst_Repair::failures()
{
    QFETCH(bool, isPlaced);
    QVERIFY(m_panel->start());
    const int formerLines = m_panel->errorLines().size();
    if (isPlaced) {
        m_panel->placeDaemon();
        m_panel->configureDaemon("CORVANE_EXIT_AFTER_MS", "1500");
    }

    QElapsedTimer clock;
    clock.start();
    m_panel->click(RepairButton);
    verifyBox(*m_panel, Failed, QMessageBox::Warning);
    verifyLog(*m_panel, formerLines, clock.elapsed());
    QCOMPARE(m_panel->hasDaemonRecord(), isPlaced);
    QCOMPARE(m_panel->daemonPids(), QList<qint64>());
}

QTEST_MAIN(tst_Repair)
#include "tst_Repair.moc"
