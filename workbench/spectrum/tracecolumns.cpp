#include "spectrum/tracecolumns.h"

#include <algorithm>
#include <cmath>

#include "spectrum/columnbins.h"
#include "spectrum/levelpower.h"

namespace {

// Stands for an empty bin where the highest is looked for.
constexpr float farBelow = -3e38f;

// A column may lie this much of a bin beyond the middle of the outermost one: bins have a width.
constexpr double reach = 0.5;

float interpolated(const ScanFrame& frame, double position)
{
    const int last = static_cast<int>(frame.levels.size()) - 1;
    if (position < -reach || position > last + reach)
        return LevelPower::none;
    const double inside = std::clamp(position, 0.0, static_cast<double>(last));
    const int lower = std::min(static_cast<int>(inside), std::max(0, last - 1));
    const int upper = std::min(lower + 1, last);
    const float from = frame.levels[lower];
    const float to = frame.levels[upper];
    const float share = static_cast<float>(inside - lower);
    // Half of the way belongs to each of them where the other one is empty.
    if (!LevelPower::isLevel(from) || !LevelPower::isLevel(to)) {
        const float nearest = share < 0.5f ? from : to;
        return LevelPower::isLevel(nearest) ? nearest : LevelPower::none;
    }
    return from * (1 - share) + to * share;
}

// Whether all of them are levels.
bool cleanLevels(const float* levels, int count, float* cleaned)
{
    int empty = 0;
    for (int i = 0; i < count; ++i) {
        const bool known = LevelPower::isLevel(levels[i]);
        cleaned[i] = known ? levels[i] : farBelow;
        empty += known ? 0 : 1;
    }
    return empty == 0;
}

void powersOf(const float* cleaned, int count, float* powers)
{
    for (int i = 0; i < count; ++i) {
        const float power = LevelPower::power(cleaned[i]);
        powers[i] = cleaned[i] > farBelow ? power : 0.0f;
    }
}

// Four at a time: each alone would wait for the one before.
float highestOf(const float* levels, int count)
{
    float highest[4] = {farBelow, farBelow, farBelow, farBelow};
    int i = 0;
    for (; i + 4 <= count; i += 4) {
        for (int lane = 0; lane < 4; ++lane)
            highest[lane] = levels[i + lane] > highest[lane] ? levels[i + lane] : highest[lane];
    }
    for (; i < count; ++i)
        highest[0] = std::max(highest[0], levels[i]);
    return std::max(std::max(highest[0], highest[1]), std::max(highest[2], highest[3]));
}

float sumOf(const float* powers, int count)
{
    float sums[4] = {0, 0, 0, 0};
    int i = 0;
    for (; i + 4 <= count; i += 4) {
        for (int lane = 0; lane < 4; ++lane)
            sums[lane] += powers[i + lane];
    }
    for (; i < count; ++i)
        sums[0] += powers[i];
    return (sums[0] + sums[1]) + (sums[2] + sums[3]);
}

int levelsIn(const float* cleaned, int count)
{
    int found = 0;
    for (int i = 0; i < count; ++i)
        found += cleaned[i] > farBelow ? 1 : 0;
    return found;
}

}  // namespace

bool TraceColumns::prepare(const ScanFrame& frame, const ScanRange& view, int width)
{
    maximum.resize(std::max(width, 0));
    if (width <= 0)
        return false;
    if (frame.isValid() && view.isValid())
        return true;
    maximum.fill(LevelPower::none);
    return false;
}

void TraceColumns::fill(const ScanFrame& frame, const ScanRange& view, int width)
{
    mean.resize(std::max(width, 0));
    if (!prepare(frame, view, width)) {
        mean.fill(LevelPower::none);
        return;
    }
    const ColumnBins bins(frame, view, width);
    const int first = bins.begin(0);
    const int count = std::max(0, bins.begin(width) - first);
    m_levels.resize(count);
    m_power.resize(count);
    const bool complete = cleanLevels(frame.levels.constData() + first, count, m_levels.data());
    powersOf(m_levels.constData(), count, m_power.data());
    int begin = first;
    for (int x = 0; x < width; ++x) {
        const int end = bins.begin(x + 1);
        const float* levels = m_levels.constData() + (begin - first);
        if (end <= begin) {
            maximum[x] = mean[x] = interpolated(frame, bins.middle(x));
        } else if (end - begin == 1) {
            maximum[x] = mean[x] = *levels > farBelow ? *levels : LevelPower::none;
        } else {
            const int inside = end - begin;
            const float highest = highestOf(levels, inside);
            const float sum = sumOf(m_power.constData() + (begin - first), inside);
            const int found = complete ? inside : levelsIn(levels, inside);
            maximum[x] = highest > farBelow ? highest : LevelPower::none;
            mean[x] = highest > farBelow
                          ? std::min(highest, LevelPower::fastLevel(sum / static_cast<float>(found)))
                          : LevelPower::none;
        }
        begin = end;
    }
}

void TraceColumns::fillMaximum(const ScanFrame& frame, const ScanRange& view, int width)
{
    mean.clear();
    if (!prepare(frame, view, width))
        return;
    const ColumnBins bins(frame, view, width);
    const int first = bins.begin(0);
    const int count = std::max(0, bins.begin(width) - first);
    m_levels.resize(count);
    cleanLevels(frame.levels.constData() + first, count, m_levels.data());
    int begin = first;
    for (int x = 0; x < width; ++x) {
        const int end = bins.begin(x + 1);
        if (end > begin) {
            const float highest = highestOf(m_levels.constData() + (begin - first), end - begin);
            maximum[x] = highest > farBelow ? highest : LevelPower::none;
        } else {
            maximum[x] = interpolated(frame, bins.middle(x));
        }
        begin = end;
    }
}
