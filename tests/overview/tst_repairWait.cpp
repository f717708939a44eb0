#include "overview/repairWait.h"

#include <QSet>
#include <QTest>

class tst_repairWait : public QObject
{
    Q_OBJECT

private slots:
    void dependsOnTheSeedAlone();
    void coversTheWholeRange();
};

void tst_repairWait::dependsOnTheSeedAlone()
{
    QCOMPARE(repairWaitSeconds(0), 8);
    QCOMPARE(repairWaitSeconds(2), 11);
    QCOMPARE(repairWaitSeconds(0x80000000), 6);
    QCOMPARE(repairWaitSeconds(0xffffffff), 10);
}

void tst_repairWait::coversTheWholeRange()
{
    QSet<int> drawn;
    for (quint32 seed = 0; seed < 1000; ++seed)
        drawn.insert(repairWaitSeconds(seed));
    QCOMPARE(drawn, (QSet<int> {5, 6, 7, 8, 9, 10, 11, 12, 13, 14}));
}

QTEST_GUILESS_MAIN(tst_repairWait)
#include "tst_repairWait.moc"
