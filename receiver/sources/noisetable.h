#pragma once

#include <QtGlobal>
#include <cstddef>
#include <vector>

#include "receiver/sources/iqsource.h"

namespace Receiver {

// Random numbers that are the same on every machine for the same seed.
class Random
{
public:
    explicit Random(quint64 seed) : m_state(seed) {}

    quint64 next();
    double uniform();                         // [0, 1)
    double between(double low, double high);  // [low, high)
    Sample gaussian();                        // complex, mean power 1

    // A number of its own for each pair, without a state.
    static quint64 hash(quint64 seed, quint64 index);

private:
    quint64 m_state;
};

// White noise at the price of an addition: a long stretch of it, drawn once, of which pieces from
// random places are added.
class NoiseTable
{
public:
    NoiseTable(quint64 seed, double power);  // mean power of a sample, full scale is 1

    // Adds noise to `count` samples (a multiple of pieceSamples). `index` tells which: the same
    // index always gives the same noise.
    void addTo(Sample* samples, std::size_t count, quint64 index) const;

    static constexpr std::size_t pieceSamples = 2048;

private:
    quint64 m_seed;
    std::vector<Sample> m_samples;
};

}  // namespace Receiver
