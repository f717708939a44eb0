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

//! The shape of the override cursor at each line that the page logs, -1 for none.
QVector<int> cursorsWhileLogging;

void noteCursor(QtMsgType type, const QMessageLogContext &context, const QString &message)
{
    // Qt has much to say of a display that is slow.
    if (type != QtInfoMsg || qstrcmp(context.category, "default") != 0) {
        fprintf(stderr, "%s\n", qPrintable(qFormatLogMessage(type, context, message)));
        return;
    }
    const QCursor *cursor = QApplication::overrideCursor();
    cursorsWhileLogging.append(cursor ? int(cursor->shape()) : -1);
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
    QTest::addColumn<Qt::Key>("key");
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
    QTest::newRow("1 runs") << Qt::Key_Space << 1LL << QByteArray() << 0 << false << fine
                            << QMessageBox::Information;
    // Any answer counts as success, two numbers and no number among them.
    QTest::newRow("0 is repaired, two answer") << Qt::Key_Return << 0LL << QByteArray("12\n13\n")
                                               << 0 << true << repaired << QMessageBox::Information;
    QTest::newRow("negative is repaired, exit code not 0")
            << Qt::Key_Enter << -5LL << QByteArray("12\n") << 3 << true << failed
            << QMessageBox::Warning;
}

void tst_RepairDecision::decides()
{
    QFETCH(Qt::Key, key);
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

    cursorsWhileLogging.clear();
    const QtMessageHandler formerHandler = qInstallMessageHandler(noteCursor);
    QElapsedTimer clock;
    clock.start();
    auto *button = page.findChild<QPushButton *>(QStringLiteral("xfkqfw"));
    page.activateWindow();
    button->setFocus();
    QTRY_VERIFY(button->hasFocus());
    QTest::keyClick(button, key);
    closer.stop();
    qInstallMessageHandler(formerHandler);

    // The path and the seconds are logged, both under the wait cursor.
    QCOMPARE(cursorsWhileLogging,
             isRepair ? (QVector<int> {Qt::WaitCursor, Qt::WaitCursor}) : QVector<int>());
    QCOMPARE(boxes, 1);
    QCOMPARE(shown.title, QStringLiteral("修复朔川服务"));
    QCOMPARE(shown.text, text);
    QCOMPARE(shown.icon, icon);
    QCOMPARE(shown.parent, &page);
    QCOMPARE(shown.buttons, QMessageBox::StandardButtons(QMessageBox::Ok));
    QVERIFY(!shown.hasOverrideCursor);
    QCOMPARE(::lastPid(page), lastPid);
    QCOMPARE(shims.calls(QStringLiteral("pgrep")).size(), isRepair ? 1 : 0);
    QVERIFY2(clock.elapsed() >= (isRepair ? 5000 : 2000),
             qPrintable(QString::number(clock.elapsed())));
    QVERIFY(QApplication::overrideCursor() == nullptr);
}

QTEST_MAIN(tst_RepairDecision)
#include "tst_RepairDecision.moc"
