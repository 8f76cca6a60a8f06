#include <QTest>
#include <cmath>

#include "receiver/dsp/decimator.h"
#include "receiver/dsp/panorama.h"
#include "signals.h"

using namespace Receiver;

namespace {

constexpr double rate = 1e6;
constexpr double fullScale = 80;  // dBµV
constexpr double center = 100e6;  // Hz
constexpr double spans[] = {800e3, 500e3, 200e3, 100e3, 50e3, 20e3, 10e3, 5e3, 2e3, 1e3};

const struct
{
    const char* name;
    WindowFunction function;
} windows[] = {{"Hann", WindowFunction::Hann},
               {"Blackman-Harris", WindowFunction::BlackmanHarris},
               {"flat top", WindowFunction::FlatTop}};

PanoramaSettings settingsFor(double span, WindowFunction window = WindowFunction::BlackmanHarris,
                             int bins = 4096)
{
    PanoramaSettings settings;
    settings.span = span;
    settings.points = Panorama::pointsFor(rate, span, bins);
    settings.window = window;
    return settings;
}

std::vector<PanoramaFrame> framesOf(Panorama& panorama, const std::vector<Sample>& samples,
                                    std::size_t block = 32768, std::int64_t begin = 0)
{
    std::vector<PanoramaFrame> frames;
    for (std::size_t at = 0; at < samples.size(); at += block) {
        const std::size_t count = std::min(block, samples.size() - at);
        panorama.process(samples.data() + at, count, begin + std::llround(double(at + count) / rate * 1e6),
                         [&](const PanoramaFrame& frame) { frames.push_back(frame); });
    }
    return frames;
}

// Enough for a frame of the span: its transform and the filters' answer.
std::size_t samplesFor(const PanoramaSettings& settings, double frames)
{
    const int factor = Decimator::factorFor(rate, settings.span);
    const double seconds = (settings.points * 1.1 + 200) * factor / rate + frames / settings.frameRate;
    return std::size_t(seconds * rate);
}

void addSpansAndWindows()
{
    QTest::addColumn<double>("span");
    QTest::addColumn<int>("window");
    for (const double span : spans) {
        for (const auto& window : windows)
            QTest::addRow("%g kHz, %s", span / 1e3, window.name) << span << int(window.function);
    }
}

void addSpans()
{
    QTest::addColumn<double>("span");
    for (const double span : spans)
        QTest::addRow("%g kHz", span / 1e3) << span;
}

}  // namespace

class TestPanorama : public QObject
{
    Q_OBJECT
private slots:
    void tonesStandAtTheirFrequencyAndLevel_data() { addSpansAndWindows(); }
    void tonesStandAtTheirFrequencyAndLevel();
    void aToneInABinsMiddleReadsItsLevel_data() { addSpansAndWindows(); }
    void aToneInABinsMiddleReadsItsLevel();
    void noiseReadsItsDensityTimesTheResolutionBandwidth_data() { addSpansAndWindows(); }
    void noiseReadsItsDensityTimesTheResolutionBandwidth();
    void aStrongToneOutsideTheSpanLeavesNothingInIt_data() { addSpans(); }
    void aStrongToneOutsideTheSpanLeavesNothingInIt();
    void theFrameHoldsTheSpanAroundTheCentre_data() { addSpans(); }
    void theFrameHoldsTheSpanAroundTheCentre();
    void theResolutionRisesAsTheSpanNarrows();
    void theFrameRateIsKept_data();
    void theFrameRateIsKept();
    void aFrameBearsTheTimeOfItsLastSample_data();
    void aFrameBearsTheTimeOfItsLastSample();
    void whatHappensShowsAtItsTime_data() { addSpans(); }
    void whatHappensShowsAtItsTime();
    void aNewCentreThrowsAwayTheFrameUnderWay();
    void theSameCentreDisturbsNothing();
    void aRestartForgetsTheSamplesBefore();
    void aPulseShowsInTheMaximumWhereverItFalls();
    void blocksOfAnySizeGiveTheSameFrames();
    void settingsOutOfRangeAreTakenAsTheNearest_data();
    void settingsOutOfRangeAreTakenAsTheNearest();
    void theTransformFitsTheBinsAskedFor_data();
    void theTransformFitsTheBinsAskedFor();
};

void TestPanorama::tonesStandAtTheirFrequencyAndLevel()
{
    QFETCH(double, span);
    QFETCH(int, window);
    const PanoramaSettings settings = settingsFor(span, WindowFunction(window));
    Panorama panorama(rate, fullScale, settings);
    panorama.setCenter(center);
    const struct
    {
        double share;  // of the span, from the centre
        double level;  // dBFS
    } tones[] = {{-0.4713, -12}, {0.1117, -41.5}, {0.3931, -70}};
    std::vector<Sample> samples(samplesFor(settings, 1));
    for (const auto& tone : tones)
        Signals::add(samples, Signals::tone(rate, tone.share * span, tone.level, samples.size()));
    const auto frames = framesOf(panorama, samples);
    QVERIFY(!frames.empty());
    const PanoramaFrame& frame = frames.back();
    for (const auto& tone : tones) {
        const double expected = (center + tone.share * span - frame.start) / frame.step;
        const int around = int(std::lround(expected));
        const auto peak = Signals::peakOf(frame.mean, around - 20, around + 20);
        QVERIFY2(std::abs(peak.at - expected) < 1,
                 qPrintable(QString("bin %1, not %2").arg(peak.at).arg(expected)));
        QVERIFY2(std::abs(peak.level - (tone.level + fullScale)) < 1,
                 qPrintable(QString("%1 dB at %2").arg(peak.level).arg(tone.level + fullScale)));
    }
}

void TestPanorama::aToneInABinsMiddleReadsItsLevel()
{
    QFETCH(double, span);
    QFETCH(int, window);
    const PanoramaSettings settings = settingsFor(span, WindowFunction(window));
    Panorama panorama(rate, fullScale, settings);
    const double step = rate / Decimator::factorFor(rate, span) / settings.points;
    std::vector<Sample> samples(samplesFor(settings, 1));
    const double places[] = {-0.49, 0.0, 0.27};
    for (const double place : places)
        Signals::add(samples,
                     Signals::tone(rate, std::round(place * span / step) * step, -25, samples.size()));
    const auto frames = framesOf(panorama, samples);
    QVERIFY(!frames.empty());
    for (const double place : places) {
        const double hertz = std::round(place * span / step) * step;
        const auto bin = std::size_t(std::lround((hertz - frames.back().start) / frames.back().step));
        const float level = frames.back().mean[bin];
        QVERIFY2(std::abs(level - 55.0f) < 0.1f, qPrintable(QString("%1 at %2 Hz").arg(level).arg(hertz)));
        QVERIFY(std::abs(frames.back().maximum[bin] - 55.0f) < 0.1f);
    }
}

void TestPanorama::noiseReadsItsDensityTimesTheResolutionBandwidth()
{
    QFETCH(double, span);
    QFETCH(int, window);
    PanoramaSettings settings = settingsFor(span, WindowFunction(window), 512);
    settings.frameRate = 5;
    Panorama panorama(rate, fullScale, settings);
    const auto frames = framesOf(panorama, Signals::noise(-20, samplesFor(settings, 3)));
    QVERIFY(!frames.empty());
    double power = 0;
    for (const PanoramaFrame& frame : frames) {
        for (const float level : frame.mean)
            power += std::pow(10.0, double(level) / 10) / double(frame.mean.size());
    }
    const double measured = 10 * std::log10(power / double(frames.size()));
    const double expected = fullScale - 20 + 10 * std::log10(frames.back().resolutionBandwidth / rate);
    QVERIFY2(std::abs(measured - expected) < 0.5,
             qPrintable(QString("%1, not %2").arg(measured).arg(expected)));
}

void TestPanorama::aStrongToneOutsideTheSpanLeavesNothingInIt()
{
    QFETCH(double, span);
    const PanoramaSettings settings = settingsFor(span);
    const auto samples = samplesFor(settings, 1);
    for (const double share : {0.62, -0.9, 1.5, -3.3}) {
        const double offset = share * span;
        if (std::abs(offset) > 0.49 * rate)
            continue;
        Panorama panorama(rate, fullScale, settings);
        const auto frames = framesOf(panorama, Signals::tone(rate, offset, 0, samples));
        QVERIFY(!frames.empty());
        const auto& levels = frames.back().mean;
        const float highest = *std::max_element(levels.begin(), levels.end());
        QVERIFY2(highest < fullScale - 80, qPrintable(QString("%1 for %2 Hz").arg(highest).arg(offset)));
    }
}

void TestPanorama::theFrameHoldsTheSpanAroundTheCentre()
{
    QFETCH(double, span);
    const PanoramaSettings settings = settingsFor(span);
    Panorama panorama(rate, fullScale, settings);
    panorama.setCenter(center);
    const auto frames = framesOf(panorama, Signals::noise(-20, samplesFor(settings, 1)));
    QVERIFY(!frames.empty());
    const PanoramaFrame& frame = frames.back();
    const double stop = frame.start + frame.step * double(frame.mean.size() - 1);
    QVERIFY(std::abs((frame.start + stop) / 2 - center) < 1e-6);
    QVERIFY(stop - frame.start <= span * (1 + 1e-9));
    QVERIFY(stop - frame.start > span - 2.001 * frame.step);
    QCOMPARE(frame.maximum.size(), frame.mean.size());
    QVERIFY2(frame.mean.size() <= 4096, "more bins than the transform was chosen for");
    QVERIFY(frame.resolutionBandwidth > 1.9 * frame.step && frame.resolutionBandwidth < 2.1 * frame.step);
}

void TestPanorama::theResolutionRisesAsTheSpanNarrows()
{
    double before = 1e9;
    for (const double span : spans) {
        const PanoramaSettings settings = settingsFor(span);
        Panorama panorama(rate, fullScale, settings);
        const auto frames = framesOf(panorama, Signals::noise(-20, samplesFor(settings, 1)));
        QVERIFY(!frames.empty());
        const double resolution = frames.back().resolutionBandwidth;
        // The narrowest are as fine as a second of signal can show.
        QVERIFY2(resolution < before || resolution < 3,
                 qPrintable(QString("%1 Hz at %2 Hz").arg(resolution).arg(span)));
        before = resolution;
        QVERIFY(resolution < span / 400);
    }
}

void TestPanorama::theFrameRateIsKept_data()
{
    QTest::addColumn<double>("span");
    QTest::addColumn<double>("frameRate");
    for (const double span : spans) {
        for (const double frameRate : {1.0, 7.0, 30.0, 60.0})
            QTest::addRow("%g kHz, %g/s", span / 1e3, frameRate) << span << frameRate;
    }
}

void TestPanorama::theFrameRateIsKept()
{
    QFETCH(double, span);
    QFETCH(double, frameRate);
    PanoramaSettings settings = settingsFor(span, WindowFunction::Hann, 1024);
    settings.frameRate = frameRate;
    Panorama panorama(rate, fullScale, settings);
    const std::vector<Sample> silence(std::size_t(4 * rate));
    const auto frames = framesOf(panorama, silence);
    QVERIFY(frames.size() >= 2);
    const double seconds = double(frames.back().time - frames.front().time) * 1e-6;
    const double measured = double(frames.size() - 1) / seconds;
    // Frames end with a transform: one more or less of it at either end.
    const double hop = double(settings.points) * Decimator::factorFor(rate, span) / rate;
    const double slack = frameRate * std::min(hop, 1 / frameRate) / seconds + 0.01 * frameRate;
    QVERIFY2(std::abs(measured - frameRate) <= slack, qPrintable(QString::number(measured)));
    for (std::size_t i = 1; i < frames.size(); ++i) {
        QCOMPARE(frames[i].sequence, frames[i - 1].sequence + 1);
        QVERIFY(frames[i].time > frames[i - 1].time);
    }
}

void TestPanorama::aFrameBearsTheTimeOfItsLastSample_data()
{
    QTest::addColumn<int>("block");
    for (const int block : {1000, 8192, 32768, 100000})
        QTest::addRow("blocks of %d", block) << block;
}

void TestPanorama::aFrameBearsTheTimeOfItsLastSample()
{
    QFETCH(int, block);
    PanoramaSettings settings;
    settings.points = 10000;  // at 20 frames a second: transforms end every 5 ms
    settings.frameRate = 20;
    Panorama panorama(rate, fullScale, settings);
    constexpr std::int64_t begin = 1777777777000000;
    const auto frames =
        framesOf(panorama, std::vector<Sample>(std::size_t(0.31 * rate)), std::size_t(block), begin);
    QVERIFY(frames.size() >= 5);
    for (std::size_t i = 0; i < frames.size(); ++i) {
        const std::int64_t since = frames[i].time - begin;
        QVERIFY2(std::abs(since % 5000) <= 1 || std::abs(since % 5000) >= 4999,
                 qPrintable(QString::number(since)));
        QVERIFY2(std::abs(since - 50000 * std::int64_t(i + 1)) <= 10001, qPrintable(QString::number(since)));
    }
}

// A carrier that begins shows at half its height when it fills half of a transform.
void TestPanorama::whatHappensShowsAtItsTime()
{
    QFETCH(double, span);
    PanoramaSettings settings = settingsFor(span, WindowFunction::Hann);
    settings.frameRate = 60;
    const double transform = double(settings.points) * Decimator::factorFor(rate, span) / rate;
    const double begins = 1.2 * transform + 0.2;
    auto samples = Signals::tone(rate, 0.2 * span, -20, std::size_t((begins + transform + 0.2) * rate));
    std::fill_n(samples.begin(), std::size_t(begins * rate), Sample());
    Panorama panorama(rate, fullScale, settings);
    const auto frames = framesOf(panorama, samples);
    double shown = 0;
    for (const PanoramaFrame& frame : frames) {
        const float highest = *std::max_element(frame.maximum.begin(), frame.maximum.end());
        if (highest > 60 - 6.02f) {
            shown = double(frame.time) * 1e-6;
            break;
        }
    }
    // Of several transforms in a frame any may be the first to see it.
    const double expected = begins + transform / 2;
    QVERIFY2(shown > expected - 0.001 && shown < expected + 1.0 / 60 + transform / 2 + 0.001,
             qPrintable(QString("%1 s, not %2 s").arg(shown).arg(expected)));
    if (transform > 1.0 / 60)  // then every frame is one transform
        QVERIFY2(shown < expected + 1.0 / 60 + 0.001, qPrintable(QString::number(shown - expected)));
}

void TestPanorama::aNewCentreThrowsAwayTheFrameUnderWay()
{
    const PanoramaSettings settings = settingsFor(100e3);
    Panorama panorama(rate, fullScale, settings);
    panorama.setCenter(center);
    const auto loud = Signals::tone(rate, 10e3, -10, std::size_t(0.2 * rate));
    QVERIFY(!framesOf(panorama, loud).empty());
    panorama.setCenter(center + 1e6);
    const auto frames = framesOf(panorama, std::vector<Sample>(std::size_t(0.2 * rate)));
    QVERIFY(!frames.empty());
    for (const PanoramaFrame& frame : frames) {
        QVERIFY(std::abs(frame.start + 50e3 - center - 1e6) < 200);
        QVERIFY(*std::max_element(frame.maximum.begin(), frame.maximum.end()) < fullScale - 110);
    }
}

void TestPanorama::theSameCentreDisturbsNothing()
{
    const PanoramaSettings settings = settingsFor(100e3);
    const auto samples = Signals::noise(-20, std::size_t(0.3 * rate));
    Panorama quiet(rate, fullScale, settings);
    quiet.setCenter(center);
    Panorama told(rate, fullScale, settings);
    std::vector<PanoramaFrame> frames;
    for (std::size_t at = 0; at < samples.size(); at += 10000) {
        told.setCenter(center);
        told.process(samples.data() + at, 10000, 0,
                     [&](const PanoramaFrame& frame) { frames.push_back(frame); });
    }
    const auto expected = framesOf(quiet, samples, 10000);
    QCOMPARE(frames.size(), expected.size());
    QVERIFY(frames.back().mean == expected.back().mean);
}

void TestPanorama::aRestartForgetsTheSamplesBefore()
{
    const PanoramaSettings settings = settingsFor(200e3);
    Panorama panorama(rate, fullScale, settings);
    const auto loud = Signals::noise(0, std::size_t(0.0301 * rate));
    framesOf(panorama, loud);
    panorama.restart();
    for (const PanoramaFrame& frame : framesOf(panorama, std::vector<Sample>(std::size_t(0.2 * rate))))
        QVERIFY(*std::max_element(frame.maximum.begin(), frame.maximum.end()) < fullScale - 110);
}

void TestPanorama::aPulseShowsInTheMaximumWhereverItFalls()
{
    PanoramaSettings settings;
    settings.points = 1000;
    Panorama panorama(rate, fullScale, settings);
    // 100 samples long, once in every frame and at another place of a transform each time.
    const auto carrier = Signals::tone(rate, 100e3, 0, std::size_t(rate));
    std::vector<Sample> samples(carrier.size());
    constexpr std::size_t period = 33400;
    for (std::size_t at = period / 2; at + 100 < samples.size(); at += period)
        std::copy_n(carrier.begin() + std::ptrdiff_t(at), 100, samples.begin() + std::ptrdiff_t(at));
    float lowest = 1000;
    float highest = -1000;
    const auto frames = framesOf(panorama, samples);
    QVERIFY(frames.size() > 25);
    for (std::size_t i = 0; i + 1 < frames.size(); ++i) {
        const float level = *std::max_element(frames[i].maximum.begin(), frames[i].maximum.end());
        lowest = std::min(lowest, level);
        highest = std::max(highest, level);
    }
    // Without overlap it would be lost between two windows: 60 dB and more.
    QVERIFY2(highest - lowest < 14, qPrintable(QString("%1 to %2").arg(lowest).arg(highest)));
}

void TestPanorama::blocksOfAnySizeGiveTheSameFrames()
{
    const auto samples = Signals::noise(-20, std::size_t(0.4 * rate));
    for (const double span : {800e3, 50e3}) {
        const PanoramaSettings settings = settingsFor(span, WindowFunction::BlackmanHarris, 1000);
        Panorama large(rate, fullScale, settings);
        const auto expected = framesOf(large, samples, samples.size());
        for (const std::size_t block : {std::size_t(1), std::size_t(777), std::size_t(32768)}) {
            Panorama panorama(rate, fullScale, settings);
            const auto frames = framesOf(panorama, samples, block);
            QCOMPARE(frames.size(), expected.size());
            for (std::size_t i = 0; i < frames.size(); ++i) {
                QVERIFY(std::abs(frames[i].time - expected[i].time) <= 1);
                for (std::size_t bin = 0; bin < frames[i].mean.size(); ++bin)
                    QVERIFY(std::abs(frames[i].mean[bin] - expected[i].mean[bin]) < 0.01f);
            }
        }
    }
}

void TestPanorama::settingsOutOfRangeAreTakenAsTheNearest_data()
{
    QTest::addColumn<double>("span");
    QTest::addColumn<int>("points");
    QTest::addColumn<double>("frameRate");
    QTest::addColumn<int>("pointsUsed");
    QTest::addColumn<double>("frameRateUsed");
    QTest::newRow("too few points") << 0.0 << 0 << 30.0 << 64 << 30.0;
    QTest::newRow("points below zero") << 0.0 << -7 << 30.0 << 64 << 30.0;
    QTest::newRow("odd points") << 0.0 << 1001 << 30.0 << 1002 << 30.0;
    QTest::newRow("too many points") << 0.0 << 1000000 << 30.0 << 131072 << 30.0;
    QTest::newRow("no frames") << 0.0 << 1000 << 0.0 << 1000 << 1.0;
    QTest::newRow("too many frames") << 0.0 << 1000 << 1e9 << 1000 << 60.0;
    QTest::newRow("a rate that is no number") << 0.0 << 1000 << std::nan("") << 1000 << 1.0;
    QTest::newRow("a span that is no number") << std::nan("") << 1000 << 30.0 << 1000 << 30.0;
    QTest::newRow("a span below zero") << -5.0 << 1000 << 30.0 << 1000 << 30.0;
    QTest::newRow("a span beyond the source") << 1e9 << 1000 << 30.0 << 1000 << 30.0;
    QTest::newRow("a span of next to nothing") << 1e-9 << 64 << 60.0 << 64 << 60.0;
}

void TestPanorama::settingsOutOfRangeAreTakenAsTheNearest()
{
    QFETCH(double, span);
    QFETCH(int, points);
    QFETCH(double, frameRate);
    PanoramaSettings settings;
    settings.span = span;
    settings.points = points;
    settings.frameRate = frameRate;
    Panorama panorama(rate, fullScale, settings);
    QTEST(panorama.settings().points, "pointsUsed");
    QTEST(panorama.settings().frameRate, "frameRateUsed");
    for (const PanoramaFrame& frame : framesOf(panorama, std::vector<Sample>(std::size_t(0.2 * rate)))) {
        QVERIFY(frame.step > 0 && std::isfinite(frame.start));
        QVERIFY(!frame.mean.empty() && int(frame.mean.size()) <= panorama.settings().points);
    }
}

void TestPanorama::theTransformFitsTheBinsAskedFor_data()
{
    QTest::addColumn<double>("sampleRate");
    QTest::addColumn<double>("span");
    QTest::addColumn<int>("bins");
    QTest::addColumn<int>("points");
    QTest::newRow("all of the band") << 5e6 << 0.0 << 4096 << 4096;
    QTest::newRow("usable part of the band") << 5e6 << 4e6 << 4096 << 5120;
    QTest::newRow("decimated") << 5e6 << 1e6 << 4096 << 5120;
    QTest::newRow("the most") << 20e6 << 16e6 << 131072 << 131072;
    QTest::newRow("a second is enough") << 5e6 << 1e3 << 4096 << 1250;
    QTest::newRow("slow recording") << 12001.03 << 9600.0 << 65536 << 12000;
    QTest::newRow("the least") << 5e6 << 4e6 << 1 << 64;
    QTest::newRow("no rate") << 0.0 << 4e6 << 1000 << 64;
}

void TestPanorama::theTransformFitsTheBinsAskedFor()
{
    QFETCH(double, sampleRate);
    QFETCH(double, span);
    QFETCH(int, bins);
    QTEST(Panorama::pointsFor(sampleRate, span, bins), "points");
}

QTEST_GUILESS_MAIN(TestPanorama)
#include "tst_panorama.moc"
