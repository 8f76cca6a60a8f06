#include <QTest>
#include <cmath>

#include "receiver/dsp/decimator.h"
#include "signals.h"

using namespace Receiver;

namespace {

constexpr double rate = 1e6;

// What comes out for a tone of full scale at `offset` Hz, in dB, without the filters' first answer.
double responseTo(double band, int factor, double offset)
{
    Decimator decimator(rate, band, factor);
    const auto settle = std::size_t(std::ceil(2 * decimator.delay())) + 1;
    const std::size_t wanted = 64;
    const auto input = Signals::tone(rate, offset, 0, (settle + wanted) * std::size_t(factor));
    std::vector<Sample> output;
    decimator.process(input.data(), input.size(), output);
    double power = 0;
    for (std::size_t i = settle; i < output.size(); ++i)
        power += double(std::norm(output[i]));
    return 10 * std::log10(std::max(power / double(output.size() - settle), 1e-20));
}

void addFactors()
{
    QTest::addColumn<int>("factor");
    for (const int factor : {2,  3,  4,  5,  6,  7,  8,   10,  12,  14,  15,  16,  20,  21,  25, 28,
                             32, 40, 49, 50, 64, 80, 100, 125, 128, 200, 250, 343, 400, 500, 800})
        QTest::addRow("factor %d", factor) << factor;
}

// The widest band that a factor is made for.
double bandOf(int factor)
{
    return rate / factor / 1.25;
}

}  // namespace

class TestDecimator : public QObject
{
    Q_OBJECT
private slots:
    void theFactorLeavesTheBandFreeOfFolding_data();
    void theFactorLeavesTheBandFreeOfFolding();
    void thePassBandIsFlat_data() { addFactors(); }
    void thePassBandIsFlat();
    void whatFoldsIntoTheBandIsEightyDecibelsDown_data() { addFactors(); }
    void whatFoldsIntoTheBandIsEightyDecibelsDown();
    void aToneKeepsItsFrequency();
    void blocksOfAnySizeGiveTheSameSamples();
    void theDelayIsThatOfAnImpulse_data() { addFactors(); }
    void theDelayIsThatOfAnImpulse();
    void aFactorOfOnePassesTheSamplesThrough();
    void aResetForgetsThePast();
};

void TestDecimator::theFactorLeavesTheBandFreeOfFolding_data()
{
    QTest::addColumn<double>("sampleRate");
    QTest::addColumn<double>("band");
    QTest::addColumn<int>("factor");
    QTest::newRow("whole band") << 5e6 << 5e6 << 1;
    QTest::newRow("wider than the band") << 5e6 << 9e6 << 1;
    QTest::newRow("usable part") << 5e6 << 4e6 << 1;
    QTest::newRow("half") << 5e6 << 2e6 << 2;
    QTest::newRow("exactly") << 5e6 << 1e6 << 4;
    QTest::newRow("13 is no product of small factors") << 1e6 << 60e3 << 12;
    QTest::newRow("very narrow") << 5e6 << 1e3 << 4000;
    QTest::newRow("odd rate") << 12001.03 << 1e3 << 9;
    QTest::newRow("no band") << 5e6 << 0.0 << 1;
    QTest::newRow("no rate") << 0.0 << 1e3 << 1;
    QTest::newRow("not a number") << 5e6 << std::nan("") << 1;
}

void TestDecimator::theFactorLeavesTheBandFreeOfFolding()
{
    QFETCH(double, sampleRate);
    QFETCH(double, band);
    QFETCH(int, factor);
    QCOMPARE(Decimator::factorFor(sampleRate, band), factor);
    if (factor > 1)
        QVERIFY(sampleRate / factor >= 1.25 * band);
}

void TestDecimator::thePassBandIsFlat()
{
    QFETCH(int, factor);
    const double band = bandOf(factor);
    double lowest = 100;
    double highest = -100;
    for (int i = -8; i <= 8; ++i) {
        const double level = responseTo(band, factor, band / 2 * i / 8);
        lowest = std::min(lowest, level);
        highest = std::max(highest, level);
    }
    QVERIFY2(lowest > -0.05 && highest < 0.05, qPrintable(QString("%1 to %2 dB").arg(lowest).arg(highest)));
}

void TestDecimator::whatFoldsIntoTheBandIsEightyDecibelsDown()
{
    QFETCH(int, factor);
    const double band = bandOf(factor);
    const double lower = rate / factor;
    double worst = -300;
    // The images of the band's edges, of its middle and of points between. Of many images only some,
    // but the nearest and the farthest always.
    const int images = factor / 2;
    for (int image = 1; image <= images; image += std::max(1, images / 12)) {
        for (const double inside : {-0.5, -0.23, 0.0, 0.31, 0.5}) {
            for (const int sign : {-1, 1}) {
                const double offset = sign * image * lower + inside * band;
                if (std::abs(offset) <= rate / 2)
                    worst = std::max(worst, responseTo(band, factor, offset));
            }
        }
    }
    QVERIFY2(worst < -80, qPrintable(QString("%1 dB").arg(worst)));
}

void TestDecimator::aToneKeepsItsFrequency()
{
    Decimator decimator(rate, bandOf(20), 20);
    const double offset = 7321.5;
    const auto input = Signals::tone(rate, offset, 0, 200000);
    std::vector<Sample> output;
    decimator.process(input.data(), input.size(), output);
    QCOMPARE(decimator.outputRate(), 50e3);
    QCOMPARE(int(output.size()), 10000);
    const std::complex<double> turn = std::complex<double>(output[9000]) / std::complex<double>(output[8999]);
    QVERIFY(std::abs(std::arg(turn) * 50e3 / (2 * Signals::pi) - offset) < 0.01);
}

void TestDecimator::blocksOfAnySizeGiveTheSameSamples()
{
    const auto input = Signals::noise(-10, 20000);
    std::vector<Sample> whole;
    Decimator(rate, bandOf(28), 28).process(input.data(), input.size(), whole);
    std::vector<Sample> pieces;
    Decimator decimator(rate, bandOf(28), 28);
    std::mt19937 random(7);
    for (std::size_t at = 0; at < input.size();) {
        const std::size_t count = std::min<std::size_t>(random() % 97, input.size() - at);
        decimator.process(input.data() + at, count, pieces);
        at += count;
    }
    QCOMPARE(pieces.size(), whole.size());
    for (std::size_t i = 0; i < whole.size(); ++i)
        QVERIFY(std::abs(pieces[i] - whole[i]) < 1e-6f);
}

void TestDecimator::theDelayIsThatOfAnImpulse()
{
    QFETCH(int, factor);
    Decimator decimator(rate, bandOf(factor), factor);
    // The middle of the answer's energy to an impulse on the first sample, in samples of the input:
    // the impulse is tried at every place between two outputs, or at some.
    double moment = 0;
    double energy = 0;
    const auto length = std::size_t(std::ceil(2 * decimator.delay()) + 4) * std::size_t(factor);
    for (int at = 0; at < factor; at += std::max(1, factor / 16)) {
        decimator.reset();
        std::vector<Sample> input(length);
        input[std::size_t(at)] = 1;
        std::vector<Sample> output;
        decimator.process(input.data(), input.size(), output);
        for (std::size_t i = 0; i < output.size(); ++i) {
            const double power = double(std::norm(output[i]));
            moment += power * (double(i) - double(at) / factor);
            energy += power;
        }
    }
    QVERIFY2(std::abs(moment / energy - decimator.delay()) < 0.1,
             qPrintable(QString("%1, not %2").arg(moment / energy).arg(decimator.delay())));
}

void TestDecimator::aFactorOfOnePassesTheSamplesThrough()
{
    const auto input = Signals::noise(0, 100);
    for (const int factor : {1, 0, -3}) {
        Decimator decimator(rate, rate, factor);
        QCOMPARE(decimator.factor(), 1);
        QCOMPARE(decimator.delay(), 0.0);
        std::vector<Sample> output;
        decimator.process(input.data(), input.size(), output);
        QVERIFY(output == input);
    }
}

void TestDecimator::aResetForgetsThePast()
{
    Decimator decimator(rate, bandOf(10), 10);
    const auto loud = Signals::noise(0, 5003);
    std::vector<Sample> output;
    decimator.process(loud.data(), loud.size(), output);
    decimator.reset();
    output.clear();
    const std::vector<Sample> silence(1000);
    decimator.process(silence.data(), silence.size(), output);
    QCOMPARE(int(output.size()), 100);
    for (const Sample& sample : output)
        QCOMPARE(std::abs(sample), 0.0f);
}

QTEST_GUILESS_MAIN(TestDecimator)
#include "tst_decimator.moc"
