#include "spectrum/tracehold.h"

#include <algorithm>
#include <cmath>

#include "spectrum/levelpower.h"

namespace {

constexpr double usualFrameSeconds = 1.0 / 30;

void holdHighest(const float* levels, int count, float* held)
{
    for (int i = 0; i < count; ++i) {
        const bool higher = LevelPower::isLevel(levels[i]) && !(levels[i] <= held[i]);
        held[i] = higher ? levels[i] : held[i];
    }
}

void holdLowest(const float* levels, int count, float* held)
{
    for (int i = 0; i < count; ++i) {
        const bool lower = LevelPower::isLevel(levels[i]) && !(levels[i] >= held[i]);
        held[i] = lower ? levels[i] : held[i];
    }
}

// An empty bin keeps its mean; a mean that was empty takes the first level.
void averagePowers(const float* levels, int count, float share, float* powers)
{
    for (int i = 0; i < count; ++i) {
        const bool known = LevelPower::isLevel(levels[i]);
        const float power = LevelPower::power(known ? levels[i] : 0.0f);
        const float mean = powers[i] > 0 ? powers[i] + share * (power - powers[i]) : power;
        powers[i] = known ? mean : powers[i];
    }
}

void levelsOfPowers(const float* powers, int count, float* levels)
{
    for (int i = 0; i < count; ++i) {
        const float level = LevelPower::fastLevel(powers[i]);
        levels[i] = powers[i] > 0 ? level : LevelPower::none;
    }
}

void makeFinite(ScanFrame& frame)
{
    for (float& level : frame.levels) {
        if (!LevelPower::isLevel(level))
            level = LevelPower::none;
    }
}

void describe(ScanFrame& held, const ScanFrame& frame)
{
    held.sequence = frame.sequence;
    held.time = frame.time;
    held.resolutionBandwidth = frame.resolutionBandwidth;
}

}  // namespace

void TraceHold::setMaximumHeld(bool held)
{
    m_maximumHeld = held;
    if (!held)
        m_maximum = ScanFrame();
}

void TraceHold::setMinimumHeld(bool held)
{
    m_minimumHeld = held;
    if (!held)
        m_minimum = ScanFrame();
}

void TraceHold::setAveraging(double seconds)
{
    const double wanted = seconds > 0 && std::isfinite(seconds) ? seconds : 0;
    if (wanted > 0 && !(m_seconds > 0))
        m_power.clear();  // the mean begins with the next frame
    m_seconds = wanted;
}

void TraceHold::reset()
{
    m_live = ScanFrame();
    m_maximum = ScanFrame();
    m_minimum = ScanFrame();
    m_power.clear();
    m_frameSeconds = 0;
}

// How much of the new frame goes into the mean: time that does not advance counts as usual.
double TraceHold::share(qint64 time)
{
    const double seconds = static_cast<double>(time - m_live.time) * 1e-6;
    if (seconds > 0)
        m_frameSeconds = seconds;
    const double passed = seconds > 0 ? seconds : (m_frameSeconds > 0 ? m_frameSeconds : usualFrameSeconds);
    return 1 - std::exp(-passed / m_seconds);
}

void TraceHold::average(const ScanFrame& frame)
{
    const int count = static_cast<int>(frame.levels.size());
    const bool begins = m_power.size() != count;
    if (begins)
        m_power = QVector<float>(count, 0.0f);
    const float part = begins ? 1 : static_cast<float>(share(frame.time));
    averagePowers(frame.levels.constData(), count, part, m_power.data());
    m_live.levels.resize(count);
    levelsOfPowers(m_power.constData(), count, m_live.levels.data());
    describe(m_live, frame);
}

void TraceHold::add(const ScanFrame& frame)
{
    if (!frame.isValid())
        return;
    if (!m_live.isEmpty() && !m_live.sameBins(frame))
        reset();
    const int count = static_cast<int>(frame.levels.size());
    if (m_maximumHeld && m_maximum.isEmpty()) {
        m_maximum = frame;
        makeFinite(m_maximum);
    } else if (m_maximumHeld) {
        holdHighest(frame.levels.constData(), count, m_maximum.levels.data());
        describe(m_maximum, frame);
    }
    if (m_minimumHeld && m_minimum.isEmpty()) {
        m_minimum = frame;
        makeFinite(m_minimum);
    } else if (m_minimumHeld) {
        holdLowest(frame.levels.constData(), count, m_minimum.levels.data());
        describe(m_minimum, frame);
    }
    if (m_seconds > 0) {
        m_live.start = frame.start;
        m_live.step = frame.step;
        average(frame);
    } else {
        m_live = frame;
    }
}

const ScanFrame* TraceHold::live() const
{
    return m_live.isEmpty() ? nullptr : &m_live;
}

const ScanFrame* TraceHold::maximum() const
{
    return m_maximum.isEmpty() ? nullptr : &m_maximum;
}

const ScanFrame* TraceHold::minimum() const
{
    return m_minimum.isEmpty() ? nullptr : &m_minimum;
}
