#include "app/executeInMain.h"

#include <QTest>

class tst_executeInMain : public QObject
{
    Q_OBJECT

private slots:
    void yieldsOutputAndExitCode();
};

void tst_executeInMain::yieldsOutputAndExitCode()
{
    const QList<QVariant> result =
            executeInMain(QStringLiteral("/bin/bash"),
                          {QStringLiteral("-c"), QStringLiteral("printf 'a b\\n'; exit 3")});

    QCOMPARE(result.size(), 2);
    QCOMPARE(result.at(0).type(), QVariant::ByteArray);
    QCOMPARE(result.at(0).toByteArray(), QByteArrayLiteral("a b\n"));
    QCOMPARE(result.at(1).type(), QVariant::Int);
    QCOMPARE(result.at(1).toInt(), 3);
}

QTEST_GUILESS_MAIN(tst_executeInMain)
#include "tst_executeInMain.moc"
