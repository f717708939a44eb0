#include "app/TextScale.h"

#include <QTest>

#include <limits>

/*!
    Which scale comes of a desktop's text resolution and work area. What the server is asked, and
    what the environment holds, is tested with the whole program.
*/
class tst_TextScale : public QObject
{
    Q_OBJECT

private slots:
    void forWindow_data();
    void forWindow();
};

void tst_TextScale::forWindow_data()
{
    QTest::addColumn<qreal>("dpi");
    QTest::addColumn<QSize>("workArea");
    QTest::addColumn<qreal>("scale");

    const QSize large(10000, 10000);
    QTest::newRow("nothing chosen") << 0.0 << large << 1.0;
    QTest::newRow("below the limit") << 109.9 << large << 1.0;
    QTest::newRow("at the limit") << 110.0 << large << 110.0 / 96;
    QTest::newRow("288") << 288.0 << large << 3.0;
    QTest::newRow("negative") << -192.0 << large << 1.0;
    QTest::newRow("not a number") << std::numeric_limits<qreal>::quiet_NaN() << large << 1.0;
    QTest::newRow("infinite") << std::numeric_limits<qreal>::infinity() << QSize(1920, 1080)
                              << 1.75;
    QTest::newRow("work area unknown") << 192.0 << QSize() << 2.0;
    QTest::newRow("fits exactly") << 192.0 << QSize(1600, 1200) << 2.0;
    QTest::newRow("too wide by a pixel") << 192.0 << QSize(1599, 1200) << 1.75;
    QTest::newRow("too high by a pixel") << 192.0 << QSize(1600, 1199) << 1.75;
    QTest::newRow("between two steps") << 230.0 << QSize(1920, 1400) << 2.25;
    QTest::newRow("much too large") << 192.0 << QSize(1366, 768) << 1.25;
    QTest::newRow("never below 1") << 192.0 << QSize(640, 480) << 1.0;
}

void tst_TextScale::forWindow()
{
    QFETCH(qreal, dpi);
    QFETCH(QSize, workArea);
    QTEST(TextScale::forWindow(dpi, QSize(800, 600), workArea), "scale");
}

QTEST_APPLESS_MAIN(tst_TextScale)
#include "tst_TextScale.moc"
