#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

namespace {

const QByteArray Variable = QByteArrayLiteral("QT_XCB_GL_INTEGRATION");
const QString DriverPlugin = QStringLiteral("glx-integration");

QByteArray content(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

//! The value of the line "key=value" in \a record.
QByteArray recorded(const QByteArray &record, const QByteArray &key)
{
    const QList<QByteArray> lines = record.split('\n');
    for (const QByteArray &line : lines) {
        if (line.startsWith(key + '='))
            return line.mid(key.size() + 1);
    }
    return {};
}

} // namespace

//! Starts the real panel, beside a daemon that records what it was started with.
class tst_startUpWithoutOpenGl : public QObject
{
    Q_OBJECT

private slots:
    void cleanup();
    void driverStaysOut_data();
    void driverStaysOut();

private:
    std::unique_ptr<QTemporaryDir> m_root;
    QString m_record;
};

void tst_startUpWithoutOpenGl::cleanup()
{
    const qint64 daemon = recorded(content(m_record), "pid").toLongLong();
    if (daemon > 0)
        QProcess::execute(QStringLiteral("kill"), {QString::number(daemon)});
    QTRY_COMPARE(QProcess::execute(QStringLiteral("pgrep"),
                                   {QStringLiteral("-x"), QStringLiteral("Corvane")}),
                 1);
    m_root.reset();
}

void tst_startUpWithoutOpenGl::driverStaysOut_data()
{
    QTest::addColumn<QByteArray>("chosen");
    QTest::addColumn<QByteArray>("seenByChildren");
    QTest::addColumn<bool>("loaded");

    QTest::newRow("nothing chosen") << QByteArray() << QByteArray() << false;
    QTest::newRow("driver chosen")
            << QByteArrayLiteral("xcb_glx") << QByteArrayLiteral("xcb_glx") << true;
    QTest::newRow("none chosen") << QByteArrayLiteral("none") << QByteArrayLiteral("none") << false;
}

void tst_startUpWithoutOpenGl::driverStaysOut()
{
    QFETCH(QByteArray, chosen);
    QFETCH(QByteArray, seenByChildren);
    QFETCH(bool, loaded);

    m_root = std::make_unique<QTemporaryDir>();
    m_record = m_root->filePath(QStringLiteral("record"));
    const QString program = m_root->filePath(QStringLiteral("corvane-panel"));
    QVERIFY(QFile::copy(QStringLiteral(PANEL_TEST_PROGRAM), program));
    QVERIFY(QFile::copy(QStringLiteral(PANEL_TEST_DAEMON),
                        m_root->filePath(QStringLiteral("Corvane"))));

    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("CORVANE_RECORD"), m_record);
    if (chosen.isEmpty())
        environment.remove(QString::fromLatin1(Variable));
    else
        environment.insert(QString::fromLatin1(Variable), QString::fromLatin1(chosen));

    QProcess panel;
    panel.setProcessEnvironment(environment);
    panel.start(program, QStringList());
    QVERIFY(panel.waitForStarted());
    const auto windowIsShown = [] {
        return QProcess::execute(QStringLiteral("xdotool"),
                                 {QStringLiteral("search"), QStringLiteral("--onlyvisible"),
                                  QStringLiteral("--name"), QStringLiteral("^朔川统一服务$")})
               == 0;
    };
    QTRY_VERIFY_WITH_TIMEOUT(windowIsShown(), 20000);

    const QByteArray maps = content(QStringLiteral("/proc/%1/maps").arg(panel.processId()));
    QVERIFY(maps.contains("libqxcb.so"));
    QCOMPARE(maps.contains(DriverPlugin.toUtf8()), loaded);

    const QByteArray record = content(m_record);
    QVERIFY(!recorded(record, "pid").isEmpty());
    QCOMPARE(recorded(record, "environment=" + Variable), seenByChildren);

    panel.terminate();
    QVERIFY(panel.waitForFinished());
}

QTEST_GUILESS_MAIN(tst_startUpWithoutOpenGl)
#include "tst_startUpWithoutOpenGl.moc"
