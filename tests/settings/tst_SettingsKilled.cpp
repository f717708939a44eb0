#include "settings/SettingsForm.h"

#include "tests/settings/SettingsHome.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QProcess>
#include <QSpinBox>
#include <QtTest>

namespace {

constexpr int Kills = 40;
//! The moments of the kills are spread over so many changes.
constexpr int ChangesSpread = 3;

//! What makes the file long enough to be seen half written.
QByteArray ballast()
{
    QByteArray lines = "\n[zz]\n";
    for (int key = 0; key < 500; ++key)
        lines += QByteArray::number(key).rightJustified(6, '0') + '=' + QByteArray(100, 'x') + '\n';
    return lines;
}

//! The page in a process of its own, changing a setting over and over; it has begun to.
class Writer : public QProcess
{
public:
    Writer()
    {
        start(QStringLiteral(PANEL_TEST_WRITER),
              {QStringLiteral("-platform"), QStringLiteral("offscreen")});
        waitForChange();
    }
    ~Writer() override { end(); }

    void waitForChange()
    {
        while (!canReadLine()) {
            if (!waitForReadyRead())
                qFatal("the writer does not write");
        }
        m_last = readLine().toInt();
    }

    void end()
    {
        kill();
        waitForFinished();
        while (canReadLine())
            m_last = readLine().toInt();
    }

    //! The value that was handed to the disk last.
    [[nodiscard]] int last() const { return m_last; }

private:
    int m_last = 0;
};

//! How long the writer needs for one change, in nanoseconds.
qint64 timeOfAChange()
{
    constexpr int Changes = 8;
    Writer writer;
    QElapsedTimer timer;
    timer.start();
    for (int i = 0; i < Changes; ++i)
        writer.waitForChange();
    return timer.nsecsElapsed() / Changes;
}

} // namespace

class tst_SettingsKilled : public QObject
{
    Q_OBJECT

private slots:
    void fileIsWholeAtAnyMoment();
};

void tst_SettingsKilled::fileIsWholeAtAnyMoment()
{
    const SettingsHome home;
    const QByteArray head = "[rpc]\ntimeout=";
    const QByteArray tail = '\n' + ballast();
    home.write(head + "10" + tail);

    const QString lock = home.file() + QStringLiteral(".lock");
    const qint64 step = timeOfAChange() * ChangesSpread / Kills;
    const auto freeLock = [&lock] {
        // QSettings waits half a minute for a lock that doesn't tell whose it is: a writer was
        // killed in the microseconds between making the lock and signing it.
        if (QFileInfo(lock).size() == 0)
            QFile::remove(lock);
    };
    freeLock();

    QSet<QByteArray> seen;
    int inTheMiddle = 0;
    for (int kill = 0; kill < Kills; ++kill) {
        Writer writer;
        QElapsedTimer timer;
        timer.start();
        while (timer.nsecsElapsed() < kill * step) { }
        writer.end();

        const QByteArray content = home.read();
        QVERIFY(content.startsWith(head));
        QVERIFY(content.endsWith(tail));
        const QByteArray value = content.mid(head.size(), 2);
        QCOMPARE(content, head + value + tail);
        QVERIFY(value.toInt() >= 10 && value.toInt() <= 60);

        // What was written last, or what was being written.
        const int next = writer.last() == 60 ? 10 : writer.last() + 1;
        QVERIFY(value.toInt() == writer.last() || value.toInt() == next);
        seen.insert(value);
        // What a killed writer leaves behind.
        if (home.entries().size() > 1)
            ++inTheMiddle;
        freeLock();
    }
    // Else no kill has hit a write, and nothing is shown by this.
    QVERIFY(inTheMiddle > 0);
    QVERIFY(seen.size() > 1);

    // A lock that a killed writer has left holds nobody up.
    const SettingsForm page;
    page.findChild<QSpinBox *>(QStringLiteral("spinUpload"))->setValue(7);
    page.findChild<QSpinBox *>(QStringLiteral("spinRpcTimeout"))->setValue(11);
    QCoreApplication::processEvents();
    QCOMPARE(home.read(), "[msg]\nuploadInterval=7\n\n" + head + "11" + tail);
}

QTEST_MAIN(tst_SettingsKilled)
#include "tst_SettingsKilled.moc"
