#include "tests/support/PanelProcess.h"
#include "tests/support/ShownCursor.h"

#include <QElapsedTimer>
#include <QMessageBox>
#include <QTest>

#include <optional>
#include <vector>

namespace {

const auto Title = QStringLiteral("修复朔川服务");
const auto Fine = QStringLiteral("统一服务运行正常，无需修复。");
const auto Repaired = QStringLiteral("朔川服务修复成功！");
const auto Failed = QStringLiteral("尝试修复失败：请重启电脑后再试或联系朔川客服人员！");

const auto RepairButton = QStringLiteral("xfkqfw");
const auto Table = QStringLiteral("treeWidgetOW");

constexpr int BoxTimeoutMs = 25000;

//! What a repair finds that can't succeed.
struct Obstacle
{
    const char *name;
    bool isPlaced;
    bool isExecutable;
    //! What the daemon is told, if anything.
    const char *setting;
    const char *value;
};

// The one whose daemon lives longest comes first: no other panel is there yet to see it.
const Obstacle Obstacles[] = {
        {"exits before the check", true, true, "CORVANE_EXIT_AFTER_MS", "1500"},
        {"exits at once", true, true, "CORVANE_REFUSE", "1"},
        {"executable missing", false, false, nullptr, nullptr},
        {"not executable", true, false, nullptr, nullptr},
};

//! Whether the X server shows a message box of \a panel, which itself isn't asked: it may be busy.
bool showsBox(const PanelProcess &panel)
{
    QProcess search;
    search.start(QStringLiteral("xdotool"),
                 {QStringLiteral("search"), QStringLiteral("--all"),
                  QStringLiteral("--onlyvisible"), QStringLiteral("--pid"),
                  QString::number(panel.pid()), QStringLiteral("--name"), Title});
    return search.waitForFinished() && search.exitCode() == 0;
}

} // namespace

/*!
    The repair as a user has it: the whole program, a real daemon, the mouse and the keyboard.

    The repairs that fail, each of which takes many seconds, wait side by side, each panel in a
    folder of its own: no daemon runs for any of them. All others have the system to themselves.
*/
class tst_Repair : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void cleanupTestCase();

    void runningDaemonIsLeftAlone();
    void absentDaemonIsStarted();
    void failures_data();
    void failures();

private:
    //! A repair that fails, from its click on.
    struct Attempt
    {
        std::unique_ptr<PanelProcess> panel;
        int formerLines = 0;
        QElapsedTimer clock;
        //! When its box was there, by the clock.
        std::optional<qint64> boxAfterMs;
    };

    //! The pointer's picture over a widget that has the mouse.
    QImage cursorOver(const QString &widget);
    //! Waits for the box and compares all of it.
    static void verifyBox(PanelProcess &panel, const QString &text, QMessageBox::Icon icon);
    static void verifyLog(const PanelProcess &panel, int formerLines, qint64 elapsedMs);
    static void start(Attempt &attempt, const Obstacle &obstacle);
    void waitForAllBoxes();

    std::unique_ptr<PanelProcess> m_panel;
    //! One for each obstacle, in their order; empty before the first of them is judged.
    std::vector<Attempt> m_attempts;
};

void tst_Repair::init()
{
    m_panel = std::make_unique<PanelProcess>();
}

void tst_Repair::cleanup()
{
    m_panel.reset();
}

void tst_Repair::cleanupTestCase()
{
    m_attempts.clear();
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

    const QImage cursorAtRest = cursorOver(RepairButton);
    QElapsedTimer clock;
    clock.start();
    PanelProcess::clickAt(m_panel->globalRect(RepairButton).center());
    QTRY_VERIFY(shownCursor() != cursorAtRest);
    verifyBox(*m_panel, Fine, QMessageBox::Information);
    QVERIFY2(clock.elapsed() >= 2000, qPrintable(QString::number(clock.elapsed())));
    QTRY_COMPARE(shownCursor(), cursorAtRest);

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

    const QImage cursorAtRest = cursorOver(RepairButton);
    const QPoint place = m_panel->globalRect(RepairButton).center();
    QElapsedTimer clock;
    clock.start();
    PanelProcess::clickAt(place);
    QTRY_VERIFY(shownCursor() != cursorAtRest);
    QTRY_VERIFY(m_panel->hasDaemonRecord());
    // A second click while the first is at work.
    PanelProcess::clickAt(place);

    QCOMPARE(m_panel->daemonRecord(QStringLiteral("argument")),
             (QStringList {m_panel->daemonPath(), QStringLiteral("quickboot")}));
    QCOMPARE(m_panel->daemonRecord(QStringLiteral("directory")), QStringList(m_panel->folder()));
    QVERIFY(shownCursor() != cursorAtRest);

    verifyBox(*m_panel, Repaired, QMessageBox::Information);
    verifyLog(*m_panel, formerLines, clock.elapsed());
    QTRY_COMPARE(shownCursor(), cursorAtRest);
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

void tst_Repair::start(Attempt &attempt, const Obstacle &obstacle)
{
    attempt.panel = std::make_unique<PanelProcess>();
    PanelProcess &panel = *attempt.panel;
    QVERIFY(panel.start());
    attempt.formerLines = panel.errorLines().size();
    if (obstacle.isPlaced)
        panel.placeDaemon();
    if (obstacle.isPlaced && !obstacle.isExecutable)
        QVERIFY(QFile::setPermissions(panel.daemonPath(), QFile::ReadOwner | QFile::WriteOwner));
    if (obstacle.setting)
        panel.configureDaemon(obstacle.setting, obstacle.value);

    attempt.clock.start();
    panel.click(RepairButton);
    // Both lines are written before the wait.
    QTRY_COMPARE_WITH_TIMEOUT(panel.errorLines().size(), attempt.formerLines + 2, BoxTimeoutMs);
    if (obstacle.isExecutable)
        QTRY_VERIFY_WITH_TIMEOUT(panel.hasDaemonRecord(), BoxTimeoutMs);
    QTRY_COMPARE_WITH_TIMEOUT(panel.daemonPids(), QList<qint64>(), BoxTimeoutMs);
}

void tst_Repair::waitForAllBoxes()
{
    const auto hasAll = [this] {
        bool result = true;
        for (Attempt &attempt : m_attempts) {
            if (!attempt.boxAfterMs && showsBox(*attempt.panel))
                attempt.boxAfterMs = attempt.clock.elapsed();
            result = result && attempt.boxAfterMs;
        }
        return result;
    };
    QVERIFY(QTest::qWaitFor(hasAll, BoxTimeoutMs));
}

void tst_Repair::failures_data()
{
    QTest::addColumn<int>("index");

    for (int i = 0; i < int(std::size(Obstacles)); ++i)
        QTest::newRow(Obstacles[i].name) << i;
}

void tst_Repair::failures()
{
    QFETCH(int, index);
    if (m_attempts.empty()) {
        m_attempts.resize(std::size(Obstacles));
        for (size_t i = 0; i < m_attempts.size() && !QTest::currentTestFailed(); ++i)
            start(m_attempts.at(i), Obstacles[i]);
        if (!QTest::currentTestFailed())
            waitForAllBoxes();
    }
    Attempt &attempt = m_attempts.at(size_t(index));
    QVERIFY(attempt.boxAfterMs);

    verifyBox(*attempt.panel, Failed, QMessageBox::Warning);
    verifyLog(*attempt.panel, attempt.formerLines, *attempt.boxAfterMs);
    QCOMPARE(attempt.panel->hasDaemonRecord(), Obstacles[index].isExecutable);
}

QTEST_MAIN(tst_Repair)
#include "tst_Repair.moc"
