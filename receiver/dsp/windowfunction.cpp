#include "receiver/dsp/windowfunction.h"

#include <array>
#include <cmath>

namespace Receiver {

namespace {

constexpr double pi = 3.14159265358979323846;

// Cosine series a0 - a1 cos(x) + a2 cos(2x) - ...; the scaling below makes the sum 1.
std::array<double, 5> coefficients(WindowFunction function)
{
    switch (function) {
        case WindowFunction::Hann:
            return {0.5, 0.5, 0, 0, 0};
        case WindowFunction::BlackmanHarris:
            return {0.35875, 0.48829, 0.14128, 0.01168, 0};
        case WindowFunction::FlatTop:
            return {1.0, 1.9383379, 1.3045202, 0.4028270, 0.0350665};
    }
    return {1, 0, 0, 0, 0};
}

}  // namespace

std::vector<float> makeWindow(WindowFunction function, int size)
{
    if (size < 1)
        return {};
    const std::array<double, 5> a = coefficients(function);
    std::vector<double> values(static_cast<std::size_t>(size));
    double sum = 0;
    for (int i = 0; i < size; ++i) {
        const double x = 2 * pi * i / size;
        double value = 0;
        for (std::size_t k = 0; k < a.size(); ++k)
            value += (k % 2 ? -a[k] : a[k]) * std::cos(static_cast<double>(k) * x);
        values[static_cast<std::size_t>(i)] = value;
        sum += value;
    }
    if (!(sum > 0))  // a single Hann point is zero
        return std::vector<float>(values.size(), 1.0f / static_cast<float>(size));
    std::vector<float> result(values.size());
    for (std::size_t i = 0; i < values.size(); ++i)
        result[i] = static_cast<float>(values[i] / sum);
    return result;
}

double noiseBandwidth(const std::vector<float>& window)
{
    double sum = 0;
    double squares = 0;
    for (const float w : window) {
        sum += w;
        squares += static_cast<double>(w) * w;
    }
    return sum > 0 ? static_cast<double>(window.size()) * squares / (sum * sum) : 0;
}

}  // namespace Receiver
