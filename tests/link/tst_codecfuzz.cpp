#include <sys/resource.h>

#include <QRandomGenerator>
#include <QtTest>

#include "codecsamples.h"
#include "link/codec.h"
#include "link/limits.h"

using namespace Link;

namespace {

constexpr quint32 seed = 20260501;
constexpr int defaultFrames = 60000;
constexpr long boundedGrowthKb = 256 * 1024;

long peakKb()
{
    rusage usage;
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss;
}

// Changes, cuts, doubles and inserts a few bytes.
QByteArray mutated(QByteArray payload, const QVector<QByteArray>& corpus, QRandomGenerator& random)
{
    const int changes = 1 + random.bounded(6);
    for (int i = 0; i < changes && !payload.isEmpty(); ++i) {
        const qsizetype at = random.bounded(int(payload.size()));
        switch (random.bounded(6)) {
            case 0:
                payload[at] = char(random.bounded(256));
                break;
            case 1:
                payload[at] = char(payload.at(at) ^ (1 << random.bounded(8)));
                break;
            case 2:
                payload.truncate(at);
                break;
            case 3:
                payload.insert(at, payload.mid(at, random.bounded(32)));
                break;
            case 4:
                // Heads of long things.
                payload.insert(at,
                               QByteArray::fromHex(random.bounded(2) ? "9bffffffffffffff00" : "7a7fffffff"));
                break;
            default: {
                const QByteArray& other = corpus.at(random.bounded(int(corpus.size())));
                payload.replace(at, random.bounded(16), other.mid(random.bounded(int(other.size())), 16));
                break;
            }
        }
    }
    return payload;
}

}  // namespace

class TestCodecFuzz : public QObject
{
    Q_OBJECT
private slots:
    void changedFramesNeitherCrashNorGrow();
    void whatIsAcceptedSurvivesAnotherRoundTrip();

private:
    QVector<QByteArray> m_corpus;
    int m_frames = defaultFrames;
    void fill();
};

void TestCodecFuzz::fill()
{
    m_corpus.clear();
    for (const Message& message : sampleMessages())
        m_corpus.append(encode(message));
    const int wanted = qEnvironmentVariableIntValue("RX_FUZZ_FRAMES");
    m_frames = wanted > 0 ? wanted : defaultFrames;
}

void TestCodecFuzz::changedFramesNeitherCrashNorGrow()
{
    fill();
    QRandomGenerator random(seed);
    const long before = peakKb();
    int refused = 0;
    for (int i = 0; i < m_frames; ++i) {
        const QByteArray payload =
            mutated(m_corpus.at(random.bounded(int(m_corpus.size()))), m_corpus, random);
        Message message;
        QString error;
        if (!decode(payload, &message, &error)) {
            ++refused;
            QVERIFY2(!error.isEmpty(), payload.toHex().constData());
        }
    }
    QVERIFY2(refused > m_frames / 4, qPrintable(QString::number(refused)));
    const long grown = peakKb() - before;
    QVERIFY2(grown < boundedGrowthKb, qPrintable(QStringLiteral("%1 KB").arg(grown)));
}

void TestCodecFuzz::whatIsAcceptedSurvivesAnotherRoundTrip()
{
    fill();
    QRandomGenerator random(seed + 1);
    int accepted = 0;
    for (int i = 0; i < m_frames; ++i) {
        const QByteArray payload =
            mutated(m_corpus.at(random.bounded(int(m_corpus.size()))), m_corpus, random);
        Message first;
        QString error;
        if (!decode(payload, &first, &error))
            continue;
        ++accepted;
        Message second;
        QVERIFY2(decode(encode(first), &second, &error), payload.toHex().constData());
        QVERIFY2(dumped(second) == dumped(first), payload.toHex().constData());
    }
    QVERIFY(accepted > 0);
}

QTEST_GUILESS_MAIN(TestCodecFuzz)
#include "tst_codecfuzz.moc"
