#pragma once

#include <cstddef>
#include <memory>
#include <vector>

#include "receiver/sources/iqsource.h"

namespace Receiver {

// Takes a band in the middle of the spectrum out of a wide stream: a chain of FIR low passes, each
// dividing the rate by up to 8. Everything that folds back into the band is 80 dB down; the band's
// ripple is below 0.1 dB. Linear phase.
class Decimator
{
public:
    // The largest whole factor whose output rate is at least 1.25 times `band`, made of the
    // factors 2, 3, 5 and 7 only; 1 when the band is wider.
    static int factorFor(double sampleRate, double band);

    // `band` in Hz is the two-sided width to keep. A factor of 1 passes the samples through.
    Decimator(double sampleRate, double band, int factor);
    ~Decimator();
    Decimator(Decimator&&) noexcept;
    Decimator& operator=(Decimator&&) noexcept;

    int factor() const;
    double outputRate() const;

    // Output samples of the group delay of the whole chain.
    double delay() const;

    // Appends the output of `count` samples to `output`; state is kept between calls.
    void process(const Sample* samples, std::size_t count, std::vector<Sample>& output);

    void reset();

private:
    struct Stage;
    std::vector<Stage> m_stages;
    int m_factor = 1;
    double m_outputRate = 0;
};

}  // namespace Receiver
