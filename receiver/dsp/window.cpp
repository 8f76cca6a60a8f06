#include "receiver/dsp/window.h"

#include <cmath>

namespace Receiver {

Window::Window(int size) : weights(std::size_t(size))
{
    constexpr double pi = 3.14159265358979323846;
    for (int i = 0; i < size; ++i) {
        const double turn = 2 * pi * i / size;
        const double weight =
            0.35875 - 0.48829 * std::cos(turn) + 0.14128 * std::cos(2 * turn) - 0.01168 * std::cos(3 * turn);
        weights[std::size_t(i)] = float(weight);
        energy += weight * weight;
    }
}

}  // namespace Receiver
