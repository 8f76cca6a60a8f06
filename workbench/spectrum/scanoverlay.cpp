#include "spectrum/scanoverlay.h"

#include <QCoreApplication>
#include <QFontMetricsF>
#include <QPainter>
#include <QPolygonF>
#include <algorithm>
#include <cmath>

#include "spectrum/devicespace.h"
#include "spectrum/scantext.h"

namespace {

constexpr double margin = 3;       // inside of text boxes, in the painter's pixels
constexpr double arrowLength = 7;  // of markers and of what lies outside of the view
constexpr double hoverWidth = 3;   // of a line under the pointer

}  // namespace

ScanOverlay::ScanOverlay(QPainter& painter, const DeviceSpace& device, const ScanScene& scene,
                         const ScanMapping& mapping, const ScanTheme& theme)
    : m_painter(painter),
      m_device(device),
      m_scene(scene),
      m_mapping(mapping),
      m_theme(theme),
      m_area(mapping.rect.toRect())
{}

void ScanOverlay::paint()
{
    paintChannel();
    if (m_scene.channel.visible && m_scene.channel.hasThreshold)
        paintThreshold();
    paintMarkers();
    if (!m_scene.noticeText.isEmpty())
        paintNotice();
    if (m_scene.cursorVisible)
        paintCursor();
}

QSizeF ScanOverlay::boxSize(const QString& text) const
{
    const QFontMetricsF metrics(m_painter.font());
    return {metrics.horizontalAdvance(text) + 2 * m_device.length(margin), metrics.height()};
}

QRectF ScanOverlay::paintText(QPointF topLeft, const QString& text, const QColor& color)
{
    const QFontMetricsF metrics(m_painter.font());
    QRectF box(topLeft, boxSize(text));
    box.moveLeft(std::max<double>(std::min(box.left(), m_area.right() + 1 - box.width()), m_area.left()));
    box.moveTop(std::max<double>(std::min(box.top(), m_area.bottom() + 1 - box.height()), m_area.top()));
    box.moveTo(std::round(box.left()), std::round(box.top()));
    m_painter.fillRect(box, m_theme.box);
    m_painter.setPen(color);
    m_painter.drawText(
        QPointF(box.left() + m_device.length(margin), box.top() + std::round(metrics.ascent())), text);
    m_taken.append(box);
    return box;
}

// Moved up or down until it lies on no other text; each step may meet another one.
QRectF ScanOverlay::movedClear(QRectF box, bool up) const
{
    for (int steps = 0; steps < m_taken.size(); ++steps) {
        for (const QRectF& other : m_taken) {
            if (!box.intersects(other))
                continue;
            if (up)
                box.moveBottom(other.top() - 1);
            else
                box.moveTop(other.bottom() + 1);
        }
    }
    return box;
}

void ScanOverlay::verticalLine(double frequency, const QColor& color, int width, bool dashed)
{
    const double x = std::floor(m_mapping.x(frequency));
    if (!(x >= m_area.left() && x <= m_area.right() + 1))
        return;
    const int left = std::min(static_cast<int>(x), m_area.right()) - width / 2;
    const int dash = dashed ? m_device.length(3) : m_area.height();
    for (int y = m_area.top(); y <= m_area.bottom(); y += 2 * dash)
        m_painter.fillRect(left, y, width, std::min(dash, m_area.bottom() + 1 - y), color);
}

void ScanOverlay::horizontalLine(double y, const QColor& color, int width, bool dashed)
{
    const int top = static_cast<int>(std::floor(y)) - width / 2;
    const int dash = dashed ? m_device.length(6) : m_area.width();
    const int step = dashed ? dash + m_device.length(3) : dash;
    for (int x = m_area.left(); x <= m_area.right(); x += step)
        m_painter.fillRect(x, top, std::min(dash, m_area.right() + 1 - x), width, color);
}

void ScanOverlay::arrow(QPointF tip, QPointF direction, const QColor& color)
{
    const double length = m_device.length(arrowLength);
    const QPointF back = tip - direction * length;
    const QPointF side = QPointF(direction.y(), -direction.x()) * length * 0.6;
    m_painter.setRenderHint(QPainter::Antialiasing, true);
    m_painter.setPen(Qt::NoPen);
    m_painter.setBrush(color);
    m_painter.drawPolygon(QPolygonF({tip, back + side, back - side}));
    m_painter.setRenderHint(QPainter::Antialiasing, false);
}

void ScanOverlay::paintChannel()
{
    const ScanChannel& channel = m_scene.channel;
    if (!channel.visible || !std::isfinite(channel.frequency))
        return;
    const QColor color = m_scene.stale ? m_theme.threshold : channel.color;
    // On its own colour's band the line must still stand out.
    const QColor strong = ScanTheme::mixed(color, m_theme.text, 0.45);
    const int hovered = m_device.length(hoverWidth);
    const auto width = [&](ScanHandle handle) { return m_scene.hovered == handle ? hovered : 1; };
    if (channel.bandwidth > 0) {
        verticalLine(channel.center - channel.bandwidth / 2, color, width(ScanHandle::LowerEdge));
        verticalLine(channel.center + channel.bandwidth / 2, color, width(ScanHandle::UpperEdge));
    }
    verticalLine(channel.frequency, strong, width(ScanHandle::Frequency));

    const double x = m_mapping.x(channel.frequency);
    const double middle = m_area.top() + boxSize(channel.text).height() / 2;
    double left = x + m_device.length(2);
    if (x < m_area.left()) {
        arrow({double(m_area.left() + 1), middle}, {-1, 0}, strong);
        left = m_area.left() + m_device.length(arrowLength + 2);
    } else if (x > m_area.right() + 1) {
        arrow({double(m_area.right()), middle}, {1, 0}, strong);
        left = m_area.right() - m_device.length(arrowLength + 2) - boxSize(channel.text).width();
    } else if (left + boxSize(channel.text).width() > m_area.right()) {
        left = x - m_device.length(2) - boxSize(channel.text).width();
    }
    if (!channel.text.isEmpty())
        paintText({left, double(m_area.top())}, channel.text, strong);
}

void ScanOverlay::paintThreshold()
{
    const ScanChannel& channel = m_scene.channel;
    if (!std::isfinite(channel.thresholdLine))
        return;
    const bool hovered = m_scene.hovered == ScanHandle::Threshold;
    const QString set = QCoreApplication::translate("SpectrumPainter", "Squelch %1")
                            .arg(ScanText::level(channel.thresholdLevel));
    // The line's own level is that of noise in one bin, which is less than that in the channel.
    QString line = ScanText::level(channel.thresholdLine);
    if (m_scene.trace && m_scene.trace->resolutionBandwidth > 0)
        line += QStringLiteral(" / ") + ScanText::frequency(m_scene.trace->resolutionBandwidth,
                                                            m_scene.trace->resolutionBandwidth / 100);
    const double y = m_mapping.y(channel.thresholdLine);
    const double right = m_area.right() + 1 - m_device.length(4);
    const QSizeF upper = boxSize(set);
    const QSizeF lower = boxSize(line);
    const double half = m_device.length(1);
    double top = y - half - upper.height();
    if (y < m_area.top() || y > m_area.bottom() + 1) {
        // Out of sight: both labels at the end where it lies, and an arrow to it.
        const bool above = y < m_area.top();
        top = above ? m_area.top() + upper.height() : m_area.bottom() + 1 - upper.height() - lower.height();
        const double tip = above ? m_area.top() + upper.height() : m_area.bottom() + 1;
        arrow({right - std::max(upper.width(), lower.width()) - m_device.length(arrowLength), tip},
              {0.0, above ? -1.0 : 1.0}, m_theme.threshold);
        paintText({right - upper.width(), top}, set, m_theme.threshold);
        paintText({right - lower.width(), top + upper.height()}, line, m_theme.threshold);
        return;
    }
    horizontalLine(std::min(y, double(m_area.bottom())), m_theme.threshold,
                   hovered ? m_device.length(hoverWidth) : 1, true);
    // Near an end of the picture both go to the side where there is room.
    double below = y + half + 1;
    if (top < m_area.top()) {
        top = below;
        below += upper.height();
    } else if (below + lower.height() > m_area.bottom() + 1) {
        below = top;
        top -= lower.height();
    }
    paintText({right - upper.width(), top}, set, m_theme.threshold);
    paintText({right - lower.width(), below}, line, m_theme.threshold);
}

void ScanOverlay::paintMarkers()
{
    for (int i = 0; i < m_scene.markers.size(); ++i)
        paintMarker(m_scene.markers[i], i == m_scene.selectedMarker);
}

void ScanOverlay::paintMarker(const ScanMarker& marker, bool selected)
{
    const double x = m_mapping.x(marker.frequency);
    if (!(x >= m_area.left() && x <= m_area.right() + 1))
        return;
    const QColor color = selected ? m_theme.focus : m_theme.marker;
    const double arrowRoom = m_device.length(arrowLength);
    const double bottom = m_area.bottom() + 1;
    const double y = std::isfinite(marker.level) ? std::clamp(m_mapping.y(static_cast<double>(marker.level)),
                                                              m_area.top() + arrowRoom, bottom)
                                                 : bottom;
    if (marker.delta)
        verticalLine(marker.frequency, ScanTheme::mixed(m_theme.background, color, 0.6), 1, true);
    arrow({x, y}, {0, 1}, color);
    if (marker.text.isEmpty())
        return;
    const QSizeF size = boxSize(marker.text);
    const QRectF box(QPointF(x - size.width() / 2, y - arrowRoom - size.height()), size);
    paintText(movedClear(box, true).topLeft(), marker.text, color);
}

void ScanOverlay::paintCursor()
{
    if (!m_scene.view.contains(m_scene.cursorFrequency))
        return;
    verticalLine(m_scene.cursorFrequency, m_theme.cursor, 1);
    float level = m_scene.cursorLevel;
    if (!std::isfinite(level) && m_scene.trace)
        level = ScanText::levelAt(*m_scene.trace, m_scene.cursorFrequency);
    const double y = m_mapping.y(static_cast<double>(level));
    if (y >= m_area.top() && y <= m_area.bottom())
        horizontalLine(y, m_theme.cursor, 1);
    if (m_scene.cursorText.isEmpty())
        return;
    const QSizeF size = boxSize(m_scene.cursorText);
    const double x = m_mapping.x(m_scene.cursorFrequency);
    const double space = m_device.length(4);
    const bool right = x + space + size.width() <= m_area.right() + 1;
    // The first line belongs to the channel.
    const QRectF box({right ? x + space : x - space - size.width(), m_area.top() + size.height() * 1.1},
                     size);
    paintText(movedClear(box, false).topLeft(), m_scene.cursorText, m_theme.text);
}

void ScanOverlay::paintNotice()
{
    const QSizeF size = boxSize(m_scene.noticeText);
    paintText({double(m_area.left() + m_device.length(2)), m_area.bottom() + 1 - size.height()},
              m_scene.noticeText, m_theme.text);
}

void ScanOverlay::paintMessage(QPainter& painter, const DeviceSpace& device, const QRect& area,
                               const QString& message, const ScanTheme& theme)
{
    const int space = device.length(8);
    const QRect room = area.adjusted(2 * space, 2 * space, -2 * space, -2 * space);
    if (room.width() < 4 * space || room.height() < space)
        return;
    const int flags = Qt::AlignCenter | Qt::TextWordWrap;
    const QRect text = painter.boundingRect(room, flags, message);
    const QRect box = text.adjusted(-space, -space / 2, space, space / 2) & area;
    painter.fillRect(box, theme.text);
    painter.fillRect(box.adjusted(1, 1, -1, -1), theme.background);
    painter.setPen(theme.text);
    painter.drawText(text & room, flags, message);
}
