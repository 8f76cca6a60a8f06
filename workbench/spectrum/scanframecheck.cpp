#include "spectrum/scanframecheck.h"

#include <QCoreApplication>
#include <cmath>
#include <limits>

#include "link/limits.h"

namespace {

constexpr int mostLevels = Link::Limits::scanPoints;
constexpr double highestFrequency = 1e13;  // Hz; light begins there
constexpr int levelBytes = 4;

QString text(const char* source)
{
    return QCoreApplication::translate("ScanFrameCheck", source);
}

QString shapeProblem(const Link::ScanData& data)
{
    if (data.levels.isEmpty() || data.levels.size() % levelBytes != 0)
        return text("its levels are %1 bytes, not a multiple of 4").arg(data.levels.size());
    if (data.levels.size() / levelBytes > mostLevels)
        return text("it has %1 levels, %2 are allowed").arg(data.levels.size() / levelBytes).arg(mostLevels);
    if (!std::isfinite(data.step) || !(data.step > 0))
        return text("its step from bin to bin is %1 Hz, not above 0").arg(data.step);
    const double stop = data.start + data.step * double(data.levels.size() / levelBytes - 1);
    if (!std::isfinite(data.start) || std::fabs(data.start) > highestFrequency ||
        std::fabs(stop) > highestFrequency)
        return text("it begins at %1 Hz and ends at %2 Hz").arg(data.start).arg(stop);
    // Steps that are lost beside the frequency would put several bins at one place.
    if (data.start + data.step == data.start || stop - data.step == stop)
        return text("its step of %1 Hz is too fine for its frequency").arg(data.step);
    if (!std::isfinite(data.resolutionBandwidth) || !(data.resolutionBandwidth > 0))
        return text("its resolution bandwidth is %1 Hz, not above 0").arg(data.resolutionBandwidth);
    return QString();
}

}  // namespace

bool ScanFrameCheck::isBack(const Link::ScanData& data, QString* problem)
{
    if (!m_any)
        return false;
    if (data.sequence <= m_sequence) {
        *problem = text("it is number %1 after number %2").arg(data.sequence).arg(m_sequence);
        return true;
    }
    if (data.time >= m_time) {
        m_back = 0;
        return false;
    }
    if (++m_back >= clockSetBack) {
        m_back = 0;
        return false;
    }
    *problem = text("its time goes back by %1 s").arg(double(m_time - data.time) / 1e6, 0, 'f', 3);
    return true;
}

bool ScanFrameCheck::take(const Link::ScanData& data, ScanFrame* frame, QString* problem)
{
    *problem = shapeProblem(data);
    if (!problem->isEmpty() || isBack(data, problem))
        return false;
    m_any = true;
    m_sequence = data.sequence;
    m_time = data.time;
    frame->sequence = data.sequence;
    frame->time = data.time;
    frame->start = data.start;
    frame->step = data.step;
    frame->resolutionBandwidth = data.resolutionBandwidth;
    frame->levels = Link::unpackLevels(data.levels);
    for (float& level : frame->levels) {
        if (!std::isfinite(level)) {
            level = std::numeric_limits<float>::quiet_NaN();
            ++m_emptied;
        }
    }
    return true;
}
