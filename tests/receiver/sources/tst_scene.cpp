#include <QTest>
#include <cmath>
#include <memory>

#include "../reference.h"
#include "receiver/sources/emitters.h"
#include "receiver/sources/opensource.h"

using namespace Receiver;

namespace {

constexpr int size = 32768;  // 153 Hz a bin
constexpr quint64 seed = 1;

// The scene's spectra every quarter of a transform, so that every moment counts alike. Kept are
// sums over stretches of the axis only: a second of it all would fill the memory.
struct Band
{
    double low;                  // Hz
    double high;                 // Hz
    std::vector<double> powers;  // of each spectrum
};

void measure(IqSource& source, double seconds, std::vector<Band>& bands)
{
    const int hop = size / 4;
    std::vector<Sample> samples(size);
    source.read(samples.data() + hop, std::size_t(size - hop));
    const auto count = int(seconds * source.sampleRate() / hop) - 3;
    for (int i = 0; i < count; ++i) {
        std::copy(samples.begin() + hop, samples.end(), samples.begin());
        source.read(samples.data() + size - hop, std::size_t(hop));
        const std::vector<double> spectrum = Reference::spectrum(samples.data(), size);
        for (Band& band : bands) {
            const double resolution = source.sampleRate() / size;
            const auto binOf = [&](double hertz) {
                return int(std::clamp(std::ceil((hertz - source.center()) / resolution + size / 2), 0.0,
                                      double(size)));
            };
            double power = 0;
            for (int bin = binOf(band.low); bin < binOf(band.high); ++bin)
                power += spectrum[std::size_t(bin)];
            band.powers.push_back(power);
        }
    }
}

double decibels(double power)
{
    return 10 * std::log10(power);
}

double mean(const std::vector<double>& values, std::size_t count)
{
    double sum = 0;
    for (std::size_t i = 0; i < count; ++i)
        sum += values[i];
    return sum / double(count);
}

bool isInside(const SceneEmitter& emitter, double center)
{
    return std::abs(emitter.frequency - center) + emitter.bandwidth / 2 < 2e6;
}

}  // namespace

class SceneTest : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void listHoldsAtLeastTwelveEmittersOfDifferentKinds();
    void everySeedHasTheSameStationAndTheSameCarrier();
    void emitterIsFoundWithItsLevel_data();
    void emitterIsFoundWithItsLevel();
    void nothingElseIsBesideAnEmitter_data();
    void nothingElseIsBesideAnEmitter();
    void carrierStandsExactlyOnItsFrequency();
    void driftingCarrierMoves();
    void levelsDriftOverTime();
    void noiseFloorIsAsStated();
    void samplesStayWithinFullScale();
    void sameSeedGivesTheSameSamplesInReadsOfAnySize();
    void otherSeedsGiveOtherScenes();
    void rewindingGivesTheSameSamplesAgain();
    void emittersStayOnTheirFrequencyWhenTheCentreMoves();
    void centreIsHeldWithinItsLimits();

private:
    void eachEmitter();
    QVector<SceneEmitter> m_emitters;
    std::vector<Band> m_bands;   // each emitter's, in their order
    std::vector<Band> m_beside;  // the same width below and above, in turn
    std::vector<Band> m_empty;
};

void SceneTest::initTestCase()
{
    m_emitters = sceneEmitters(seed);
    std::vector<Band> all;
    for (const SceneEmitter& emitter : m_emitters) {
        const double half = emitter.bandwidth / 2;
        const double f = emitter.frequency;
        all.push_back({f - half, f + half, {}});
        all.push_back({f - 2 * half, f - half, {}});
        all.push_back({f + half, f + 2 * half, {}});
    }
    all.push_back({98.2e6, 98.35e6, {}});
    const auto source = openScene(seed);
    measure(*source, 2.0, all);
    for (int i = 0; i < m_emitters.size(); ++i) {
        m_bands.push_back(all[std::size_t(3 * i)]);
        m_beside.push_back(all[std::size_t(3 * i + 1)]);
        m_beside.push_back(all[std::size_t(3 * i + 2)]);
    }
    m_empty.push_back(all.back());
}

void SceneTest::eachEmitter()
{
    QTest::addColumn<int>("index");
    for (int i = 0; i < m_emitters.size(); ++i)
        if (isInside(m_emitters[i], sceneCenterDefault))
            QTest::addRow("%s at %.4f MHz", qPrintable(emitterKindName(m_emitters[i].kind)),
                          m_emitters[i].frequency / 1e6)
                << i;
}

void SceneTest::listHoldsAtLeastTwelveEmittersOfDifferentKinds()
{
    QSet<int> kinds;
    int inside = 0;
    for (const SceneEmitter& emitter : m_emitters) {
        if (!isInside(emitter, sceneCenterDefault))
            continue;
        ++inside;
        kinds.insert(int(emitter.kind));
        QVERIFY(!emitterKindName(emitter.kind).isEmpty());
    }
    QVERIFY2(inside >= 12, qPrintable(QString::number(inside)));
    QVERIFY2(kinds.size() >= 12, qPrintable(QString::number(kinds.size())));
}

void SceneTest::everySeedHasTheSameStationAndTheSameCarrier()
{
    for (const quint64 other : {0ULL, 1ULL, 2ULL, 77ULL, ~0ULL}) {
        bool station = false;
        bool carrier = false;
        for (const SceneEmitter& emitter : sceneEmitters(other)) {
            const bool steady = emitter.fadeDepth == 0 && emitter.drift == 0 && emitter.duty == 1;
            station = station || (emitter.kind == EmitterKind::FmBroadcast && emitter.frequency == 98.5e6 &&
                                  emitter.level == -24 && steady);
            carrier = carrier || (emitter.kind == EmitterKind::Carrier && emitter.frequency == 97.3e6 &&
                                  emitter.level == -40 && steady);
        }
        QVERIFY(station);
        QVERIFY(carrier);
    }
}

void SceneTest::emitterIsFoundWithItsLevel_data()
{
    eachEmitter();
}

void SceneTest::emitterIsFoundWithItsLevel()
{
    QFETCH(int, index);
    const SceneEmitter& emitter = m_emitters[index];
    const std::vector<double>& powers = m_bands[std::size_t(index)].powers;
    // Over whole repetitions of what it sends, as many as were measured.
    const double spectraPerSecond = sceneSampleRate / (size / 4.0);
    double seconds = double(powers.size()) / spectraPerSecond;
    if (emitter.period > 0)
        seconds = std::floor(seconds / emitter.period) * emitter.period;
    QVERIFY(seconds > 0);
    const auto count = std::size_t(seconds * spectraPerSecond);
    double expected = 0;
    for (std::size_t i = 0; i < count; ++i)
        expected += std::pow(10.0, emitter.levelAt(double(i) / spectraPerSecond) / 10) * emitter.duty;
    expected /= double(count);
    const double noise = std::pow(10.0, sceneNoiseLevel / 10) * emitter.bandwidth / sceneSampleRate;
    const double measured = decibels(mean(powers, count) - noise);
    QVERIFY2(std::abs(measured - decibels(expected)) < 1.0,
             qPrintable(QString("%1 dBFS measured, %2 expected").arg(measured).arg(decibels(expected))));
}

void SceneTest::nothingElseIsBesideAnEmitter_data()
{
    eachEmitter();
}

void SceneTest::nothingElseIsBesideAnEmitter()
{
    QFETCH(int, index);
    const auto& own = m_bands[std::size_t(index)].powers;
    const auto& below = m_beside[std::size_t(2 * index)].powers;
    const auto& above = m_beside[std::size_t(2 * index + 1)].powers;
    const double level = decibels(mean(own, own.size()));
    QVERIFY(decibels(mean(below, below.size())) < level - 10);
    QVERIFY(decibels(mean(above, above.size())) < level - 10);
}

void SceneTest::carrierStandsExactlyOnItsFrequency()
{
    const auto source = openScene(seed);
    std::vector<Sample> samples(500000);
    source->read(samples.data(), samples.size());
    // Ten hertz a bin by a plain sum; the carrier must be the largest by far.
    const auto at = [&](double hertz) {
        std::complex<double> sum;
        for (std::size_t i = 0; i < samples.size(); ++i)
            sum +=
                std::complex<double>(samples[i]) *
                std::polar(1.0, -2 * 3.14159265358979323846 *
                                    std::fmod((hertz - source->center()) * double(i) / sceneSampleRate, 1.0));
        return decibels(std::norm(sum / double(samples.size())));
    };
    QVERIFY2(std::abs(at(97.3e6) + 40) < 0.2, qPrintable(QString::number(at(97.3e6))));
    for (const double beside : {-100.0, -30.0, -10.0, 10.0, 30.0, 100.0})
        QVERIFY2(at(97.3e6 + beside) < -70, qPrintable(QString::number(at(97.3e6 + beside))));
}

void SceneTest::driftingCarrierMoves()
{
    for (const SceneEmitter& emitter : m_emitters) {
        if (emitter.kind != EmitterKind::DriftingCarrier)
            continue;
        QVERIFY(emitter.drift > 0);
        // Where the strongest bin is at the beginning, and after two seconds.
        const auto source = openScene(seed);
        std::vector<double> places;
        std::vector<Sample> samples(size);
        for (int step = 0; step < 2; ++step) {
            source->read(samples.data(), samples.size());
            const auto spectrum = Reference::spectrum(samples.data(), size);
            const double resolution = sceneSampleRate / size;
            const auto bin = [&](double hertz) {
                return std::size_t((hertz - source->center()) / resolution + size / 2.0);
            };
            const auto from = spectrum.begin() + qint64(bin(emitter.frequency - emitter.bandwidth / 2));
            const auto to = spectrum.begin() + qint64(bin(emitter.frequency + emitter.bandwidth / 2));
            places.push_back(double(std::max_element(from, to) - spectrum.begin()) * resolution);
            for (int skip = 0; step == 0 && skip < 300; ++skip)
                source->read(samples.data(), samples.size());
        }
        QVERIFY2(std::abs(places[1] - places[0]) > 300, qPrintable(QString::number(places[1] - places[0])));
        QVERIFY(std::abs(places[1] - places[0]) < 2 * emitter.drift);
        return;
    }
    QFAIL("no drifting carrier");
}

void SceneTest::levelsDriftOverTime()
{
    int drifting = 0;
    for (const SceneEmitter& emitter : m_emitters) {
        double low = 0;
        double high = -200;
        for (double t = 0; t < 30; t += 0.1) {
            low = std::min(low, emitter.levelAt(t));
            high = std::max(high, emitter.levelAt(t));
        }
        QVERIFY(std::abs((high - low) - 2 * emitter.fadeDepth) < 0.2);
        drifting += emitter.fadeDepth > 0 ? 1 : 0;
    }
    QVERIFY(drifting >= 8);
}

void SceneTest::noiseFloorIsAsStated()
{
    const auto& powers = m_empty.front().powers;
    const double expected = sceneNoiseLevel + decibels(150e3 / sceneSampleRate);
    const double measured = decibels(mean(powers, powers.size()));
    QVERIFY2(std::abs(measured - expected) < 0.5, qPrintable(QString::number(measured - expected)));
}

void SceneTest::samplesStayWithinFullScale()
{
    for (const double center : {88e6, 94e6, 98e6, 103e6}) {
        const auto source = openScene(seed);
        source->setCenter(center);
        std::vector<Sample> samples(1000000);
        source->read(samples.data(), samples.size());
        float largest = 0;
        for (const Sample& sample : samples)
            largest = std::max(largest, std::abs(sample));
        QVERIFY2(largest < 0.9F, qPrintable(QString::number(double(largest))));
    }
}

void SceneTest::sameSeedGivesTheSameSamplesInReadsOfAnySize()
{
    const auto one = openScene(5);
    const auto other = openScene(5);
    std::vector<Sample> a(300000);
    std::vector<Sample> b(300000);
    QCOMPARE(one->read(a.data(), a.size()), a.size());
    std::size_t have = 0;
    for (std::size_t step = 1; have < b.size(); step = step * 3 % 20011 + 1)
        have += other->read(b.data() + have, std::min(step, b.size() - have));
    QVERIFY(a == b);
}

void SceneTest::otherSeedsGiveOtherScenes()
{
    const auto one = openScene(5);
    const auto other = openScene(6);
    QVERIFY(one->name() != other->name());
    std::vector<Sample> a(1000);
    std::vector<Sample> b(1000);
    one->read(a.data(), a.size());
    other->read(b.data(), b.size());
    QVERIFY(a != b);
    const auto ofOne = sceneEmitters(5);
    const auto ofOther = sceneEmitters(6);
    QVERIFY(ofOne[4].frequency != ofOther[4].frequency || ofOne[5].frequency != ofOther[5].frequency);
    QVERIFY(ofOne[3].level != ofOther[3].level);
}

void SceneTest::rewindingGivesTheSameSamplesAgain()
{
    const auto source = openScene(5);
    std::vector<Sample> a(100000);
    std::vector<Sample> b(100000);
    source->read(a.data(), a.size());
    QVERIFY(source->rewind());
    source->read(b.data(), b.size());
    QVERIFY(a == b);
}

void SceneTest::emittersStayOnTheirFrequencyWhenTheCentreMoves()
{
    for (const double center : {95.4e6, 97.123456e6, 99.05e6, 100.2e6}) {
        const auto source = openScene(seed);
        std::vector<Sample> skipped(65536);
        source->read(skipped.data(), skipped.size());
        source->setCenter(center);
        QCOMPARE(source->center(), center);
        source->read(skipped.data(), skipped.size());
        std::vector<Band> bands{{97.3e6 - 500, 97.3e6 + 500, {}}, {98.41e6, 98.59e6, {}}};
        measure(*source, 0.1, bands);
        if (std::abs(97.3e6 - center) < 2.4e6)
            QVERIFY(std::abs(decibels(mean(bands[0].powers, bands[0].powers.size())) + 40) < 0.5);
        if (std::abs(98.5e6 - center) < 2.4e6)
            QVERIFY(std::abs(decibels(mean(bands[1].powers, bands[1].powers.size())) + 24) < 0.5);
    }
}

void SceneTest::centreIsHeldWithinItsLimits()
{
    const auto source = openScene(seed);
    QCOMPARE(source->center(), 98e6);
    source->setCenter(1e3);
    QCOMPARE(source->center(), source->centerMinimum());
    source->setCenter(1e12);
    QCOMPARE(source->center(), source->centerMaximum());
    source->setCenter(std::numeric_limits<double>::quiet_NaN());
    QCOMPARE(source->center(), source->centerMaximum());
    std::vector<Sample> samples(100000);
    QCOMPARE(source->read(samples.data(), samples.size()), samples.size());
}

QTEST_GUILESS_MAIN(SceneTest)
#include "tst_scene.moc"
