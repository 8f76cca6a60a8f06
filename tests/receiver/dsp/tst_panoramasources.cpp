#include <QDir>
#include <QTest>
#include <cmath>
#include <memory>

#include "receiver/dsp/panorama.h"
#include "receiver/sources/emitters.h"
#include "receiver/sources/opensource.h"
#include "receiver/values/catalogue.h"
#include "signals.h"

using namespace Receiver;

namespace {

constexpr double fullScale = 80;  // dBµV

const WindowFunction windows[] = {WindowFunction::Hann, WindowFunction::BlackmanHarris,
                                  WindowFunction::FlatTop};
const char* const windowNames[] = {"Hann", "Blackman-Harris", "flat top"};

const char* const timeSignal = "hcab14_TDoA__20200813T065220Z_77500_JO51xl_iq.wav";
const char* const remoteControl = "jopohl_urh__elektromaten.complex16s";
const char* const remoteControlPulses = "truth/jopohl_urh__elektromaten_pulses.csv";

QString path(const char* name)
{
    return QDir(QStringLiteral(RX_SOURCE_DIR "/../shared/data")).filePath(QLatin1String(name));
}

// A panorama of one span and window, and the highest levels that it has shown.
struct View
{
    View(double rate, double center, double wantedSpan, WindowFunction function, int points)
        : span(wantedSpan), window(function)
    {
        PanoramaSettings settings;
        settings.span = span;
        settings.points = points;
        settings.window = window;
        panorama = std::make_unique<Panorama>(rate, fullScale, settings);
        panorama->setCenter(center);
    }

    void take(const PanoramaFrame& newer)
    {
        frame = newer;
        hold.resize(newer.maximum.size(), -1000.0f);
        for (std::size_t i = 0; i < hold.size(); ++i)
            hold[i] = std::max(hold[i], newer.maximum[i]);
        all.push_back(newer.mean);
    }

    // Of all frames, bin by bin.
    std::vector<float> median() const
    {
        std::vector<float> result(hold.size());
        std::vector<float> bin(all.size());
        for (std::size_t i = 0; i < result.size(); ++i) {
            std::transform(all.begin(), all.end(), bin.begin(),
                           [i](const auto& levels) { return levels[i]; });
            std::nth_element(bin.begin(), bin.begin() + std::ptrdiff_t(bin.size() / 2), bin.end());
            result[i] = bin[bin.size() / 2];
        }
        return result;
    }

    QString name() const { return QStringLiteral("%1 Hz, %2").arg(span).arg(windowNames[int(window)]); }

    double span;
    WindowFunction window;
    std::unique_ptr<Panorama> panorama;
    PanoramaFrame frame;
    std::vector<float> hold;
    std::vector<std::vector<float>> all;
};

// Every span that the source offers and every window, all on the same samples.
std::vector<View> allViews(const IqSource& source, const std::function<int(double span)>& points)
{
    std::vector<View> views;
    for (const Link::Item& item : spanItems(source.sampleRate())) {
        for (const WindowFunction window : windows)
            views.emplace_back(source.sampleRate(), source.center(), item.number, window,
                               points(item.number));
    }
    return views;
}

void play(IqSource& source, double seconds, std::vector<View>& views)
{
    std::vector<Sample> samples(32768);
    double played = 0;
    while (played < seconds) {
        const std::size_t got = source.read(samples.data(), samples.size());
        if (got == 0)
            return;
        played += double(got) / source.sampleRate();
        for (View& view : views) {
            view.panorama->process(samples.data(), got, 0,
                                   [&view](const PanoramaFrame& frame) { view.take(frame); });
        }
    }
}

void verifyCarrier(const View& view, const std::vector<float>& levels, double frequency, double level)
{
    QVERIFY2(!levels.empty(), qPrintable(view.name()));
    const double expected = (frequency - view.frame.start) / view.frame.step;
    const int bins = int(levels.size());
    QVERIFY(expected > 1 && expected < bins - 2);
    const auto peak =
        Signals::peakOf(levels, std::max(0, int(expected) - 8), std::min(bins - 1, int(expected) + 8));
    qDebug("%s: %.2f dBuV", qPrintable(view.name()), peak.level);
    QVERIFY2(std::abs(peak.at - expected) <= 1,
             qPrintable(QStringLiteral("%1: bin %2, not %3").arg(view.name()).arg(peak.at).arg(expected)));
    QVERIFY2(std::abs(peak.level - level) < 1,
             qPrintable(QStringLiteral("%1: %2 dBuV, not %3").arg(view.name()).arg(peak.level).arg(level)));
}

}  // namespace

// The spectrum of sources whose carriers are known by other means.
class TestPanoramaSources : public QObject
{
    Q_OBJECT
private slots:
    void theScenesCarrierStandsInEverySpanAndWindow();
    void theScenesNoiseFloorIsItsDensity();
    void theTimeSignalsCarrierStandsInEverySpanAndWindow();
    void theKeyedCarrierStandsInTheMaximumOfEverySpanAndWindow();
};

void TestPanoramaSources::theScenesCarrierStandsInEverySpanAndWindow()
{
    const auto source = openScene(1);
    source->setCenter(97.3e6 - 137);  // so that it lies in the narrowest span, between two bins
    auto views =
        allViews(*source, [&](double span) { return Panorama::pointsFor(sceneSampleRate, span, 4096); });
    QVERIFY(views.size() >= 33);
    play(*source, 1.4, views);
    for (const View& view : views)
        verifyCarrier(view, view.frame.mean, 97.3e6, 40);
}

void TestPanoramaSources::theScenesNoiseFloorIsItsDensity()
{
    const auto source = openScene(1);
    std::vector<View> views;
    views.emplace_back(sceneSampleRate, source->center(), 4e6, WindowFunction::BlackmanHarris, 5120);
    play(*source, 0.5, views);
    // Most bins hold noise only.
    std::vector<float> levels = views[0].frame.mean;
    std::nth_element(levels.begin(), levels.begin() + int(levels.size() / 2), levels.end());
    const double expected =
        fullScale + sceneNoiseLevel + 10 * std::log10(views[0].frame.resolutionBandwidth / sceneSampleRate);
    const double median = double(levels[levels.size() / 2]);
    QVERIFY2(std::abs(median - expected) < 1,
             qPrintable(QStringLiteral("%1, not %2").arg(median).arg(expected)));
}

void TestPanoramaSources::theTimeSignalsCarrierStandsInEverySpanAndWindow()
{
    if (!QFile::exists(path(timeSignal)))
        QSKIP("NOT CHECKED: the recordings are not there (../shared/data beside the source tree)");
    QString error;
    const auto source = openRecording(path(timeSignal), {}, &error);
    QVERIFY2(source, qPrintable(error));
    auto views =
        allViews(*source, [&](double span) { return Panorama::pointsFor(source->sampleRate(), span, 256); });
    QCOMPARE(int(views.size()), 12);
    play(*source, 10, views);
    // Each second it is 18 dB weaker for 0.1 or 0.2 s: most frames show what it is otherwise.
    for (const View& view : views)
        verifyCarrier(view, view.median(), source->center(), fullScale - 9.3);
}

// The power of the strongest of the longer pulses, in dBFS, from the samples alone.
double strongestPulse(IqSource& source)
{
    std::vector<Sample> samples(4000000);
    samples.resize(source.read(samples.data(), samples.size()));
    QFile file(path(remoteControlPulses));
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text))
        qFatal("%s cannot be read", qPrintable(file.fileName()));
    file.readLine();
    double strongest = 0;
    while (!file.atEnd()) {
        const QList<QByteArray> columns = file.readLine().split(',');
        const auto begin = columns[0].toULongLong();
        const auto width = columns[1].toULongLong();
        if (width < 4000 || begin + width > samples.size())
            continue;
        double power = 0;
        for (auto i = begin; i < begin + width; ++i)
            power += double(std::norm(samples[i])) / double(width);
        strongest = std::max(strongest, power);
    }
    return 10 * std::log10(strongest);
}

void TestPanoramaSources::theKeyedCarrierStandsInTheMaximumOfEverySpanAndWindow()
{
    if (!QFile::exists(path(remoteControl)))
        QSKIP("NOT CHECKED: the recordings are not there (../shared/data beside the source tree)");
    constexpr double rate = 1e6;
    constexpr double offset = 0.00687 * rate;
    RecordingOptions options;
    options.rate = rate;
    QString error;
    const auto source = openRecording(path(remoteControl), options, &error);
    QVERIFY2(source, qPrintable(error));
    // Its longer pulses last 4 ms: no transform longer than that can show their level.
    auto views = allViews(*source, [&](double span) {
        const double lower = rate / (std::floor(rate / (1.25 * span)));
        return std::min(Panorama::pointsFor(rate, span, 4096), int(2e-3 * lower));
    });
    views.erase(std::remove_if(views.begin(), views.end(), [](const View& view) { return view.span < 50e3; }),
                views.end());
    QCOMPARE(int(views.size()), 15);
    const double strongest = strongestPulse(*source);
    qInfo("the strongest pulse has %.2f dBFS", strongest);
    QVERIFY(source->rewind());
    play(*source, 60, views);
    for (const View& view : views) {
        verifyCarrier(view, view.hold, source->center() + offset, fullScale + strongest);
        // What the pulses have on the whole. A flat top adds to what a pulse fills in part.
        if (view.window != WindowFunction::FlatTop)
            verifyCarrier(view, view.hold, source->center() + offset, fullScale - 9.2);
    }
}

QTEST_GUILESS_MAIN(TestPanoramaSources)
#include "tst_panoramasources.moc"
