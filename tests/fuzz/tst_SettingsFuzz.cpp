#include "tests/fuzz/fuzzSettings.h"
#include "tests/support/rounds.h"

#include <QDir>
#include <QElapsedTimer>
#include <QRandomGenerator>
#include <QtTest>

namespace {

constexpr int ShortRounds = 500;
constexpr quint32 RandomStart = 8;
constexpr int LongestInput = 160;

void tryInput(const QByteArray &input)
{
    const QtMessageHandler handler = ignoreMessages();
    LLVMFuzzerTestOneInput(reinterpret_cast<const uint8_t *>(input.constData()),
                           static_cast<size_t>(input.size()));
    qInstallMessageHandler(handler);
}

//! Changes a few bytes of \a input, or takes some out, or puts some in.
QByteArray mutated(QByteArray input, QRandomGenerator &random)
{
    constexpr int MostChanges = 4;
    constexpr int Bytes = 256;
    for (int changes = random.bounded(MostChanges); changes >= 0; --changes) {
        const int place = 1 + random.bounded(qMax(1, input.size()));
        const char byte = static_cast<char>(random.bounded(Bytes));
        switch (random.bounded(3)) {
        case 0:
            input.remove(place, 1 + random.bounded(MostChanges));
            break;
        case 1:
            input.insert(place, byte);
            break;
        default:
            if (place < input.size())
                input[place] = byte;
        }
    }
    return input;
}

} // namespace

/*!
    The inputs of the settings file's fuzzer that are kept, and random ones by a fixed start. The
    fuzzer itself: scripts/fuzz.sh.
*/
class tst_SettingsFuzz : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void keptInputs();
    void randomInputs();
    void changedInputs();

private:
    QList<QByteArray> m_kept;
};

void tst_SettingsFuzz::initTestCase()
{
    const QDir corpus(QStringLiteral(PANEL_TEST_CORPUS));
    const QStringList names = corpus.entryList(QDir::Files, QDir::Name);
    for (const QString &name : names) {
        QFile file(corpus.filePath(name));
        QVERIFY(file.open(QIODevice::ReadOnly));
        m_kept.append(file.readAll());
    }
    QVERIFY(m_kept.size() > 10);
}

// An input that shows a fault ends this process with a line that says what it is.

void tst_SettingsFuzz::keptInputs()
{
    for (const QByteArray &input : qAsConst(m_kept))
        tryInput(input);
}

void tst_SettingsFuzz::randomInputs()
{
    const int rounds = roundsOr(ShortRounds);
    const quint32 start = randomStartOr(RandomStart);
    QRandomGenerator random(start);
    QElapsedTimer timer;
    timer.start();
    for (int round = 0; round < rounds; ++round) {
        QByteArray input(1 + random.bounded(LongestInput), '\0');
        random.generate(input.begin(), input.end());
        tryInput(input);
    }
    qInfo("%d random inputs from %u in %lld ms", rounds, start, timer.elapsed());
}

void tst_SettingsFuzz::changedInputs()
{
    const int rounds = roundsOr(ShortRounds);
    const quint32 start = randomStartOr(RandomStart);
    QRandomGenerator random(start);
    for (int round = 0; round < rounds; ++round)
        tryInput(mutated(m_kept.at(random.bounded(m_kept.size())), random));
    qInfo("%d changed inputs from %u", rounds, start);
}

QTEST_MAIN(tst_SettingsFuzz)
#include "tst_SettingsFuzz.moc"
