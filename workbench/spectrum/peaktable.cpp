#include "spectrum/peaktable.h"

#include <algorithm>
#include <cmath>

#include "spectrum/levelpower.h"

namespace {

// Empty bins are as low as can be.
float levelOf(const ScanFrame& frame, int bin)
{
    const float level = frame.levels[bin];
    return LevelPower::isLevel(level) ? level : LevelPower::lowest;
}

// Highest bins of all rises and falls of at least `prominence`.
QVector<int> prominentBins(const ScanFrame& frame, int begin, int end, float prominence)
{
    QVector<int> found;
    float lowest = levelOf(frame, begin);
    int highest = begin;
    bool rising = true;  // above the last valley by the prominence; before the first bin it is deep
    bool risen = false;  // such a valley was seen
    for (int bin = begin; bin < end; ++bin) {
        const float level = levelOf(frame, bin);
        if (!rising) {
            if (level < lowest)
                lowest = level;
            if (level - lowest >= prominence) {
                rising = risen = true;
                highest = bin;
            }
        } else if (level > levelOf(frame, highest)) {
            highest = bin;
        } else if (levelOf(frame, highest) - level >= prominence) {
            found.append(highest);
            rising = false;
            lowest = level;
        }
    }
    // The last one may lie so near to the end that it cannot fall.
    if (rising && risen)
        found.append(highest);
    return found;
}

// A stretch of the same level has its peak in the middle.
double middleOf(const ScanFrame& frame, int bin)
{
    int last = bin;
    while (last + 1 < frame.levels.size() && frame.levels[last + 1] == frame.levels[bin])
        ++last;
    return (bin + last) / 2.0;
}

ScanPeak interpolated(const ScanFrame& frame, int bin)
{
    ScanPeak peak;
    peak.bin = bin;
    peak.level = levelOf(frame, bin);
    double position = middleOf(frame, bin);
    const int last = static_cast<int>(frame.levels.size()) - 1;
    const bool lone = position == static_cast<double>(bin);
    if (lone && bin > 0 && bin < last && LevelPower::isLevel(frame.levels[bin - 1]) &&
        LevelPower::isLevel(frame.levels[bin + 1])) {
        const double before = static_cast<double>(frame.levels[bin - 1]);
        const double top = static_cast<double>(frame.levels[bin]);
        const double after = static_cast<double>(frame.levels[bin + 1]);
        const double curve = before - 2 * top + after;
        if (curve < 0) {
            const double offset = std::clamp((before - after) / curve / 2, -0.5, 0.5);
            position = bin + offset;
            peak.level = static_cast<float>(top - (before - after) * offset / 4);
        }
    }
    peak.frequency = frame.start + position * frame.step;
    return peak;
}

// A level that goes on rising outside of the searched stretch is no peak.
bool isTop(const ScanFrame& frame, int bin)
{
    const float level = levelOf(frame, bin);
    return (bin == 0 || levelOf(frame, bin - 1) <= level) &&
           (bin + 1 >= frame.levels.size() || levelOf(frame, bin + 1) <= level);
}

}  // namespace

QVector<ScanPeak> findPeaks(const ScanFrame& frame, const ScanRange& view, const PeakSearch& search)
{
    QVector<ScanPeak> result;
    if (!frame.isValid() || !view.isValid() || search.count < 1)
        return result;
    const double count = static_cast<double>(frame.levels.size());
    const int begin =
        static_cast<int>(std::clamp(std::ceil((view.start - frame.start) / frame.step), 0.0, count));
    const int end =
        static_cast<int>(std::clamp(std::floor((view.stop - frame.start) / frame.step) + 1, 0.0, count));
    if (begin >= end)
        return result;

    QVector<ScanPeak> candidates;
    // Without a least prominence every ripple of rounding would count.
    for (const int bin : prominentBins(frame, begin, end, std::max(search.prominence, 0.01f))) {
        if (isTop(frame, bin) && levelOf(frame, bin) >= search.minimumLevel)
            candidates.append(interpolated(frame, bin));
    }
    std::stable_sort(candidates.begin(), candidates.end(),
                     [](const ScanPeak& a, const ScanPeak& b) { return a.level > b.level; });
    for (const ScanPeak& candidate : candidates) {
        if (result.size() >= search.count)
            break;
        const bool apart = std::all_of(result.begin(), result.end(), [&](const ScanPeak& other) {
            return std::abs(other.frequency - candidate.frequency) >= search.minimumDistance;
        });
        if (apart)
            result.append(candidate);
    }
    return result;
}
