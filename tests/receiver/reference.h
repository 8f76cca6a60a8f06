#pragma once

#include <complex>
#include <vector>

#include "receiver/sources/iqsource.h"

// Measures by other means than the product does: no library's transform, another window, a filter
// in the time domain.
namespace Reference {

// The power of each sample after a low pass: |x|^2 of what lies within `bandwidth` Hz around
// `offset` Hz. Linear phase, the delay is taken out; 60 dB down at 1.5 times half the bandwidth.
std::vector<double> bandPower(const std::vector<Receiver::Sample>& samples, double rate, double offset,
                              double bandwidth);

// The mean of powers[first, last), in dB of full scale.
double meanDecibels(const std::vector<double>& powers, double first, double last);

// Power per bin of one Hann-weighted stretch, 0 Hz in the middle; their sum is the mean power.
std::vector<double> spectrum(const Receiver::Sample* samples, int size);  // size: a power of two

}  // namespace Reference
