#include "tests/support/PanelProcess.h"
#include "tests/support/files.h"

#include <QTest>

namespace {

const auto Variable = QStringLiteral("QT_XCB_GL_INTEGRATION");

QByteArray mappedFiles(qint64 pid)
{
    return readFile(QStringLiteral("/proc/%1/maps").arg(pid));
}

} // namespace

/*!
    The OpenGL driver stays out of the panel unless the user has chosen one, and no child of the
   panel sees a trace of that.
*/
class tst_WithoutOpenGl : public QObject
{
    Q_OBJECT

private slots:
    void driverStaysOut_data();
    void driverStaysOut();
};

void tst_WithoutOpenGl::driverStaysOut_data()
{
    QTest::addColumn<QString>("chosen");
    QTest::addColumn<QStringList>("seenByChildren");
    QTest::addColumn<bool>("loaded");

    QTest::newRow("nothing chosen") << QString() << QStringList() << false;
    QTest::newRow("driver chosen")
            << QStringLiteral("xcb_glx") << QStringList(QStringLiteral("xcb_glx")) << true;
    QTest::newRow("none chosen") << QStringLiteral("none") << QStringList(QStringLiteral("none"))
                                 << false;
}

void tst_WithoutOpenGl::driverStaysOut()
{
    QFETCH(QString, chosen);
    QFETCH(QStringList, seenByChildren);
    QFETCH(bool, loaded);

    PanelProcess panel;
    panel.placeDaemon();
    panel.environment().remove(Variable);
    if (!chosen.isEmpty())
        panel.environment().insert(Variable, chosen);
    QVERIFY(panel.start());

    const QByteArray maps = mappedFiles(panel.pid());
    QVERIFY(maps.contains("libqxcb.so"));
    QCOMPARE(maps.contains("/xcbglintegrations/"), loaded);

    QTRY_VERIFY(panel.hasDaemonRecord());
    const QString prefix = Variable + QLatin1Char('=');
    QStringList seen;
    const QStringList variables = panel.daemonRecord(QStringLiteral("environment"));
    for (const QString &variable : variables) {
        if (variable.startsWith(prefix))
            seen.append(variable.mid(prefix.size()));
    }
    QCOMPARE(seen, seenByChildren);
}

QTEST_MAIN(tst_WithoutOpenGl)
#include "tst_WithoutOpenGl.moc"
