#pragma once

#include <QtGlobal>
#include <vector>

#include "receiver/sources/iqsource.h"

namespace Receiver {

// The newest samples of a stream in one piece, addressed by their number in the stream. Its size
// never changes: when the space is used up, the samples still needed move to its front.
class SampleBuffer
{
public:
    // Keeps at least the newest `keep` samples reachable and takes up to `step` at a time.
    SampleBuffer(std::size_t keep, std::size_t step);

    qint64 begin() const { return m_begin; }  // number of the oldest sample
    qint64 end() const { return m_begin + qint64(m_used); }
    const Sample* at(qint64 number) const { return m_samples.data() + (number - m_begin); }

    // Room for `count` samples at the end, at most `step`; valid until the next call.
    Sample* room(std::size_t count);
    void append(std::size_t count) { m_used += count; }

private:
    std::size_t m_keep;
    qint64 m_begin = 0;
    std::size_t m_used = 0;
    std::vector<Sample> m_samples;
};

// Replaces by 0 what would spoil all that follows: parts that are not a number, infinite, or over
// 1e9 times full scale. Returns how many samples that were.
qint64 replaceInvalid(Sample* samples, std::size_t count);

}  // namespace Receiver
