#include "overview/OverviewForm.h"
#include "tests/support/PrivateMember.h"
#include "tests/support/ShimFolder.h"
#include "ui_OverviewForm.h"

#include <QTest>

struct LastPid : PrivateMember<LastPid, qint64, OverviewForm>
{
};
template struct ExposePrivateMember<LastPid, &OverviewForm::lastPid>;

class tst_OverviewForm : public QObject
{
    Q_OBJECT

private slots:
    void showsTheRowOfARunningDaemon();
};

void tst_OverviewForm::showsTheRowOfARunningDaemon()
{
    ShimFolder shims;
    shims.addPrinting(QStringLiteral("pgrep"), "1234 Corvane\n");
    shims.addPrinting(QStringLiteral("ps"), "Corvane  1234 alice    01:02:03  0.5  1.2\n");

    OverviewForm page;
    auto *tree = page.findChild<QTreeWidget *>(QStringLiteral("treeWidgetOW"));

    QCOMPARE(tree->topLevelItemCount(), 1);
    QCOMPARE(tree->topLevelItem(0)->text(4), QStringLiteral("0.5%"));
    QCOMPARE(LastPid::of(page), 1234LL);
}

QTEST_MAIN(tst_OverviewForm)
#include "tst_OverviewForm.moc"
