#include "overview/repairWait.h"

#include <QSet>
#include <QTest>

#include <random>

namespace {

//! The same drawn without Qt: one 32-bit number of the same generator, scaled to ten choices.
int expectedSeconds(quint32 value)
{
    std::seed_seq sequence {value};
    std::mt19937 generator(sequence);
    return int((quint64(generator()) * 10) >> 32) + 5;
}

} // namespace

class tst_repairWait : public QObject
{
    Q_OBJECT

private slots:
    void drawsAsDesigned();
    void coversTheWholeRange();
};

void tst_repairWait::drawsAsDesigned()
{
    for (const quint32 value : {0x7fffffffU, 0x80000000U, 0xffffffffU}) {
        QCOMPARE(repairWaitSeconds(value), expectedSeconds(value));
        QCOMPARE(repairWaitSeconds(value), repairWaitSeconds(value));
    }
}

void tst_repairWait::coversTheWholeRange()
{
    QSet<int> drawn;
    for (quint32 value = 0; value < 10000; ++value) {
        const int seconds = repairWaitSeconds(value);
        QCOMPARE(seconds, expectedSeconds(value));
        drawn.insert(seconds);
    }
    QCOMPARE(drawn, (QSet<int> {5, 6, 7, 8, 9, 10, 11, 12, 13, 14}));
}

QTEST_GUILESS_MAIN(tst_repairWait)
#include "tst_repairWait.moc"
