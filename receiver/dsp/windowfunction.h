#pragma once

#include <vector>

namespace Receiver {

// Window functions of the spectrum. Side lobes and noise bandwidth after F. J. Harris, "On the use
// of windows for harmonic analysis with the discrete Fourier transform", Proc. IEEE 66 (1978); the
// flat top after G. Heinzel, A. Ruediger, R. Schilling, "Spectrum and spectral density estimation by
// the discrete Fourier transform" (2002). It is negative at its ends: a carrier that is keyed within
// a transform may read up to 0.7 dB too much with it.
enum class WindowFunction
{
    Hann,            // narrow: noise bandwidth 1.5 bins, side lobes -31 dB
    BlackmanHarris,  // 4 terms: 2.0 bins, -92 dB
    FlatTop          // true levels between bins: 3.8 bins, -95 dB
};

// `size` periodic coefficients scaled to a sum of 1, so that a tone of amplitude a in the middle of
// a bin has magnitude a there. Empty for a size below 1.
std::vector<float> makeWindow(WindowFunction function, int size);

// Equivalent noise bandwidth in bins: size * sum(w^2) / sum(w)^2.
double noiseBandwidth(const std::vector<float>& window);

}  // namespace Receiver
