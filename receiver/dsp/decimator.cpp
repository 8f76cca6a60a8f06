#include "receiver/dsp/decimator.h"

#include <volk/volk.h>

#include <algorithm>
#include <cmath>
#include <cstring>

#include "receiver/dsp/alignedarray.h"

namespace Receiver {

namespace {

constexpr double stopBandDb = 84;  // a little more than is promised: several stages add up

// Modified Bessel function of the first kind, order 0, by its power series.
double besselI0(double x)
{
    double sum = 1;
    double term = 1;
    for (int k = 1; term > 1e-12 * sum; ++k) {
        term *= (x / (2 * k)) * (x / (2 * k));
        sum += term;
    }
    return sum;
}

// Kaiser-windowed low pass (J. F. Kaiser, 1974): transition from `pass` to `stop`, both as a
// fraction of the sample rate, with unit gain at 0.
std::vector<float> lowPass(double pass, double stop)
{
    const double width = std::max(stop - pass, 1e-4);
    const double beta = 0.1102 * (stopBandDb - 8.7);
    const int order = static_cast<int>(std::ceil((stopBandDb - 7.95) / (2.285 * 2 * M_PI * width)));
    const int length = order + 1 + (order % 2);  // odd: a whole number of samples of delay
    const double cut = (pass + stop) / 2;
    const double middle = (length - 1) / 2.0;
    std::vector<double> taps(static_cast<std::size_t>(length));
    double sum = 0;
    for (int i = 0; i < length; ++i) {
        const double t = i - middle;
        const double ideal = t == 0 ? 2 * cut : std::sin(2 * M_PI * cut * t) / (M_PI * t);
        const double r = middle == 0 ? 0 : t / middle;
        taps[static_cast<std::size_t>(i)] = ideal * besselI0(beta * std::sqrt(std::max(0.0, 1 - r * r)));
        sum += taps[static_cast<std::size_t>(i)];
    }
    std::vector<float> result(taps.size());
    for (std::size_t i = 0; i < taps.size(); ++i)
        result[i] = static_cast<float>(taps[i] / sum);
    return result;
}

// The factor as steps: the large ones last, where the rate is low already and filters are long.
std::vector<int> steps(int factor)
{
    std::vector<int> result;
    for (const int prime : {7, 5, 3, 2}) {
        while (factor % prime == 0 && factor > 1) {
            result.push_back(prime);
            factor /= prime;
        }
    }
    std::reverse(result.begin(), result.end());
    // Pairs of halvings are cheaper in one go.
    for (std::size_t i = 0; i + 1 < result.size();) {
        if (result[i] == 2 && result[i + 1] == 2) {
            result[i] = 4;
            result.erase(result.begin() + static_cast<std::ptrdiff_t>(i) + 1);
        }
        ++i;
    }
    return result;
}

bool smooth(int factor)
{
    for (const int prime : {2, 3, 5, 7}) {
        while (factor % prime == 0)
            factor /= prime;
    }
    return factor == 1;
}

}  // namespace

struct Decimator::Stage
{
    int factor;
    std::size_t length;           // taps
    AlignedArray<float> taps;     // aligned: VOLK takes them to be, wherever the samples stand
    std::vector<Sample> history;  // length - 1 samples of the past, then the new ones
    std::size_t next = 0;         // where in `history` the next output's window begins
    std::vector<Sample> output;

    Stage(int by, const std::vector<float>& filter)
        : factor(by), length(filter.size()), taps(alignedArray<float>(length))
    {
        std::copy(filter.begin(), filter.end(), taps.get());
        reset();
    }

    void process(const Sample* samples, std::size_t count)
    {
        output.clear();
        history.insert(history.end(), samples, samples + count);
        while (next + length <= history.size()) {
            Sample sum;
            volk_32fc_32f_dot_prod_32fc(&sum, history.data() + next, taps.get(),
                                        static_cast<unsigned>(length));
            output.push_back(sum);
            next += static_cast<std::size_t>(factor);
        }
        const std::size_t done = std::min(next, history.size());
        std::memmove(static_cast<void*>(history.data()), history.data() + done,
                     (history.size() - done) * sizeof(Sample));
        history.resize(history.size() - done);
        next -= done;
    }

    void reset()
    {
        history.assign(length - 1, Sample());
        next = 0;
    }
};

Decimator::Decimator(double sampleRate, double band, int factor) : m_factor(std::max(1, factor))
{
    m_outputRate = sampleRate / m_factor;
    double rate = sampleRate;
    for (const int step : steps(m_factor)) {
        const double lower = rate / step;
        // Only what folds back into the band matters: everything from (lower - band / 2) on.
        m_stages.emplace_back(step, lowPass(band / 2 / rate, std::min((lower - band / 2) / rate, 0.5)));
        rate = lower;
    }
}

Decimator::~Decimator() = default;
Decimator::Decimator(Decimator&&) noexcept = default;
Decimator& Decimator::operator=(Decimator&&) noexcept = default;

int Decimator::factorFor(double sampleRate, double band)
{
    if (!(sampleRate > 0) || !(band > 0))
        return 1;
    const double largest = std::min(sampleRate / (1.25 * band), 1e6);
    int factor = std::max(1, static_cast<int>(std::floor(largest * (1 + 1e-9))));
    while (!smooth(factor))
        --factor;
    return factor;
}

int Decimator::factor() const
{
    return m_factor;
}

double Decimator::outputRate() const
{
    return m_outputRate;
}

double Decimator::delay() const
{
    double seconds = 0;
    double rate = m_outputRate * m_factor;
    for (const Stage& stage : m_stages) {
        seconds += static_cast<double>(stage.length - 1) / 2 / rate;
        rate /= stage.factor;
    }
    return seconds * m_outputRate;
}

void Decimator::process(const Sample* samples, std::size_t count, std::vector<Sample>& output)
{
    for (Stage& stage : m_stages) {
        stage.process(samples, count);
        samples = stage.output.data();
        count = stage.output.size();
    }
    output.insert(output.end(), samples, samples + count);
}

void Decimator::reset()
{
    for (Stage& stage : m_stages)
        stage.reset();
}

}  // namespace Receiver
