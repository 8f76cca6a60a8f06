#include <algorithm>
#include <cmath>
#include <limits>

#include "spectrum/spectrumpainter.h"

// Which part of the picture the pointer means.

namespace {

constexpr double reach = 5;        // pixels around a line
constexpr double markerReach = 9;  // around the middle of a marker's arrow
constexpr double markerHeight = 5;

// Near an edge of the passband, in pixels; a huge number when it is not. Outside of the band the
// full reach counts, inside at most a quarter of the band, so that a narrow one can be moved too.
double edgeDistance(double outward, double bandPixels)
{
    const double inside = std::min(reach, bandPixels / 4);
    if (outward > reach || outward < -inside)
        return std::numeric_limits<double>::infinity();
    return std::abs(outward);
}

struct Nearest
{
    ScanHandle handle = ScanHandle::None;
    double distance = std::numeric_limits<double>::infinity();

    void offer(ScanHandle other, double otherDistance)
    {
        if (otherDistance < distance) {
            handle = other;
            distance = otherDistance;
        }
    }
};

void offerChannel(const ScanChannel& channel, const ScanMapping& mapping, const QPointF& position,
                  Nearest& nearest)
{
    const double line = std::abs(position.x() - mapping.x(channel.frequency));
    if (line <= reach)
        nearest.offer(ScanHandle::Frequency, line);
    if (channel.bandwidth > 0) {
        const double left = mapping.x(channel.center - channel.bandwidth / 2);
        const double right = mapping.x(channel.center + channel.bandwidth / 2);
        // Of a band narrower than its line's reach the edges begin where the line is left.
        const double edge = right - left < 2 * reach ? -1 : 0;
        const bool besideLine = right - left >= 2 * reach || line > 2;
        if (besideLine) {
            nearest.offer(ScanHandle::LowerEdge, edgeDistance(left - position.x(), right - left) + edge);
            nearest.offer(ScanHandle::UpperEdge, edgeDistance(position.x() - right, right - left) + edge);
        }
        // Anywhere else in the band, behind all lines.
        if (position.x() >= left && position.x() <= right)
            nearest.offer(ScanHandle::Frequency, 2 * reach);
    }
    if (channel.hasThreshold && std::isfinite(channel.thresholdLine)) {
        const double threshold = std::abs(position.y() - mapping.y(channel.thresholdLine));
        if (threshold <= reach)
            nearest.offer(ScanHandle::Threshold, threshold);
    }
}

}  // namespace

ScanMapping SpectrumPainter::mapping(const ScanScene& scene, const QRect& rect)
{
    return {scene.view, static_cast<double>(scene.levelMinimum), static_cast<double>(scene.levelMaximum),
            QRectF(rect)};
}

int SpectrumPainter::markerAt(const ScanScene& scene, const QRect& rect, const QPointF& position)
{
    const ScanMapping map = mapping(scene, rect);
    if (!map.isValid() || !QRectF(rect).contains(position))
        return -1;
    int found = -1;
    double best = markerReach;
    for (int i = 0; i < scene.markers.size(); ++i) {
        const ScanMarker& marker = scene.markers[i];
        if (!scene.view.contains(marker.frequency))
            continue;
        const double tip = std::isfinite(marker.level) ? std::clamp(map.y(static_cast<double>(marker.level)),
                                                                    rect.top() + 2.0 * markerHeight,
                                                                    rect.top() + double(rect.height()))
                                                       : rect.top() + double(rect.height());
        const double distance =
            std::hypot(position.x() - map.x(marker.frequency), position.y() - (tip - markerHeight));
        // Of two in one place the later lies on top.
        if (distance <= best) {
            best = distance;
            found = i;
        }
    }
    return found;
}

ScanHandle SpectrumPainter::hitTest(const ScanScene& scene, const QRect& rect, const QPointF& position)
{
    const ScanMapping map = mapping(scene, rect);
    if (!map.isValid() || !QRectF(rect).contains(position))
        return ScanHandle::None;
    if (markerAt(scene, rect, position) >= 0)
        return ScanHandle::Marker;
    Nearest nearest;
    if (scene.channel.visible)
        offerChannel(scene.channel, map, position, nearest);
    return nearest.handle;
}
