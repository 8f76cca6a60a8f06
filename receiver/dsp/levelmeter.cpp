#include "receiver/dsp/levelmeter.h"

#include <volk/volk.h>

#include <algorithm>
#include <cmath>
#include <numeric>

#include "receiver/dsp/windowfunction.h"

namespace Receiver {

namespace {

constexpr double resolutionMaximum = 80.0;  // Hz; narrow channels are 500 Hz wide
constexpr int sizeMinimum = 32;

int sizeFor(double sampleRate)
{
    return Fourier::goodSize(std::max(double(sizeMinimum), sampleRate / resolutionMaximum));
}

double energyOf(const std::vector<float>& weights, int count)
{
    return std::accumulate(weights.begin(), weights.begin() + count, 0.0,
                           [](double sum, float weight) { return sum + double(weight) * double(weight); });
}

}  // namespace

LevelMeter::LevelMeter(double sampleRate)
    : m_window(makeWindow(WindowFunction::BlackmanHarris, sizeFor(sampleRate))),
      m_windowEnergy(energyOf(m_window, int(m_window.size()))),
      m_transform(sizeFor(sampleRate), Fourier::Forward),
      m_resolution(sampleRate / m_transform.size()),
      m_one(std::size_t(m_transform.size())),
      m_powers(std::size_t(m_transform.size()))
{}

void LevelMeter::clear()
{
    m_transforms = 0;
    m_energy = 0;
}

void LevelMeter::add(const Sample* samples, int count)
{
    const int used = std::min(count, size());
    const auto bins = static_cast<unsigned int>(size());
    volk_32fc_32f_multiply_32fc(m_transform.input(), samples, m_window.data(),
                                static_cast<unsigned int>(used));
    std::fill(m_transform.input() + used, m_transform.input() + size(), Sample());
    m_transform.run();
    if (m_transforms == 0) {
        volk_32fc_magnitude_squared_32f(m_powers.data(), m_transform.output(), bins);
    } else {
        volk_32fc_magnitude_squared_32f(m_one.data(), m_transform.output(), bins);
        volk_32f_x2_add_32f(m_powers.data(), m_powers.data(), m_one.data(), bins);
    }
    m_energy += used < size() ? energyOf(m_window, used) : m_windowEnergy;
    ++m_transforms;
}

// Bin k reaches from k - 1/2 to k + 1/2; `low` and `high` are in bins from the band's lower edge,
// where bin 0 begins.
double LevelMeter::sum(double low, double high) const
{
    if (!(high > low))
        return 0;
    const int count = size();
    const auto power = [&](int bin) { return double(m_powers[std::size_t((bin + count / 2) % count)]); };
    const int first = int(low);
    const int last = std::min(int(high), count - 1);
    if (first == last)
        return power(first) * (high - low);
    double total = power(first) * (first + 1 - low) + power(last) * (high - last);
    // The bins in between: upper half of the transform is the lower half of the band.
    const auto add = [&](int from, int to, int shift) {
        constexpr int stretch = 4096;  // floats lose nothing over so few
        for (int bin = from; bin < to; bin += stretch) {
            float part = 0;
            volk_32f_accumulator_s32f(&part, m_powers.data() + bin + shift,
                                      static_cast<unsigned int>(std::min(stretch, to - bin)));
            total += double(part);
        }
    };
    add(std::min(first + 1, count / 2), std::min(last, count / 2), count / 2);
    add(std::max(first + 1, count / 2), std::max(last, count / 2), -count / 2);
    return total;
}

double LevelMeter::level(double low, double high) const
{
    // Bin -size/2 stands on the lower edge of the band, so that half of it lies outside.
    const double count = size();
    const double from = std::clamp(low / m_resolution + count / 2 + 0.5, 0.5, count + 0.5);
    const double to = std::clamp(high / m_resolution + count / 2 + 0.5, 0.5, count + 0.5);
    if (!(to > from) || m_transforms == 0)
        return floorLevel;
    double power = sum(std::min(from, count), std::min(to, count));
    if (to > count)
        power += sum(std::max(from - count, 0.0), to - count);
    power /= m_energy * count;
    return power > 1e-20 ? std::max(10.0 * std::log10(power), floorLevel) : floorLevel;
}

}  // namespace Receiver
