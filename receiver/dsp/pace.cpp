#include "receiver/dsp/pace.h"

namespace Receiver {

namespace {
using namespace std::chrono_literals;
constexpr auto wakePeriod = std::chrono::duration_cast<Pace::Clock::duration>(10ms);
constexpr auto latenessMaximum = 500ms;
}  // namespace

Pace::Clock::time_point Pace::due(qint64 sample) const
{
    const std::chrono::duration<double> after(double(sample) / m_rate);
    return m_begin + std::chrono::duration_cast<Clock::duration>(after);
}

Pace::Clock::time_point Pace::wakeFor(qint64 sample) const
{
    const auto after = due(sample) - m_begin;
    const auto periods = (after + wakePeriod - Clock::duration(1)) / wakePeriod;
    return m_begin + periods * wakePeriod;
}

bool Pace::resume(qint64 sample)
{
    const auto late = Clock::now() - due(sample);
    if (late <= latenessMaximum)
        return false;
    m_begin += late;
    return true;
}

qint64 Pace::timeOf(qint64 sample) const
{
    const auto ahead = due(sample) - Clock::now();
    const auto wall = std::chrono::system_clock::now() +
                      std::chrono::duration_cast<std::chrono::system_clock::duration>(ahead);
    return std::chrono::duration_cast<std::chrono::microseconds>(wall.time_since_epoch()).count();
}

}  // namespace Receiver
