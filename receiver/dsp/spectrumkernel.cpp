#include "receiver/dsp/spectrumkernel.h"

#include <volk/volk.h>

#include <algorithm>
#include <cmath>

#include "receiver/dsp/alignedarray.h"
#include "receiver/dsp/fourier.h"

namespace Receiver {

namespace {

// -200 dB, below any real level: keeps an empty bin finite.
constexpr float smallestLog2 = -66.4f;

// 10 log10(2): the vector logarithm is one to the base of 2.
constexpr float dbPerOctave = 3.01029995664f;

}  // namespace

struct SpectrumKernel::Private
{
    int size = 0;
    int blocks = 0;
    double noiseBins = 0;
    bool maximumIsSum = false;  // one block so far: `maximum` is not filled yet
    AlignedArray<float> window;
    AlignedArray<float> power;
    AlignedArray<float> sum;
    AlignedArray<float> maximum;
    mutable AlignedArray<float> scratch;
    Fourier transform;

    explicit Private(int points) : size(points), transform(points, Fourier::Forward) {}

    // Powers stand in the order of the transform, 0 Hz first; `levels` wants the lowest first. The
    // division by `blocks` is a subtraction behind the logarithm.
    void levels(const float* powers, int divisor, int first, int count, float offset, float* result) const
    {
        const float shift = offset - 10 * std::log10(static_cast<float>(divisor));
        const int half = size / 2;
        const int lower = std::clamp(half - first, 0, count);  // bins below 0 Hz
        if (lower > 0)
            decibels(powers + first + half, lower, shift, result);
        if (count > lower)
            decibels(powers + first + lower - half, count - lower, shift, result + lower);
    }

    void decibels(const float* powers, int count, float shift, float* result) const
    {
        volk_32f_log2_32f(scratch.get(), powers, static_cast<unsigned>(count));
        for (int i = 0; i < count; ++i)
            result[i] = std::max(scratch[i], smallestLog2) * dbPerOctave + shift;
    }
};

SpectrumKernel::SpectrumKernel(int size, WindowFunction window) : d(new Private(std::max(8, size + size % 2)))
{
    const std::vector<float> coefficients = makeWindow(window, d->size);
    d->noiseBins = noiseBandwidth(coefficients);
    d->window = alignedArray<float>(coefficients.size());
    std::copy(coefficients.begin(), coefficients.end(), d->window.get());
    d->power = alignedArray<float>(coefficients.size());
    d->sum = alignedArray<float>(coefficients.size());
    d->maximum = alignedArray<float>(coefficients.size());
    d->scratch = alignedArray<float>(coefficients.size());
    clear();
}

SpectrumKernel::~SpectrumKernel() = default;

int SpectrumKernel::size() const
{
    return d->size;
}

double SpectrumKernel::noiseBandwidthBins() const
{
    return d->noiseBins;
}

void SpectrumKernel::add(const Sample* block)
{
    const unsigned n = static_cast<unsigned>(d->size);
    volk_32fc_32f_multiply_32fc(d->transform.input(), block, d->window.get(), n);
    d->transform.run();
    const Sample* bins = d->transform.output();
    if (d->blocks++ == 0) {  // the first block is mean and maximum at once
        volk_32fc_magnitude_squared_32f(d->sum.get(), bins, n);
        d->maximumIsSum = true;
        return;
    }
    if (d->maximumIsSum) {
        std::copy_n(d->sum.get(), d->size, d->maximum.get());
        d->maximumIsSum = false;
    }
    volk_32fc_magnitude_squared_32f(d->power.get(), bins, n);
    volk_32f_x2_add_32f(d->sum.get(), d->sum.get(), d->power.get(), n);
    volk_32f_x2_max_32f(d->maximum.get(), d->maximum.get(), d->power.get(), n);
}

int SpectrumKernel::blocks() const
{
    return d->blocks;
}

void SpectrumKernel::meanLevels(int first, int count, float offsetDb, float* levels) const
{
    if (d->blocks > 0)
        d->levels(d->sum.get(), d->blocks, first, count, offsetDb, levels);
}

void SpectrumKernel::maximumLevels(int first, int count, float offsetDb, float* levels) const
{
    if (d->blocks > 0)
        d->levels(d->maximumIsSum ? d->sum.get() : d->maximum.get(), 1, first, count, offsetDb, levels);
}

void SpectrumKernel::clear()
{
    d->blocks = 0;
}

}  // namespace Receiver
