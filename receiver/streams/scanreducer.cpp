#include "receiver/streams/scanreducer.h"

#include <algorithm>
#include <cmath>

namespace Receiver {

namespace {

constexpr float log2Ten = 3.32192809489f;

float powerOf(float decibels)
{
    return std::exp2(decibels * (log2Ten / 10));
}

float decibelsOf(float power)
{
    return std::log2(power) * (10 / log2Ten);
}

}  // namespace

const std::vector<float>& ScanReducer::averaged(const PanoramaFrame& frame, const std::vector<float>& levels)
{
    if (!(m_request.averagingSeconds > 0))
        return levels;
    const bool goesOn = m_powers.size() == levels.size() && m_start == frame.start && m_step == frame.step &&
                        frame.time > m_time;
    const double seconds = double(frame.time - m_time) * 1e-6;
    const auto newer = goesOn ? float(-std::expm1(-seconds / m_request.averagingSeconds)) : 1.0f;
    m_start = frame.start;
    m_step = frame.step;
    m_time = frame.time;
    m_powers.resize(levels.size());
    m_levels.resize(levels.size());
    for (std::size_t i = 0; i < levels.size(); ++i) {
        const float power = powerOf(levels[i]);
        m_powers[i] = goesOn ? m_powers[i] + newer * (power - m_powers[i]) : power;
        m_levels[i] = decibelsOf(m_powers[i]);
    }
    return m_levels;
}

Link::ScanData ScanReducer::reduce(const PanoramaFrame& frame)
{
    const bool maximum = m_request.detector == Link::StreamDetector::Maximum;
    const std::vector<float>& levels = averaged(frame, maximum ? frame.maximum : frame.mean);
    Link::ScanData data;
    data.time = frame.time;
    data.start = frame.start;
    data.step = frame.step;
    data.resolutionBandwidth = frame.resolutionBandwidth;
    const std::size_t points = std::max<std::size_t>(1, m_request.points);
    const std::size_t group = (levels.size() + points - 1) / points;
    if (group <= 1) {
        data.levels = Link::packLevels(levels.data(), int(levels.size()));
        return data;
    }
    std::vector<float> highest;
    highest.reserve(points);
    for (std::size_t first = 0; first < levels.size(); first += group) {
        const auto begin = levels.begin() + std::ptrdiff_t(first);
        const auto count = std::ptrdiff_t(std::min(group, levels.size() - first));
        highest.push_back(*std::max_element(begin, begin + count));
    }
    data.step = frame.step * double(group);
    data.start = frame.start + frame.step * double(group - 1) / 2;
    data.levels = Link::packLevels(highest.data(), int(highest.size()));
    return data;
}

}  // namespace Receiver
