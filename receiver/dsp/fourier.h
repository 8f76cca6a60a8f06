#pragma once

#include <memory>

#include "receiver/sources/iqsource.h"

namespace Receiver {

// A complex single-precision transform of a fixed size with its own aligned buffers. Planning
// measures on the spot (up to a second) and takes turns between threads; run() belongs to one
// thread at a time.
class Fourier
{
public:
    enum Direction
    {
        Forward,
        Backward
    };  // neither divides by the size

    Fourier(int size, Direction direction);
    ~Fourier();
    Fourier(const Fourier&) = delete;
    Fourier& operator=(const Fourier&) = delete;

    int size() const { return m_size; }
    Sample* input() { return m_input; }  // `size` samples; run() leaves them as they are
    const Sample* output() const { return m_output; }
    void run();

    // The smallest size of at least `size` that transforms well: 4, 5 or 6 times a power of two.
    static int goodSize(double size);

private:
    struct Plan;
    int m_size;
    Sample* m_input = nullptr;
    Sample* m_output = nullptr;
    std::unique_ptr<Plan> m_plan;
};

}  // namespace Receiver
