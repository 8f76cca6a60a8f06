#include "receiver/dsp/fourier.h"

#include <fftw3.h>

#include <algorithm>
#include <mutex>

namespace Receiver {

struct Fourier::Plan
{
    fftwf_plan plan = nullptr;
};

namespace {

constexpr double planSecondsMaximum = 0.2;  // then the best plan found so far is taken: a start must not wait

// The planner keeps what it learnt in one place for the whole process.
std::mutex& plannerMutex()
{
    static std::mutex mutex;
    return mutex;
}

Sample* allocate(int size)
{
    return reinterpret_cast<Sample*>(fftwf_alloc_complex(std::size_t(size)));
}

}  // namespace

Fourier::Fourier(int size, Direction direction) : m_size(size), m_plan(std::make_unique<Plan>())
{
    const std::lock_guard<std::mutex> lock(plannerMutex());
    m_input = allocate(size);
    m_output = allocate(size);
    fftwf_set_timelimit(planSecondsMaximum);
    m_plan->plan = fftwf_plan_dft_1d(
        size, reinterpret_cast<fftwf_complex*>(m_input), reinterpret_cast<fftwf_complex*>(m_output),
        direction == Forward ? FFTW_FORWARD : FFTW_BACKWARD, FFTW_MEASURE | FFTW_PRESERVE_INPUT);
    std::fill(m_input, m_input + size, Sample());  // planning wrote into them
    std::fill(m_output, m_output + size, Sample());
}

Fourier::~Fourier()
{
    const std::lock_guard<std::mutex> lock(plannerMutex());
    fftwf_destroy_plan(m_plan->plan);
    fftwf_free(m_input);
    fftwf_free(m_output);
}

void Fourier::run()
{
    fftwf_execute(m_plan->plan);
}

int Fourier::goodSize(double size)
{
    int power = 1;
    while (true) {
        for (const int factor : {4, 5, 6})
            if (double(factor) * power >= size)
                return factor * power;
        power *= 2;
    }
}

}  // namespace Receiver
