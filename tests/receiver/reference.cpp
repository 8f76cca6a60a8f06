#include "reference.h"

#include <algorithm>
#include <cmath>

namespace Reference {

namespace {

constexpr double pi = 3.14159265358979323846;

std::vector<double> lowPass(double rate, double bandwidth)
{
    // A Blackman-weighted sinc: its slope is 5.5 / taps of the rate wide, here half the band's half.
    const double slope = bandwidth / 4;
    const int half = int(std::ceil(5.5 * rate / slope / 2));
    std::vector<double> taps(std::size_t(2 * half + 1));
    double sum = 0;
    for (int i = -half; i <= half; ++i) {
        const double x = bandwidth * i / rate;
        const double sinc = i == 0 ? 1.0 : std::sin(pi * x) / (pi * x);
        const double turn = pi * i / (half + 1);
        const double weight = 0.42 + 0.5 * std::cos(turn) + 0.08 * std::cos(2 * turn);
        taps[std::size_t(i + half)] = sinc * weight;
        sum += sinc * weight;
    }
    for (double& tap : taps)
        tap /= sum;
    return taps;
}

void transform(std::vector<std::complex<double>>& values)
{
    const std::size_t size = values.size();
    for (std::size_t i = 1, j = 0; i < size; ++i) {
        std::size_t bit = size >> 1;
        for (; (j & bit) != 0; bit >>= 1)
            j ^= bit;
        j ^= bit;
        if (i < j)
            std::swap(values[i], values[j]);
    }
    static std::vector<std::complex<double>> turns;
    if (turns.size() != size / 2) {
        turns.resize(size / 2);
        for (std::size_t i = 0; i < size / 2; ++i)
            turns[i] = std::polar(1.0, -2 * pi * double(i) / double(size));
    }
    for (std::size_t length = 2; length <= size; length *= 2) {
        const std::size_t step = size / length;
        for (std::size_t begin = 0; begin < size; begin += length) {
            for (std::size_t k = 0; k < length / 2; ++k) {
                const std::complex<double> a = values[begin + k];
                const std::complex<double> b = values[begin + k + length / 2];
                const std::complex<double> t = turns[k * step];
                const std::complex<double> turned(b.real() * t.real() - b.imag() * t.imag(),
                                                  b.real() * t.imag() + b.imag() * t.real());
                values[begin + k] = a + turned;
                values[begin + k + length / 2] = a - turned;
            }
        }
    }
}

}  // namespace

std::vector<double> bandPower(const std::vector<Receiver::Sample>& samples, double rate, double offset,
                              double bandwidth)
{
    std::vector<std::complex<double>> mixed(samples.size());
    for (std::size_t i = 0; i < samples.size(); ++i)
        mixed[i] = std::complex<double>(samples[i]) *
                   std::polar(1.0, -2 * pi * std::fmod(offset * double(i) / rate, 1.0));
    const std::vector<double> taps = lowPass(rate, bandwidth);
    const auto half = qint64(taps.size() / 2);
    std::vector<double> powers(samples.size());
    for (qint64 i = 0; i < qint64(samples.size()); ++i) {
        double re = 0;
        double im = 0;
        const qint64 from = std::max<qint64>(-half, -i);
        const qint64 to = std::min<qint64>(half, qint64(samples.size()) - 1 - i);
        for (qint64 k = from; k <= to; ++k) {
            re += taps[std::size_t(k + half)] * mixed[std::size_t(i + k)].real();
            im += taps[std::size_t(k + half)] * mixed[std::size_t(i + k)].imag();
        }
        powers[std::size_t(i)] = re * re + im * im;
    }
    return powers;
}

double meanDecibels(const std::vector<double>& powers, double first, double last)
{
    const auto from = std::size_t(std::clamp<double>(std::round(first), 0, double(powers.size())));
    const auto to = std::size_t(std::clamp<double>(std::round(last), 0, double(powers.size())));
    double sum = 0;
    for (std::size_t i = from; i < to; ++i)
        sum += powers[i];
    return 10 * std::log10(sum / double(to - from));
}

std::vector<double> spectrum(const Receiver::Sample* samples, int size)
{
    std::vector<std::complex<double>> values(static_cast<std::size_t>(size));
    double energy = 0;
    for (int i = 0; i < size; ++i) {
        const double weight = 0.5 - 0.5 * std::cos(2 * pi * i / size);
        values[std::size_t(i)] = weight * std::complex<double>(samples[i]);
        energy += weight * weight;
    }
    transform(values);
    std::vector<double> powers(values.size());
    for (int i = 0; i < size; ++i)
        powers[std::size_t((i + size / 2) % size)] = std::norm(values[std::size_t(i)]) / energy / size;
    return powers;
}

}  // namespace Reference
