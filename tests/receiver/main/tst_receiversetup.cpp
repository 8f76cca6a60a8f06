#include <QTest>
#include <cmath>

#include "receiver/main/receiversetup.h"
#include "receiver/sources/emitters.h"

using namespace Receiver;

// Where the channels stand when the driver starts.
class TestReceiverSetup : public QObject
{
    Q_OBJECT
private slots:
    void theFirstChannelStandsOnTheSteadyStation();
    void everyChannelStandsOnAnEmitterInTheBand_data();
    void everyChannelStandsOnAnEmitterInTheBand();
    void onlyTheFourthChannelDoesPulseAnalysis();
    void withFewerThanFourChannelsNoneDoesPulseAnalysis();
    void theSourcesFactsAreTakenOver();
};

namespace {

ReceiverSetup sceneSetup(quint64 seed, int channels)
{
    DriverOptions options;
    options.seed = seed;
    options.channels = channels;
    return receiverSetup(options, *openScene(seed));
}

}  // namespace

void TestReceiverSetup::theFirstChannelStandsOnTheSteadyStation()
{
    const ReceiverSetup setup = sceneSetup(1, 4);
    for (const QString channel : {"DDC1", "MAIN"}) {
        const ChannelStart start = setup.start(channel);
        QCOMPARE(start.frequency, 98.5e6);
        QCOMPARE(start.demodulation, Demodulation::fm);
        QCOMPARE(start.bandwidth, 150e3);
    }
}

void TestReceiverSetup::everyChannelStandsOnAnEmitterInTheBand_data()
{
    QTest::addColumn<quint64>("seed");
    QTest::addColumn<int>("channels");
    QTest::newRow("default") << quint64(1) << 4;
    QTest::newRow("another scene") << quint64(77) << 4;
    QTest::newRow("one channel") << quint64(2) << 1;
    QTest::newRow("more channels than emitters") << quint64(3) << 40;
}

void TestReceiverSetup::everyChannelStandsOnAnEmitterInTheBand()
{
    QFETCH(quint64, seed);
    QFETCH(int, channels);
    const ReceiverSetup setup = sceneSetup(seed, channels);
    const QVector<SceneEmitter> emitters = sceneEmitters(seed);
    QCOMPARE(setup.channels.size(), channels);
    for (const QString& channel : setup.allChannels()) {
        const ChannelStart start = setup.start(channel);
        const bool onEmitter =
            std::any_of(emitters.begin(), emitters.end(), [&start](const SceneEmitter& emitter) {
                return std::abs(emitter.frequency - start.frequency) < 1;
            });
        QVERIFY2(onEmitter, qPrintable(channel));
        QVERIFY(std::abs(start.frequency - setup.source.center) < setup.source.sampleRate / 2);
        QVERIFY(start.bandwidth > 0);
    }
}

void TestReceiverSetup::onlyTheFourthChannelDoesPulseAnalysis()
{
    QCOMPARE(sceneSetup(1, 6).pulseChannels, QStringList("DDC4"));
}

void TestReceiverSetup::withFewerThanFourChannelsNoneDoesPulseAnalysis()
{
    QVERIFY(sceneSetup(1, 3).pulseChannels.isEmpty());
}

void TestReceiverSetup::theSourcesFactsAreTakenOver()
{
    const ReceiverSetup setup = sceneSetup(1, 4);
    QCOMPARE(setup.source.sampleRate, sceneSampleRate);
    QCOMPARE(setup.source.center, sceneCenterDefault);
    QCOMPARE(setup.source.centerMinimum, sceneCenterMinimum);
    QCOMPARE(setup.source.centerMaximum, sceneCenterMaximum);
}

QTEST_APPLESS_MAIN(TestReceiverSetup)
#include "tst_receiversetup.moc"
