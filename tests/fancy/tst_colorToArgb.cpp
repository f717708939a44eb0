#include "fancy/colorToArgb.h"

#include <QColor>
#include <QTest>

class tst_colorToArgb : public QObject
{
    Q_OBJECT

private slots:
    void givesAlphaRedGreenBlue_data();
    void givesAlphaRedGreenBlue();
};

void tst_colorToArgb::givesAlphaRedGreenBlue_data()
{
    QTest::addColumn<QColor>("color");
    QTest::addColumn<QString>("text");

    QTest::newRow("opaque white") << QColor(Qt::white) << "ffffffff";
    QTest::newRow("padded") << QColor(1, 2, 3, 4) << "04010203";
    QTest::newRow("transparent black") << QColor(0, 0, 0, 0) << "00000000";
    QTest::newRow("lower case") << QColor(0xAB, 0xCD, 0xEF, 0xFE) << "feabcdef";
    QTest::newRow("hue, saturation, value") << QColor::fromHsv(120, 255, 255) << "ff00ff00";
    QTest::newRow("invalid") << QColor() << "ff000000";
}

void tst_colorToArgb::givesAlphaRedGreenBlue()
{
    QFETCH(QColor, color);
    QFETCH(QString, text);

    QCOMPARE(colorToArgb(color), text);
}

QTEST_APPLESS_MAIN(tst_colorToArgb)
#include "tst_colorToArgb.moc"
