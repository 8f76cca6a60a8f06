#include <QTest>
#include <cmath>
#include <random>

#include "receiver/dsp/levelmeter.h"
#include "receiver/dsp/samplebuffer.h"

using namespace Receiver;

namespace {

constexpr double pi = 3.14159265358979323846;

void addTone(LevelMeter& meter, double rate, double hertz, double amplitude, int transforms = 4)
{
    std::vector<Sample> samples(std::size_t(meter.size()));
    for (int t = 0; t < transforms; ++t) {
        for (int i = 0; i < meter.size(); ++i) {
            const double turns = std::fmod(hertz * (double(t) * meter.size() + i) / rate, 1.0);
            samples[std::size_t(i)] = Sample(std::polar(amplitude, 2 * pi * turns));
        }
        meter.add(samples.data(), meter.size());
    }
}

double around(const LevelMeter& meter, double hertz, double bandwidth)
{
    return meter.level(hertz - bandwidth / 2, hertz + bandwidth / 2);
}

// One sample in the middle of the window: the same power in every bin, without any chance.
void addImpulse(LevelMeter& meter)
{
    std::vector<Sample> samples(std::size_t(meter.size()));
    samples[std::size_t(meter.size() / 2)] = Sample(1.0F, 0.0F);
    meter.add(samples.data(), meter.size());
}

}  // namespace

class LevelTest : public QObject
{
    Q_OBJECT
private slots:
    void toneHasItsLevelInTheMiddleOfAnyChannel_data();
    void toneHasItsLevelInTheMiddleOfAnyChannel();
    void toneHasItsLevelUpToTwoHundredHertzInsideTheEdge();
    void toneOnTheEdgeCountsHalf();
    void toneOutsideTheChannelDoesNotShow();
    void strongNeighbourDoesNotShowInAWeakChannel();
    void noiseHasThePowerOfItsShareOfTheBand_data();
    void noiseHasThePowerOfItsShareOfTheBand();
    void powerOfFlatSpectrumGrowsExactlyWithTheBandwidth_data();
    void powerOfFlatSpectrumGrowsExactlyWithTheBandwidth();
    void wholeBandHoldsTheMeanPower();
    void channelOverTheEdgeOfTheBandCountsWhatIsInside();
    void channelThatMeasuresNothingHasTheFloor_data();
    void channelThatMeasuresNothingHasTheFloor();
    void resolutionIsFineEnoughForNarrowChannels_data();
    void resolutionIsFineEnoughForNarrowChannels();
    void fewSamplesHaveTheirOwnLevel();
    void clearingForgetsWhatWasBefore();
    void invalidSamplesBecomeSilenceAndAreCounted_data();
    void invalidSamplesBecomeSilenceAndAreCounted();
    void bufferKeepsTheNewestSamplesUnderTheirNumbers();
};

void LevelTest::toneHasItsLevelInTheMiddleOfAnyChannel_data()
{
    QTest::addColumn<double>("rate");
    QTest::addColumn<double>("offset");
    QTest::addColumn<double>("bandwidth");
    QTest::addColumn<double>("level");
    for (const double rate : {8000.0, 12001.03, 48000.0, 250e3, 1e6, 2e6, 5e6}) {
        for (const double part : {0.0, 0.1234, -0.3217, 0.46}) {
            for (const double bandwidth : {500.0, 600.0, 2400.0}) {
                const double offset = part * (rate - 2 * bandwidth);
                QTest::addRow("%.2f S/s, %.1f Hz, %.0f Hz wide", rate, offset, bandwidth)
                    << rate << offset << bandwidth << -9.3;
            }
        }
    }
    QTest::newRow("full scale") << 5e6 << 500e3 << 15e3 << 0.0;
    QTest::newRow("faint") << 5e6 << -1.2e6 << 500.0 << -110.0;
    QTest::newRow("wider than the half band") << 5e6 << 1e6 << 3e6 << -20.0;
}

void LevelTest::toneHasItsLevelInTheMiddleOfAnyChannel()
{
    QFETCH(double, rate);
    QFETCH(double, offset);
    QFETCH(double, bandwidth);
    QFETCH(double, level);
    LevelMeter meter(rate);
    addTone(meter, rate, offset, std::pow(10.0, level / 20));
    const double measured = around(meter, offset, bandwidth);
    QVERIFY2(std::abs(measured - level) < 0.1, qPrintable(QString::number(measured)));
}

void LevelTest::toneHasItsLevelUpToTwoHundredHertzInsideTheEdge()
{
    for (const double rate : {12001.03, 1e6, 5e6}) {
        LevelMeter meter(rate);
        addTone(meter, rate, 1234.5, 1.0);
        const double inside = 200.0;
        const double upper = meter.level(1234.5 - 3000, 1234.5 + inside);
        const double lower = meter.level(1234.5 - inside, 1234.5 + 3000);
        QVERIFY2(std::abs(upper) < 0.1, qPrintable(QString::number(upper)));
        QVERIFY2(std::abs(lower) < 0.1, qPrintable(QString::number(lower)));
    }
}

void LevelTest::toneOnTheEdgeCountsHalf()
{
    for (const double rate : {12001.03, 1e6, 5e6}) {
        LevelMeter meter(rate);
        for (const double tone : {1000.0, 1017.0, 1044.0}) {
            meter.clear();
            addTone(meter, rate, tone, 1.0);
            const double measured = meter.level(tone, tone + 3000);
            QVERIFY2(std::abs(measured + 3.01) < 0.3, qPrintable(QString::number(measured)));
        }
    }
}

void LevelTest::toneOutsideTheChannelDoesNotShow()
{
    for (const double rate : {12001.03, 1e6, 5e6}) {
        LevelMeter meter(rate);
        addTone(meter, rate, 2000.0, 1.0);
        // Four bins away the window's side lobes are all that is left.
        const double measured = meter.level(2000.0 + 4.5 * meter.resolution(), 5000.0);
        QVERIFY2(measured < -70, qPrintable(QString::number(measured)));
    }
}

void LevelTest::strongNeighbourDoesNotShowInAWeakChannel()
{
    LevelMeter meter(5e6);
    std::vector<Sample> samples(std::size_t(meter.size()));
    for (int i = 0; i < meter.size(); ++i) {
        const double t = i / 5e6;
        samples[std::size_t(i)] =
            Sample(std::polar(1.0, 2 * pi * 500e3 * t)) + Sample(std::polar(1e-4, 2 * pi * 510e3 * t));
    }
    meter.add(samples.data(), meter.size());
    const double measured = around(meter, 510e3, 1000);
    QVERIFY2(std::abs(measured + 80) < 0.2, qPrintable(QString::number(measured)));
}

void LevelTest::noiseHasThePowerOfItsShareOfTheBand_data()
{
    QTest::addColumn<double>("rate");
    QTest::addColumn<double>("offset");
    QTest::addColumn<double>("bandwidth");
    QTest::addColumn<int>("transforms");
    // So many that chance moves the mean by less than 0.06 dB.
    QTest::newRow("500 Hz at 12 kS/s") << 12001.03 << 720.0 << 500.0 << 1600;
    QTest::newRow("9 kHz at 12 kS/s") << 12001.03 << 0.0 << 9e3 << 200;
    QTest::newRow("15 kHz at 48 kS/s") << 48e3 << 720.0 << 15e3 << 200;
    QTest::newRow("200 kHz at 2 MS/s") << 2e6 << -400e3 << 200e3 << 20;
    QTest::newRow("100 kHz at 5 MS/s") << 5e6 << 1.1e6 << 100e3 << 20;
}

void LevelTest::noiseHasThePowerOfItsShareOfTheBand()
{
    QFETCH(double, rate);
    QFETCH(double, offset);
    QFETCH(double, bandwidth);
    QFETCH(int, transforms);
    std::mt19937 random(1);
    std::normal_distribution<float> normal(0.0F, 0.1F);  // of each part: -16.99 dBFS in all
    LevelMeter meter(rate);
    std::vector<Sample> samples(std::size_t(meter.size()));
    for (int t = 0; t < transforms; ++t) {
        for (Sample& sample : samples)
            sample = Sample(normal(random), normal(random));
        meter.add(samples.data(), meter.size());
    }
    const double expected = 10 * std::log10(0.02 * bandwidth / rate);
    const double measured = around(meter, offset, bandwidth);
    QVERIFY2(std::abs(measured - expected) < 0.2,
             qPrintable(QString("%1 for %2").arg(measured).arg(expected)));
}

void LevelTest::powerOfFlatSpectrumGrowsExactlyWithTheBandwidth_data()
{
    QTest::addColumn<double>("low");
    QTest::addColumn<double>("high");
    QTest::newRow("less than a bin") << 100.0 << 103.0;
    QTest::newRow("across one boundary") << 20.0 << 60.0;
    QTest::newRow("across 0 Hz") << -250.0 << 250.0;
    QTest::newRow("across 0 Hz, uneven") << -13.0 << 4711.0;
    QTest::newRow("all below 0 Hz") << -20000.0 << -100.5;
    QTest::newRow("all above 0 Hz") << 100.5 << 20000.0;
    QTest::newRow("to the lower edge of the band") << -24000.0 << -12345.6;
    QTest::newRow("to the upper edge of the band") << 12345.6 << 24000.0;
    QTest::newRow("the last hertz") << 23999.0 << 24000.0;
    QTest::newRow("the first hertz") << -24000.0 << -23999.0;
    QTest::newRow("all but the outermost hertz") << -23999.0 << 23999.0;
}

void LevelTest::powerOfFlatSpectrumGrowsExactlyWithTheBandwidth()
{
    QFETCH(double, low);
    QFETCH(double, high);
    LevelMeter meter(48000);
    addImpulse(meter);
    const double whole = meter.level(-24000, 24000);
    const double expected = whole + 10 * std::log10((high - low) / 48000);
    const double measured = meter.level(low, high);
    QVERIFY2(std::abs(measured - expected) < 0.01,
             qPrintable(QString("%1 for %2").arg(measured).arg(expected)));
}

void LevelTest::wholeBandHoldsTheMeanPower()
{
    for (const double rate : {12001.03, 48e3, 5e6}) {
        LevelMeter meter(rate);
        addTone(meter, rate, 0.3 * rate, 0.5);
        QVERIFY(std::abs(meter.level(-rate / 2, rate / 2) + 6.02) < 0.02);
    }
}

void LevelTest::channelOverTheEdgeOfTheBandCountsWhatIsInside()
{
    LevelMeter meter(48000);
    addImpulse(meter);
    const double inside = meter.level(20000, 24000);
    QVERIFY(std::abs(meter.level(20000, 99000) - inside) < 0.01);
    QVERIFY(std::abs(meter.level(-1e9, 1e9) - meter.level(-24000, 24000)) < 0.01);
}

void LevelTest::channelThatMeasuresNothingHasTheFloor_data()
{
    QTest::addColumn<double>("low");
    QTest::addColumn<double>("high");
    const double nothing = std::numeric_limits<double>::quiet_NaN();
    const double endless = std::numeric_limits<double>::infinity();
    QTest::newRow("above the band") << 24000.0 << 25000.0;
    QTest::newRow("below the band") << -30000.0 << -24000.0;
    QTest::newRow("far away") << 98e6 << 98.1e6;
    QTest::newRow("no bandwidth") << 100.0 << 100.0;
    QTest::newRow("negative bandwidth") << 100.0 << 50.0;
    QTest::newRow("not a number") << nothing << nothing;
    QTest::newRow("one edge not a number") << 0.0 << nothing;
    QTest::newRow("endlessly far") << endless << endless;
}

void LevelTest::channelThatMeasuresNothingHasTheFloor()
{
    QFETCH(double, low);
    QFETCH(double, high);
    LevelMeter meter(48000);
    addImpulse(meter);
    QCOMPARE(meter.level(low, high), LevelMeter::floorLevel);
}

void LevelTest::resolutionIsFineEnoughForNarrowChannels_data()
{
    QTest::addColumn<double>("rate");
    for (const double rate : {1000.0, 8000.0, 12001.03, 44100.0, 1.024e6, 2.4e6, 5e6, 20e6})
        QTest::addRow("%.2f S/s", rate) << rate;
}

void LevelTest::resolutionIsFineEnoughForNarrowChannels()
{
    QFETCH(double, rate);
    const LevelMeter meter(rate);
    QVERIFY(meter.resolution() <= 80);
    QVERIFY(meter.size() >= 32);
    QVERIFY2(meter.size() == 32 || meter.resolution() > 40, "transforms longer than a report needs");
}

void LevelTest::fewSamplesHaveTheirOwnLevel()
{
    LevelMeter meter(48000);
    const std::vector<Sample> samples(std::size_t(meter.size() / 3), Sample(0.1F, 0.0F));
    meter.add(samples.data(), int(samples.size()));
    QVERIFY(std::abs(meter.level(-24000, 24000) + 20) < 0.05);
}

void LevelTest::clearingForgetsWhatWasBefore()
{
    LevelMeter meter(48000);
    addTone(meter, 48000, 1000, 1.0);
    meter.clear();
    QCOMPARE(meter.transforms(), 0);
    QCOMPARE(meter.level(-24000, 24000), LevelMeter::floorLevel);
    addTone(meter, 48000, 1000, 0.01, 1);
    QCOMPARE(meter.transforms(), 1);
    QVERIFY(std::abs(around(meter, 1000, 1000) + 40) < 0.1);
}

void LevelTest::invalidSamplesBecomeSilenceAndAreCounted_data()
{
    QTest::addColumn<float>("re");
    QTest::addColumn<float>("im");
    QTest::addColumn<bool>("valid");
    const float nothing = std::numeric_limits<float>::quiet_NaN();
    const float endless = std::numeric_limits<float>::infinity();
    QTest::newRow("not a number in I") << nothing << 0.0F << false;
    QTest::newRow("not a number in Q") << 0.0F << -nothing << false;
    QTest::newRow("infinite") << endless << 0.0F << false;
    QTest::newRow("negative infinite") << 0.0F << -endless << false;
    QTest::newRow("absurdly large") << 1e30F << 0.0F << false;
    QTest::newRow("over full scale") << 3.0F << -4.0F << true;
    QTest::newRow("smallest there is") << 1e-45F << -0.0F << true;
}

void LevelTest::invalidSamplesBecomeSilenceAndAreCounted()
{
    QFETCH(float, re);
    QFETCH(float, im);
    QFETCH(bool, valid);
    std::vector<Sample> samples(37, Sample(0.5F, 0.5F));
    samples[0] = samples[17] = samples[36] = Sample(re, im);
    QCOMPARE(replaceInvalid(samples.data(), samples.size()), valid ? 0 : 3);
    QCOMPARE(samples[17], valid ? Sample(re, im) : Sample());
    QCOMPARE(samples[36], samples[17]);
    QCOMPARE(samples[18], Sample(0.5F, 0.5F));
}

void LevelTest::bufferKeepsTheNewestSamplesUnderTheirNumbers()
{
    SampleBuffer buffer(100, 30);
    qint64 number = 0;
    for (int round = 0; round < 200; ++round) {
        const std::size_t count = std::size_t(round % 30) + 1;
        Sample* room = buffer.room(count);
        for (std::size_t i = 0; i < count; ++i)
            room[i] = Sample(float(number++), 0.0F);
        buffer.append(count);
        QCOMPARE(buffer.end(), number);
        const qint64 oldest = std::max<qint64>(0, number - 100);
        QVERIFY(buffer.begin() <= oldest);
        QCOMPARE(buffer.at(oldest)->real(), float(oldest));
        QCOMPARE(buffer.at(number - 1)->real(), float(number - 1));
    }
}

QTEST_GUILESS_MAIN(LevelTest)
#include "tst_level.moc"
