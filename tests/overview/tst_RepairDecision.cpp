#include "app/daemon.h"
#include "overview/OverviewForm.h"
#include "tests/overview/RunStatus.h"
#include "tests/support/ShimFolder.h"
#include "tests/support/waits.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QMessageBox>
#include <QPushButton>
#include <QTest>
#include <QTimer>

namespace {

//! A line that the page logs, and whether the wait cursor is shown meanwhile.
struct LogLine
{
    QString text;
    bool hasWaitCursor;
};
QVector<LogLine> logLines;

void noteLine(QtMsgType type, const QMessageLogContext &context, const QString &message)
{
    // Qt has much to say of a display that is slow.
    if (type != QtInfoMsg || qstrcmp(context.category, "default") != 0) {
        fprintf(stderr, "%s\n", qPrintable(qFormatLogMessage(type, context, message)));
        return;
    }
    const QCursor *cursor = QApplication::overrideCursor();
    logLines.append({message, cursor && cursor->shape() == Qt::WaitCursor});
}

} // namespace

/*!
    What a repair makes of lastPid and of the probe's answer, with tools that answer as told. The
    whole flow, with real daemons, is tested on the whole program.
*/
class tst_RepairDecision : public QObject
{
    Q_OBJECT

private slots:
    void decides_data();
    void decides();
};

void tst_RepairDecision::decides_data()
{
    QTest::addColumn<qint64>("lastPid");
    QTest::addColumn<QByteArray>("probeOutput");
    QTest::addColumn<int>("probeExitCode");
    QTest::addColumn<bool>("isRepair");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QMessageBox::Icon>("icon");

    const QString fine = QStringLiteral("统一服务运行正常，无需修复。");
    const QString repaired = QStringLiteral("朔川服务修复成功！");
    const QString failed = QStringLiteral("尝试修复失败：请重启电脑后再试或联系朔川客服人员！");

    // Nothing is looked at: the answer would say that no daemon runs.
    QTest::newRow("1 runs") << 1LL << QByteArray() << 0 << false << fine
                            << QMessageBox::Information;
    // Any answer counts as success, two numbers and no number among them.
    QTest::newRow("0 is repaired, two answer")
            << 0LL << QByteArray("12\n13\n") << 0 << true << repaired << QMessageBox::Information;
    QTest::newRow("negative is repaired, exit code not 0")
            << -5LL << QByteArray("12\n") << 3 << true << failed << QMessageBox::Warning;
}

void tst_RepairDecision::decides()
{
    QFETCH(qint64, lastPid);
    QFETCH(QByteArray, probeOutput);
    QFETCH(int, probeExitCode);
    QFETCH(bool, isRepair);
    QFETCH(QString, text);
    QFETCH(QMessageBox::Icon, icon);

    ShimFolder shims;
    shims.addPrinting(QStringLiteral("pgrep"), "");
    OverviewForm page;
    page.show();
    QVERIFY(QTest::qWaitForWindowExposed(&page, WindowTimeoutMs));
    // No tick may change what this test has set up.
    page.findChild<QTimer *>()->stop();
    shims.addPrinting(QStringLiteral("awk"), probeOutput, probeExitCode);
    shims.clearCalls();
    ::lastPid(page) = lastPid;

    struct Box
    {
        QString title;
        QString text;
        QMessageBox::Icon icon;
        QObject *parent;
        QMessageBox::StandardButtons buttons;
        bool hasOverrideCursor;
    };
    Box shown = {};
    int boxes = 0;
    QTimer closer;
    connect(&closer, &QTimer::timeout, &page, [&] {
        auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget());
        if (!box)
            return;
        ++boxes;
        shown = {box->windowTitle(),
                 box->text(),
                 box->icon(),
                 box->parentWidget(),
                 box->standardButtons(),
                 QApplication::overrideCursor() != nullptr};
        box->accept();
    });
    closer.start(50);

    logLines.clear();
    const QtMessageHandler formerHandler = qInstallMessageHandler(noteLine);
    QElapsedTimer clock;
    clock.start();
    page.findChild<QPushButton *>(QStringLiteral("xfkqfw"))->click();
    closer.stop();
    qInstallMessageHandler(formerHandler);
    const qint64 elapsedMs = clock.elapsed();

    int seconds = 2;
    if (isRepair) {
        QCOMPARE(logLines.size(), 2);
        QCOMPARE(logLines.at(0).text, QStringLiteral("file: \"%1\"").arg(Daemon::executablePath()));
        QVERIFY(logLines.at(0).hasWaitCursor);
        bool isNumber = false;
        seconds = logLines.at(1).text.toInt(&isNumber);
        QVERIFY2(isNumber && seconds >= 5 && seconds <= 14, qPrintable(logLines.at(1).text));
        QVERIFY(logLines.at(1).hasWaitCursor);
    } else {
        QCOMPARE(logLines.size(), 0);
    }
    QVERIFY2(elapsedMs >= qint64(seconds) * 1000, qPrintable(QString::number(elapsedMs)));
    QCOMPARE(boxes, 1);
    QCOMPARE(shown.title, QStringLiteral("修复朔川服务"));
    QCOMPARE(shown.text, text);
    QCOMPARE(shown.icon, icon);
    QCOMPARE(shown.parent, &page);
    QCOMPARE(shown.buttons, QMessageBox::StandardButtons(QMessageBox::Ok));
    QVERIFY(!shown.hasOverrideCursor);
    QCOMPARE(::lastPid(page), lastPid);
    QCOMPARE(shims.calls(QStringLiteral("pgrep")).size(), isRepair ? 1 : 0);
    QVERIFY(QApplication::overrideCursor() == nullptr);
}

QTEST_MAIN(tst_RepairDecision)
#include "tst_RepairDecision.moc"
