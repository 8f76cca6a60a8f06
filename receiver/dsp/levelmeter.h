#pragma once

#include <vector>

#include "receiver/dsp/fourier.h"

namespace Receiver {

// The power spectrum that all channels share, averaged over the transforms of one report, and the
// levels read from it.
//
// A level is the sum of the bins' power over the channel, the outermost bins by the share that lies
// inside. Dividing by the window's energy makes it right for noise and for tones alike: a tone
// counts fully where it lies at least 2.5 bins (at most 200 Hz) within the channel, half on its
// edge, and smoothly in between.
class LevelMeter
{
public:
    static constexpr double floorLevel = -200.0;  // dB, of nothing at all

    explicit LevelMeter(double sampleRate);

    int size() const { return m_transform.size(); }     // samples of one transform
    double resolution() const { return m_resolution; }  // Hz, of one bin; at most 80

    // Takes `count` samples, at most size(). Fewer are measured as if silence stood after them, and
    // the level is that of the samples there are.
    void add(const Sample* samples, int count);

    int transforms() const { return m_transforms; }  // since clear()
    void clear();

    // dBFS of the channel from `low` to `high`, Hz from the middle of the band. What lies outside
    // the band counts as nothing; floorLevel when all of it does, or while there is no transform.
    double level(double low, double high) const;

private:
    double sum(double low, double high) const;

    std::vector<float> m_window;  // within 2.5 bins beside a tone lies all but 0.03 % of its power
    double m_windowEnergy;        // sum of the squares
    Fourier m_transform;
    double m_resolution;
    double m_energy = 0;  // of the window over all samples taken
    int m_transforms = 0;
    std::vector<float> m_one;     // power of the newest transform
    std::vector<float> m_powers;  // summed, in the transform's order: 0 Hz first
};

}  // namespace Receiver
