#pragma once

#include <QtGlobal>
#include <chrono>

namespace Receiver {

// When the samples of a stream are due on the clock. A stream that has fallen far behind is put
// back in step by moving the clock's beginning: it never races to catch up with hours of sleep.
class Pace
{
public:
    using Clock = std::chrono::steady_clock;

    explicit Pace(double sampleRate) : m_rate(sampleRate), m_begin(Clock::now()) {}

    Clock::time_point due(qint64 sample) const;

    // Like due(), but at most 100 times a second: a thread that wakes for each small block would
    // spend its time waking.
    Clock::time_point wakeFor(qint64 sample) const;

    // To be called with the sample that is due now. True: the stream was late by over half a second
    // and the clock was moved.
    bool resume(qint64 sample);

    // Microseconds since 1970 at which the sample is due; follows the system's clock.
    qint64 timeOf(qint64 sample) const;

private:
    double m_rate;
    Clock::time_point m_begin;
};

}  // namespace Receiver
