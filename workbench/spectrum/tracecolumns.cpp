#include "spectrum/tracecolumns.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "spectrum/levelpower.h"

namespace {

constexpr float nothing = std::numeric_limits<float>::quiet_NaN();

// A column may lie this much of a bin beyond the middle of the outermost one: bins have a width.
constexpr double reach = 0.5;

float interpolated(const ScanFrame& frame, double position)
{
    const int last = static_cast<int>(frame.levels.size()) - 1;
    if (position < -reach || position > last + reach)
        return nothing;
    const double inside = std::clamp(position, 0.0, static_cast<double>(last));
    const int lower = std::min(static_cast<int>(inside), std::max(0, last - 1));
    const int upper = std::min(lower + 1, last);
    const float share = static_cast<float>(inside - lower);
    return frame.levels[lower] * (1 - share) + frame.levels[upper] * share;
}

}  // namespace

void TraceColumns::fill(const ScanFrame& frame, const ScanRange& view, int width)
{
    maximum.resize(std::max(width, 0));
    mean.resize(std::max(width, 0));
    if (width <= 0)
        return;
    if (frame.isEmpty() || !(frame.step > 0) || !view.isValid()) {
        maximum.fill(nothing);
        mean.fill(nothing);
        return;
    }

    const double binsPerColumn = view.width() / width / frame.step;
    const double first = (view.start - frame.start) / frame.step;  // bin at the left edge
    const int count = static_cast<int>(frame.levels.size());
    const float* levels = frame.levels.constData();
    // A bin belongs to the column in which its middle lies; without one, columns interpolate.
    double edge = first;
    for (int x = 0; x < width; ++x) {
        const double next = first + (x + 1) * binsPerColumn;
        const int begin = static_cast<int>(std::clamp(std::ceil(edge), 0.0, static_cast<double>(count)));
        const int end = static_cast<int>(std::clamp(std::ceil(next), 0.0, static_cast<double>(count)));
        if (end > begin) {
            float highest = levels[begin];
            float sum = 0;
            for (int i = begin; i < end; ++i) {
                highest = std::max(highest, levels[i]);
                sum += LevelPower::power(levels[i]);
            }
            maximum[x] = highest;
            mean[x] = end - begin == 1
                          ? highest
                          : std::min(highest, LevelPower::level(sum / static_cast<float>(end - begin)));
        } else {
            maximum[x] = mean[x] = interpolated(frame, (edge + next) / 2);
        }
        edge = next;
    }
}
