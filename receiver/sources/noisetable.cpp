#include "receiver/sources/noisetable.h"

#include <volk/volk.h>

#include <cmath>

namespace Receiver {

namespace {

constexpr std::size_t tableSamples = 1U << 20;
constexpr double pi = 3.14159265358979323846;

quint64 mix(quint64 value)
{
    value = (value ^ (value >> 30)) * 0xBF58476D1CE4E5B9ULL;
    value = (value ^ (value >> 27)) * 0x94D049BB133111EBULL;
    return value ^ (value >> 31);
}

}  // namespace

quint64 Random::next()
{
    m_state += 0x9E3779B97F4A7C15ULL;
    return mix(m_state);
}

double Random::uniform()
{
    return double(next() >> 11) * 0x1.0p-53;
}

double Random::between(double low, double high)
{
    return low + (high - low) * uniform();
}

Sample Random::gaussian()
{
    const double radius = std::sqrt(-std::log(1.0 - uniform()));
    const double angle = 2.0 * pi * uniform();
    return {float(radius * std::cos(angle)), float(radius * std::sin(angle))};
}

quint64 Random::hash(quint64 seed, quint64 index)
{
    return mix(mix(seed + 0x9E3779B97F4A7C15ULL) ^ (index * 0xD1B54A32D192ED03ULL + 1));
}

NoiseTable::NoiseTable(quint64 seed, double power) : m_seed(seed), m_samples(tableSamples + pieceSamples)
{
    Random random(seed);
    const auto amplitude = float(std::sqrt(power));
    for (Sample& sample : m_samples)
        sample = amplitude * random.gaussian();
}

void NoiseTable::addTo(Sample* samples, std::size_t count, quint64 index) const
{
    const quint64 first = index * (count / pieceSamples);
    for (std::size_t piece = 0; piece * pieceSamples < count; ++piece) {
        const std::size_t from = Random::hash(m_seed, first + piece) % tableSamples;
        auto* out = reinterpret_cast<float*>(samples + piece * pieceSamples);
        volk_32f_x2_add_32f(out, out, reinterpret_cast<const float*>(m_samples.data() + from),
                            static_cast<unsigned int>(2 * pieceSamples));
    }
}

}  // namespace Receiver
