// What a panorama costs: everything around the transform against the transform alone, and the whole
// of it at 30 frames a second over samples from memory, in cores.

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <random>
#include <vector>

#include "receiver/dsp/fourier.h"
#include "receiver/dsp/panorama.h"
#include "receiver/dsp/spectrumkernel.h"

using namespace Receiver;

namespace {

constexpr int points = 8192;
constexpr int toneBin = 1000;      // above the middle
constexpr double toneLevel = -20;  // dBFS
constexpr int blocks = 16;         // different ones, so that the samples are not always the same
constexpr int repetitions = 41;

double seconds(clockid_t clock)
{
    timespec now{};
    clock_gettime(clock, &now);
    return double(now.tv_sec) + double(now.tv_nsec) * 1e-9;
}

// A tone on a bin, and noise 40 dB below it.
std::vector<Sample> signal(std::size_t count)
{
    std::mt19937 random(1);
    std::normal_distribution<float> noise(0.0f, 0.0007f);
    std::vector<Sample> samples(count);
    for (std::size_t i = 0; i < count; ++i) {
        const double turn = 2 * M_PI * double((i * toneBin) % points) / points;
        samples[i] =
            Sample(std::polar(std::pow(10.0, toneLevel / 20), turn)) + Sample(noise(random), noise(random));
    }
    return samples;
}

void require(bool right, const char* what, double value)
{
    if (right)
        return;
    std::fprintf(stderr, "bench_panorama: wrong result: %s (%g)\n", what, value);
    std::exit(1);
}

void tell(const char* name, double value, const char* unit, const char* bound, const char* sense)
{
    std::printf("{\"name\": \"%s\", \"value\": %.4g, \"unit\": \"%s\", \"bound\": %s, \"sense\": \"%s\"}\n",
                name, value, unit, bound, sense);
    std::fflush(stdout);
}

double median(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

template <class Work>
double timeOf(const Work& work)
{
    const double begin = seconds(CLOCK_THREAD_CPUTIME_ID);
    for (int i = 0; i < blocks; ++i)
        work(i);
    return (seconds(CLOCK_THREAD_CPUTIME_ID) - begin) / blocks;
}

// A panorama of each block: window, transform, power, averaged with those before, in dB.
void measureRatio()
{
    const std::vector<Sample> samples = signal(std::size_t(points) * blocks);
    SpectrumKernel kernel(points, WindowFunction::BlackmanHarris);
    std::vector<float> levels(points);
    const auto panorama = [&](int block) {
        kernel.add(samples.data() + std::size_t(block) * points);
        kernel.meanLevels(0, points, 80, levels.data());
    };
    Fourier transform(points, Fourier::Forward);
    std::copy_n(samples.begin(), points, transform.input());
    const auto bare = [&](int) { transform.run(); };

    timeOf(panorama);
    const auto level = double(levels[points / 2 + toneBin]);
    require(std::abs(level - (80 + toneLevel)) < 0.1, "level of the tone", level);
    std::vector<double> whole;
    std::vector<double> alone;
    for (int i = 0; i < repetitions; ++i) {
        alone.push_back(timeOf(bare));
        whole.push_back(timeOf(panorama));
    }
    // What others do on the machine only ever adds: the least of each is the work itself.
    const double least = *std::min_element(whole.begin(), whole.end());
    const double leastAlone = *std::min_element(alone.begin(), alone.end());
    tell("panorama.fft_8192_us", leastAlone * 1e6, "us", "null", "info");
    tell("panorama.whole_8192_us", least * 1e6, "us", "null", "info");
    tell("panorama.ratio_fft_8192", least / leastAlone, "x", "2.2", "max");
}

double coresAt(double rate, double span, int transform)
{
    const std::vector<Sample> samples = signal(1 << 21);
    PanoramaSettings settings;
    settings.points = transform;
    settings.span = span;
    Panorama panorama(rate, 80, settings);
    int frames = 0;
    float highest = 0;
    const auto play = [&](double signalSeconds) {
        const auto count = std::size_t(signalSeconds * rate);
        constexpr std::size_t step = 32768;
        for (std::size_t at = 0; at < count; at += step) {
            panorama.process(samples.data() + at % samples.size(), step, 0, [&](const PanoramaFrame& frame) {
                ++frames;
                highest = *std::max_element(frame.mean.begin(), frame.mean.end());
            });
        }
    };
    play(0.2);
    std::vector<double> cores;
    for (int i = 0; i < 5; ++i) {
        frames = 0;
        const double begin = seconds(CLOCK_THREAD_CPUTIME_ID);
        play(1);
        cores.push_back(seconds(CLOCK_THREAD_CPUTIME_ID) - begin);
        require(std::abs(frames - 30) <= 1, "frames in a second", frames);
        // The tone lies outside a narrow span, where only noise may be.
        const bool inside = span > rate / 2;
        require(inside ? std::abs(double(highest) - (80 + toneLevel)) < 0.1 : highest < 0, "highest level",
                double(highest));
    }
    return median(cores);
}

}  // namespace

int main()
{
    measureRatio();
    tell("panorama.core_20ms", coresAt(20e6, 16e6, points), "cores", "0.5", "max");
    tell("panorama.core_20ms_narrow", coresAt(20e6, 200e3, points), "cores", "0.5", "max");
    tell("panorama.core_5ms", coresAt(5e6, 4e6, 5120), "cores", "null", "info");
    return 0;
}
