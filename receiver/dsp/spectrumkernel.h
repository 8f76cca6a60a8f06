#pragma once

#include <memory>
#include <vector>

#include "receiver/dsp/windowfunction.h"
#include "receiver/sources/iqsource.h"

namespace Receiver {

// Window, transform, power: one block of samples at a time, into a mean and a maximum over the
// blocks added since the last clear. Bins in order of frequency, the lowest first; bin size / 2 is 0 Hz.
// Levels in dB, 0 dB a complex tone of amplitude 1.
class SpectrumKernel
{
public:
    // `size` is even and at least 8.
    SpectrumKernel(int size, WindowFunction window);
    ~SpectrumKernel();
    SpectrumKernel(const SpectrumKernel&) = delete;
    SpectrumKernel& operator=(const SpectrumKernel&) = delete;

    int size() const;
    double noiseBandwidthBins() const;

    void add(const Sample* block);  // `size` samples, no alignment needed
    int blocks() const;             // added since the last clear

    // `first` and `count` in bins; untouched when no block was added.
    void meanLevels(int first, int count, float offsetDb, float* levels) const;
    void maximumLevels(int first, int count, float offsetDb, float* levels) const;

    void clear();

private:
    struct Private;
    std::unique_ptr<Private> d;
};

}  // namespace Receiver
