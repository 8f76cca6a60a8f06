#include "receiver/dsp/panorama.h"

#include <algorithm>
#include <cmath>

#include "receiver/dsp/decimator.h"
#include "receiver/dsp/spectrumkernel.h"

namespace Receiver {

namespace {

constexpr int pointsMinimum = 64;
constexpr int pointsMaximum = 131072;
constexpr double transformSeconds = 1.0 + 1e-9;  // at most

// Transforms overlap by half, so that no pulse falls between two windows. At rates above this one
// the price matters more.
constexpr double overlapRate = 10e6;  // samples/s

double spanWithin(double sampleRate, double span)
{
    return span > 0 ? std::min(span, sampleRate) : sampleRate;  // also of what is not a number
}

// Made of twos, threes and fives.
bool transformsWell(int points)
{
    for (const int prime : {2, 3, 5}) {
        while (points % prime == 0)
            points /= prime;
    }
    return points == 1;
}

double within(double value, double minimum, double maximum)
{
    return value >= minimum ? std::min(value, maximum) : minimum;
}

}  // namespace

struct Panorama::Private
{
    double sampleRate;
    double fullScale;
    double center = 0;
    PanoramaSettings settings;

    std::unique_ptr<Decimator> decimator;  // null while the span needs none
    std::unique_ptr<SpectrumKernel> kernel;
    double rate = 1;  // behind the decimator
    int firstBin = 0;
    int bins = 0;
    double perFrame = 1;  // samples behind the decimator for each frame
    double hop = 1;       // samples from transform to transform

    std::int64_t given = 0;       // samples, since the restart
    std::int64_t made = 0;        // behind the decimator
    std::vector<Sample> pending;  // not transformed yet; begins at the next transform's first sample
    double untilFrame = 0;        // samples until the frame under way ends
    double skip = 0;              // samples to drop before the next transform begins
    PanoramaFrame frame;

    Private(double inputRate, double level, const PanoramaSettings& wanted)
        : sampleRate(inputRate), fullScale(level), settings(wanted)
    {
        settings.points = std::clamp(wanted.points + wanted.points % 2, pointsMinimum, pointsMaximum);
        settings.frameRate = within(wanted.frameRate, 1, 60);
        const double span = spanWithin(sampleRate, wanted.span);
        const int factor = Decimator::factorFor(sampleRate, span);
        if (factor > 1)
            decimator = std::make_unique<Decimator>(sampleRate, span, factor);
        rate = sampleRate / factor;
        kernel = std::make_unique<SpectrumKernel>(settings.points, settings.window);
        const double points = settings.points;
        // The bins that lie within the span, without those on its edges: as many on either side.
        const int half = static_cast<int>(std::floor(span / 2 * points / rate * (1 - 1e-9)));
        firstBin = settings.points / 2 - half;
        bins = 2 * half + 1;
        perFrame = rate / settings.frameRate;
        hop = std::min(rate <= overlapRate ? points / 2 : points, perFrame);
        restart();
    }

    void restart()
    {
        pending.clear();
        given = 0;
        made = 0;
        if (decimator)
            decimator->reset();
        kernel->clear();
        untilFrame = perFrame;
        // The filters answer with what they remember first.
        skip = decimator ? std::ceil(2 * decimator->delay()) : 0;
    }

    void take(const Sample* samples, std::size_t count)
    {
        const std::size_t before = pending.size();
        if (decimator)
            decimator->process(samples, count, pending);
        else
            pending.insert(pending.end(), samples, samples + count);
        given += static_cast<std::int64_t>(count);
        made += static_cast<std::int64_t>(pending.size() - before);
    }

    // Seconds from the last sample in a transform to the end of what was given; `after`: samples
    // behind the transform. Output n of the decimator comes with sample n * factor.
    double secondsBehind(std::size_t after) const
    {
        if (!decimator)
            return static_cast<double>(after) / rate;
        const double last = static_cast<double>(made - 1 - static_cast<std::int64_t>(after));
        const double at = (last - decimator->delay()) * decimator->factor();
        return (static_cast<double>(given - 1) - at) / sampleRate;
    }

    void deliverFrame(std::int64_t time, const Deliver& deliver)
    {
        ++frame.sequence;
        frame.time = time;
        frame.step = rate / settings.points;
        const int below = settings.points / 2 - firstBin;  // bins from the first one to the middle
        frame.start = center - below * frame.step;
        frame.resolutionBandwidth = kernel->noiseBandwidthBins() * frame.step;
        frame.mean.resize(static_cast<std::size_t>(bins));
        frame.maximum.resize(static_cast<std::size_t>(bins));
        const float offset = static_cast<float>(fullScale);
        kernel->meanLevels(firstBin, bins, offset, frame.mean.data());
        kernel->maximumLevels(firstBin, bins, offset, frame.maximum.data());
        kernel->clear();
        deliver(frame);
    }

    // Drops the samples that the next transform does not want; from `begin` on they are still there.
    void drop(std::size_t& begin)
    {
        const auto whole = static_cast<std::size_t>(skip);
        const std::size_t dropped = std::min(pending.size() - begin, whole);
        begin += dropped;
        skip -= static_cast<double>(dropped);
    }
};

Panorama::Panorama(double sampleRate, double fullScale, const PanoramaSettings& settings)
    : d(new Private(sampleRate, fullScale, settings))
{}

Panorama::~Panorama() = default;

int Panorama::pointsFor(double sampleRate, double span, int bins)
{
    if (!(sampleRate > 0))
        return pointsMinimum;
    const double width = spanWithin(sampleRate, span);
    const double rate = sampleRate / Decimator::factorFor(sampleRate, width);
    const double most = std::min(bins * (rate / width) * (1 + 1e-9), transformSeconds * rate);
    int points = static_cast<int>(within(most, pointsMinimum, pointsMaximum));
    points -= points % 2;
    while (!transformsWell(points))
        points -= 2;
    return points;
}

const PanoramaSettings& Panorama::settings() const
{
    return d->settings;
}

void Panorama::setCenter(double center)
{
    if (center == d->center)
        return;
    d->center = center;
    d->restart();
}

void Panorama::restart()
{
    d->restart();
}

void Panorama::process(const Sample* samples, std::size_t count, std::int64_t time, const Deliver& deliver)
{
    d->take(samples, count);
    const auto points = static_cast<std::size_t>(d->settings.points);
    std::size_t begin = 0;
    while (true) {
        d->drop(begin);
        if (d->skip >= 1 || d->pending.size() - begin < points)
            break;
        d->kernel->add(d->pending.data() + begin);
        d->skip += d->hop;
        d->untilFrame -= d->hop;
        if (d->untilFrame < d->hop / 2) {
            const double behind = d->secondsBehind(d->pending.size() - begin - points);
            d->deliverFrame(time - std::llround(behind * 1e6), deliver);
            d->untilFrame += d->perFrame;
        }
    }
    d->pending.erase(d->pending.begin(), d->pending.begin() + static_cast<std::ptrdiff_t>(begin));
}

}  // namespace Receiver
