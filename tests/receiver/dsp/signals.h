#pragma once

#include <cmath>
#include <complex>
#include <random>
#include <vector>

#include "receiver/sources/iqsource.h"

// Signals that are known exactly.
namespace Signals {

constexpr double pi = 3.14159265358979323846;

// A tone at `offset` Hz from the middle, full scale is 0 dB.
inline std::vector<Receiver::Sample> tone(double rate, double offset, double decibels, std::size_t count)
{
    std::vector<Receiver::Sample> samples(count);
    const double amplitude = std::pow(10.0, decibels / 20);
    for (std::size_t i = 0; i < count; ++i) {
        const double turns = std::fmod(offset / rate * double(i), 1.0);
        samples[i] = Receiver::Sample(std::polar(amplitude, 2 * pi * turns));
    }
    return samples;
}

inline void add(std::vector<Receiver::Sample>& samples, const std::vector<Receiver::Sample>& more)
{
    for (std::size_t i = 0; i < samples.size(); ++i)
        samples[i] += more[i];
}

// White noise; `decibels` is its mean power over the whole rate.
inline std::vector<Receiver::Sample> noise(double decibels, std::size_t count, unsigned seed = 1)
{
    std::mt19937 random(seed);
    std::normal_distribution<float> part(0.0f, float(std::sqrt(std::pow(10.0, decibels / 10) / 2)));
    std::vector<Receiver::Sample> samples(count);
    for (auto& sample : samples)
        sample = {part(random), part(random)};
    return samples;
}

struct Peak
{
    int bin = 0;       // the highest
    double at = 0;     // bins, between bins by a parabola through the three highest
    double level = 0;  // of the parabola's top
};

inline Peak peakOf(const std::vector<float>& levels, int first, int last)
{
    Peak peak;
    peak.bin = first;
    for (int i = first; i <= last; ++i) {
        if (levels[std::size_t(i)] > levels[std::size_t(peak.bin)])
            peak.bin = i;
    }
    peak.at = peak.bin;
    peak.level = double(levels[std::size_t(peak.bin)]);
    if (peak.bin == 0 || peak.bin + 1 == int(levels.size()))
        return peak;
    const double before = double(levels[std::size_t(peak.bin - 1)]);
    const double after = double(levels[std::size_t(peak.bin + 1)]);
    const double curve = before - 2 * peak.level + after;
    if (curve < 0) {
        const double shift = (before - after) / (2 * curve);
        peak.at += shift;
        peak.level -= (before - after) * shift / 4;
    }
    return peak;
}

}  // namespace Signals
