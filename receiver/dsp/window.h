#pragma once

#include <vector>

namespace Receiver {

// The four-term Blackman-Harris window: side lobes 92 dB down, so that a strong neighbour does not
// show in a weak channel. Within 2.5 bins on both sides of a tone lies all but 0.03 % of its power.
// `energy` is the sum of its squares.
struct Window
{
    explicit Window(int size);

    std::vector<float> weights;
    double energy = 0;
};

}  // namespace Receiver
