#include "receiver/dsp/samplebuffer.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace Receiver {

SampleBuffer::SampleBuffer(std::size_t keep, std::size_t step) : m_keep(keep), m_samples(2 * keep + step) {}

Sample* SampleBuffer::room(std::size_t count)
{
    if (m_used + count > m_samples.size()) {
        const std::size_t kept = std::min(m_keep, m_used);
        std::copy(m_samples.begin() + qint64(m_used - kept), m_samples.begin() + qint64(m_used),
                  m_samples.begin());
        m_begin += qint64(m_used - kept);
        m_used = kept;
    }
    return m_samples.data() + m_used;
}

qint64 replaceInvalid(Sample* samples, std::size_t count)
{
    constexpr float largest = 1e9F;
    quint32 limit;
    std::memcpy(&limit, &largest, sizeof limit);
    auto* parts = reinterpret_cast<float*>(samples);
    // The bits of positive floats grow with their value, infinity and "not a number" above all:
    // one comparison of integers, which runs as vectors.
    quint32 found = 0;
    for (std::size_t i = 0; i < 2 * count; ++i) {
        quint32 bits;
        std::memcpy(&bits, parts + i, sizeof bits);
        found |= quint32((bits & 0x7FFFFFFFU) > limit);
    }
    if (found == 0)
        return 0;
    qint64 replaced = 0;
    for (std::size_t i = 0; i < count; ++i) {
        const float re = parts[2 * i];
        const float im = parts[2 * i + 1];
        if (std::abs(re) <= largest && std::abs(im) <= largest)
            continue;
        samples[i] = Sample();
        ++replaced;
    }
    return replaced;
}

}  // namespace Receiver
