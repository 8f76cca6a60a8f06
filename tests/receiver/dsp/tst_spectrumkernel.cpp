#include <QTest>
#include <cmath>

#include "receiver/dsp/spectrumkernel.h"
#include "signals.h"

using namespace Receiver;

namespace {

constexpr double rate = 1e6;

std::vector<float> meanOf(const SpectrumKernel& kernel, float offset = 0)
{
    std::vector<float> levels(std::size_t(kernel.size()), -1e9f);
    kernel.meanLevels(0, kernel.size(), offset, levels.data());
    return levels;
}

std::vector<float> maximumOf(const SpectrumKernel& kernel, float offset = 0)
{
    std::vector<float> levels(std::size_t(kernel.size()), -1e9f);
    kernel.maximumLevels(0, kernel.size(), offset, levels.data());
    return levels;
}

void addWindows()
{
    QTest::addColumn<int>("window");
    QTest::newRow("Hann") << int(WindowFunction::Hann);
    QTest::newRow("Blackman-Harris") << int(WindowFunction::BlackmanHarris);
    QTest::newRow("flat top") << int(WindowFunction::FlatTop);
}

}  // namespace

class TestSpectrumKernel : public QObject
{
    Q_OBJECT
private slots:
    void aToneInABinsMiddleReadsItsLevel_data() { addWindows(); }
    void aToneInABinsMiddleReadsItsLevel();
    void noiseReadsItsPowerPerBin_data() { addWindows(); }
    void noiseReadsItsPowerPerBin();
    void theMeanIsOfPowerAndTheMaximumOfAnyBlock();
    void oneBlockIsMeanAndMaximumAtOnce();
    void aClearForgetsTheBlocksBefore();
    void aPartOfTheBinsIsTheSameAsAll();
    void nothingAddedLeavesTheLevelsUntouched();
    void silenceIsFinite();
    void theLevelsAreThoseOfADirectSum();
    void oddAndTinySizesAreRoundedUp();
};

void TestSpectrumKernel::aToneInABinsMiddleReadsItsLevel()
{
    QFETCH(int, window);
    for (const int size : {64, 1000, 4096}) {
        SpectrumKernel kernel(size, WindowFunction(window));
        for (const int bin : {2, size / 2 - 7, size / 2, size / 2 + 5, size - 3}) {
            const auto samples =
                Signals::tone(rate, (bin - size / 2) * rate / size, -37.5, std::size_t(size));
            kernel.clear();
            kernel.add(samples.data());
            const auto levels = meanOf(kernel, 80);
            QVERIFY2(std::abs(levels[std::size_t(bin)] - 42.5f) < 0.01f,
                     qPrintable(QString("%1 at %2 of %3").arg(levels[std::size_t(bin)]).arg(bin).arg(size)));
            QCOMPARE(Signals::peakOf(levels, 0, size - 1).bin, bin);
        }
    }
}

void TestSpectrumKernel::noiseReadsItsPowerPerBin()
{
    QFETCH(int, window);
    constexpr int size = 512;
    constexpr int blocks = 200;
    SpectrumKernel kernel(size, WindowFunction(window));
    const auto samples = Signals::noise(-20, std::size_t(size) * blocks);
    for (int i = 0; i < blocks; ++i)
        kernel.add(samples.data() + i * size);
    QCOMPARE(kernel.blocks(), blocks);
    double power = 0;
    for (const float level : meanOf(kernel))
        power += std::pow(10.0, double(level) / 10) / size;
    const double expected = -20 + 10 * std::log10(kernel.noiseBandwidthBins() / size);
    QVERIFY2(std::abs(10 * std::log10(power) - expected) < 0.1,
             qPrintable(QString("%1, not %2").arg(10 * std::log10(power)).arg(expected)));
}

void TestSpectrumKernel::theMeanIsOfPowerAndTheMaximumOfAnyBlock()
{
    constexpr int size = 256;
    SpectrumKernel kernel(size, WindowFunction::BlackmanHarris);
    const double offset = 32 * rate / size;
    for (const double level : {-40.0, -10.0, -40.0, -40.0}) {
        const auto samples = Signals::tone(rate, offset, level, size);
        kernel.add(samples.data());
    }
    const std::size_t bin = size / 2 + 32;
    QVERIFY(std::abs(maximumOf(kernel)[bin] + 10) < 0.01f);
    const double mean = 10 * std::log10((0.1 + 3 * 1e-4) / 4);
    QVERIFY(std::abs(double(meanOf(kernel)[bin]) - mean) < 0.01);
}

void TestSpectrumKernel::oneBlockIsMeanAndMaximumAtOnce()
{
    SpectrumKernel kernel(128, WindowFunction::Hann);
    const auto samples = Signals::noise(-30, 128);
    kernel.add(samples.data());
    QVERIFY(meanOf(kernel) == maximumOf(kernel));
}

void TestSpectrumKernel::aClearForgetsTheBlocksBefore()
{
    constexpr int size = 128;
    SpectrumKernel kernel(size, WindowFunction::Hann);
    const auto quiet = Signals::noise(-90, size, 3);
    kernel.add(quiet.data());
    const auto alone = meanOf(kernel);
    const auto loud = Signals::noise(0, size);
    kernel.clear();
    kernel.add(loud.data());
    kernel.add(loud.data());
    kernel.clear();
    QCOMPARE(kernel.blocks(), 0);
    kernel.add(quiet.data());
    QVERIFY(meanOf(kernel) == alone);
    QVERIFY(maximumOf(kernel) == alone);
}

void TestSpectrumKernel::aPartOfTheBinsIsTheSameAsAll()
{
    constexpr int size = 100;
    SpectrumKernel kernel(size, WindowFunction::FlatTop);
    const auto samples = Signals::noise(-30, size);
    kernel.add(samples.data());
    const auto all = meanOf(kernel);
    for (const auto& [first, count] :
         {std::pair(0, 10), {0, 50}, {45, 10}, {50, 50}, {60, 1}, {99, 1}, {20, 0}}) {
        std::vector<float> part(std::size_t(count) + 1, 7.0f);
        kernel.meanLevels(first, count, 0, part.data());
        for (int i = 0; i < count; ++i)
            QVERIFY(std::abs(part[std::size_t(i)] - all[std::size_t(first + i)]) < 1e-4f);
        QCOMPARE(part.back(), 7.0f);
    }
}

void TestSpectrumKernel::nothingAddedLeavesTheLevelsUntouched()
{
    const SpectrumKernel kernel(64, WindowFunction::Hann);
    QVERIFY(meanOf(kernel) == std::vector<float>(64, -1e9f));
    QVERIFY(maximumOf(kernel) == std::vector<float>(64, -1e9f));
}

void TestSpectrumKernel::silenceIsFinite()
{
    SpectrumKernel kernel(64, WindowFunction::Hann);
    const std::vector<Sample> silence(64);
    kernel.add(silence.data());
    for (const float level : meanOf(kernel, 80))
        QVERIFY(level < -100 && level > -1000);
}

// Without any transform of a library.
void TestSpectrumKernel::theLevelsAreThoseOfADirectSum()
{
    constexpr int size = 96;
    SpectrumKernel kernel(size, WindowFunction::BlackmanHarris);
    const auto samples = Signals::noise(-3, size, 11);
    kernel.add(samples.data());
    const auto levels = meanOf(kernel);
    const auto window = makeWindow(WindowFunction::BlackmanHarris, size);
    for (int bin = 0; bin < size; ++bin) {
        std::complex<double> sum;
        for (int i = 0; i < size; ++i) {
            sum += std::complex<double>(samples[std::size_t(i)]) * double(window[std::size_t(i)]) *
                   std::polar(1.0, -2 * Signals::pi * (bin - size / 2) * i / size);
        }
        const double expected = 10 * std::log10(std::norm(sum));
        QVERIFY2(std::abs(double(levels[std::size_t(bin)]) - expected) < 0.02,
                 qPrintable(QString("%1, not %2").arg(levels[std::size_t(bin)]).arg(expected)));
    }
}

void TestSpectrumKernel::oddAndTinySizesAreRoundedUp()
{
    QCOMPARE(SpectrumKernel(101, WindowFunction::Hann).size(), 102);
    QCOMPARE(SpectrumKernel(0, WindowFunction::Hann).size(), 8);
}

QTEST_GUILESS_MAIN(TestSpectrumKernel)
#include "tst_spectrumkernel.moc"
