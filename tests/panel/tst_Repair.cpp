#include "tests/support/PanelProcess.h"
#include "tests/support/ShownCursor.h"

#include <QElapsedTimer>
#include <QMessageBox>
#include <QTest>

namespace {

const auto RepairButton = QStringLiteral("xfkqfw");
const auto Table = QStringLiteral("treeWidgetOW");
const auto Box = QStringLiteral("QMessageBox");

constexpr int BoxTimeoutMs = 25000;
constexpr int MsPerSecond = 1000;

} // namespace

/*!
    The repair as a user has it: the whole program, a real daemon, the mouse and the keyboard. Which
    texts it shows, and when, is tested on the page.
*/
class tst_Repair : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void runningDaemonIsLeftAlone();
    void absentDaemonIsStarted();
    void daemonThatEndsIsNoSuccess();

private:
    //! The pointer's image over a widget that has the mouse.
    QImage cursorOver(const QString &widget);
    //! Compares the lines of the log after the first \a formerLines with a repair that took
    //! \a elapsedMs. Returns what is wrong with them.
    QString verifyLog(int formerLines, qint64 elapsedMs) const;

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

QString tst_Repair::verifyLog(int formerLines, qint64 elapsedMs) const
{
    const QStringList lines = m_panel->errorLines().mid(formerLines);
    QString log = lines.join(QLatin1Char('\n'));
    if (lines.size() != 2)
        return log;
    if (lines.at(0) != QStringLiteral("file: \"%1\"").arg(m_panel->daemonPath()))
        return log;
    bool isNumber = false;
    const int seconds = lines.at(1).toInt(&isNumber);
    if (!isNumber)
        return log;
    if (elapsedMs < qint64(seconds) * MsPerSecond)
        return QStringLiteral("%1 ms for %2 s").arg(elapsedMs).arg(seconds);
    return {};
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
    PanelProcess::clickAt(m_panel->globalRect(RepairButton).center());
    QTRY_VERIFY(shownCursor() != usualCursor);
    QTRY_VERIFY_WITH_TIMEOUT(m_panel->messageBox(), BoxTimeoutMs);
    QTRY_COMPARE(shownCursor(), usualCursor);

    QCOMPARE(m_panel->daemonPids(), daemons);
    QCOMPARE(m_panel->errorLines().size(), formerLines);
    // Where the window manager has put it, and not before.
    QTRY_VERIFY(m_panel->property(Box, "isActiveWindow").toBool());
    QTRY_VERIFY(m_panel->isExposed(Box));
    m_panel->click(QStringLiteral("QMessageBox/QPushButton"));
    QTRY_VERIFY(!m_panel->messageBox());
}

void tst_Repair::absentDaemonIsStarted()
{
    QVERIFY(m_panel->start());
    QTRY_VERIFY(m_panel->showsNotice());
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
    QVERIFY(shownCursor() != usualCursor);

    QTRY_VERIFY_WITH_TIMEOUT(m_panel->messageBox(), BoxTimeoutMs);
    QCOMPARE(m_panel->messageBox()->icon, int(QMessageBox::Information));
    QCOMPARE(verifyLog(formerLines, clock.elapsed()), QString());
    QTRY_COMPARE(shownCursor(), usualCursor);
    const QList<qint64> daemons = m_panel->daemonPids();
    QCOMPARE(daemons.size(), 1);
    QCOMPARE(m_panel->daemonRecord(QStringLiteral("pid")),
             QStringList(QString::number(daemons.first())));

    // The page catches up while the box is open.
    QTRY_VERIFY_WITH_TIMEOUT(m_panel->showsDaemon(daemons.first()), BoxTimeoutMs);
    QVERIFY(m_panel->messageBox());

    QTRY_VERIFY(m_panel->property(Box, "isActiveWindow").toBool());
    PanelProcess::pressKeys("Return");
    QTRY_VERIFY(!m_panel->messageBox());

    // Handled or not, the second click came too late to start another daemon.
    QCOMPARE(m_panel->daemonPids(), daemons);
    QCOMPARE(m_panel->errorLines().size(), formerLines + 2);
}

void tst_Repair::daemonThatEndsIsNoSuccess()
{
    QVERIFY(m_panel->start());
    const int formerLines = m_panel->errorLines().size();
    m_panel->placeDaemon();
    m_panel->configureDaemon("CORVANE_EXIT_AFTER_MS", "1500");

    QElapsedTimer clock;
    clock.start();
    m_panel->click(RepairButton);

    QTRY_VERIFY_WITH_TIMEOUT(m_panel->messageBox(), BoxTimeoutMs);
    QCOMPARE(m_panel->messageBox()->icon, int(QMessageBox::Warning));
    QCOMPARE(verifyLog(formerLines, clock.elapsed()), QString());
    QVERIFY(m_panel->hasDaemonRecord());
    QCOMPARE(m_panel->daemonPids(), QList<qint64>());
}

QTEST_MAIN(tst_Repair)
#include "tst_Repair.moc"
