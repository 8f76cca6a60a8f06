#include "spectrum/axispainter.h"

#include <QFontMetricsF>
#include <QPainter>
#include <algorithm>
#include <cmath>

#include "spectrum/devicespace.h"
#include "spectrum/scanmapping.h"
#include "spectrum/scantheme.h"

namespace {

constexpr double majorLength = 5;  // of ticks, in pixels
constexpr double minorLength = 3;
constexpr double gap = 2;            // between tick and label
constexpr double leastSpacing = 12;  // between two labels of a frequency axis
constexpr double goodSpacing = 2.6;  // lines of text from label to label of a level axis

// The widest label of these ticks.
double widestLabel(const AxisTicks& ticks, const QFontMetricsF& metrics)
{
    double widest = 0;
    for (const AxisTick& tick : ticks.ticks)
        widest = std::max(widest, metrics.horizontalAdvance(tick.label));
    return widest;
}

// Pixels between two neighbouring labels; huge where there are less than two.
double labelDistance(const AxisTicks& ticks, double range, double pixels)
{
    double before = std::nan("");
    for (const AxisTick& tick : ticks.ticks) {
        if (!tick.major)
            continue;
        if (!std::isnan(before))
            return (tick.value - before) / range * pixels;
        before = tick.value;
    }
    return 1e9;
}

struct Pens
{
    QColor line;
    QColor text;

    explicit Pens(const QPalette& palette)
    {
        const QColor window = palette.color(QPalette::Window);
        text = palette.color(QPalette::WindowText);
        line = ScanTheme::mixed(window, text, 0.6);
    }
};

int clampedPixel(double position, int first, int last)
{
    return static_cast<int>(std::clamp(std::floor(position), double(first), double(last)));
}

}  // namespace

AxisTicks AxisPainter::frequencyTicks(const ScanRange& view, int width, const QFont& font)
{
    const QString unit = QStringLiteral("Hz");
    if (!view.isValid() || width <= 0)
        return AxisTicks::between(0, 0, 0, unit, true);
    const QFontMetricsF metrics(font);
    const double shortest = metrics.horizontalAdvance(QStringLiteral("0.0")) + leastSpacing;
    // Finer steps have longer labels: from many to few until they have room.
    for (int wanted = std::max(1, static_cast<int>(width / shortest)); wanted >= 1; --wanted) {
        AxisTicks ticks = AxisTicks::between(view.start, view.stop, wanted, unit, true);
        if (labelDistance(ticks, view.width(), width) >= widestLabel(ticks, metrics) + leastSpacing)
            return ticks;
    }
    return AxisTicks::between(view.start, view.stop, 1, unit, true);
}

AxisTicks AxisPainter::levelTicks(float minimum, float maximum, int height, const QFont& font, int wanted)
{
    const QString unit = QStringLiteral("dBµV");
    const QFontMetricsF metrics(font);
    const int room = static_cast<int>(height / (metrics.height() * 1.2));
    const int good = static_cast<int>(height / (metrics.height() * goodSpacing));
    const int most = wanted > 0 ? std::min(wanted, room) : std::max(good, std::min(room, 2));
    return AxisTicks::between(static_cast<double>(minimum), static_cast<double>(maximum), most, unit, false);
}

int AxisPainter::frequencyAxisHeight(const QFont& font)
{
    return static_cast<int>(std::ceil(majorLength + gap + QFontMetricsF(font).height() + 1));
}

int AxisPainter::levelAxisWidth(const QFont& font)
{
    const QFontMetricsF metrics(font);
    const double label = std::max(metrics.horizontalAdvance(QStringLiteral("-100")),
                                  metrics.horizontalAdvance(QStringLiteral("dBµV")));
    return static_cast<int>(std::ceil(label + gap + majorLength + 3));
}

void AxisPainter::paintFrequency(QPainter& painter, const QRect& rect, const ScanRange& view,
                                 const QPalette& palette, const QFont& font)
{
    if (rect.isEmpty())
        return;
    const AxisTicks ticks = frequencyTicks(view, rect.width(), font);
    const Pens pens(palette);
    const DeviceSpace device(painter);
    const QRect area = device.pixels(rect);
    const QFont deviceFont = device.font(font);
    const QFontMetricsF metrics(deviceFont);
    painter.setClipRect(area, Qt::IntersectClip);
    painter.setFont(deviceFont);
    painter.fillRect(area.left(), area.top(), area.width(), 1, pens.line);
    if (!view.isValid())
        return;

    const ScanMapping mapping{view, 0, 1, QRectF(area)};
    const double baseline = area.top() + device.length(majorLength + gap) + metrics.ascent();
    const double unitLeft = area.right() + 1 - metrics.horizontalAdvance(ticks.unit);
    double taken = area.left() - 1;  // up to here the line has text
    for (const AxisTick& tick : ticks.ticks) {
        const int x = clampedPixel(mapping.x(tick.value), area.left(), area.right());
        const int length = device.length(tick.major ? majorLength : minorLength);
        painter.fillRect(x, area.top(), 1, length, pens.line);
        if (!tick.major)
            continue;
        const double width = metrics.horizontalAdvance(tick.label);
        // At the ends a label moves inwards rather than being cut.
        const double left = std::max<double>(x - width / 2, area.left());
        if (left <= taken || left + width + device.length(leastSpacing) / 2.0 > unitLeft)
            continue;
        painter.setPen(pens.text);
        painter.drawText(QPointF(std::round(left), std::round(baseline)), tick.label);
        taken = left + width + device.length(leastSpacing) / 4.0;
    }
    if (unitLeft > taken && unitLeft >= area.left()) {
        painter.setPen(pens.line);
        painter.drawText(QPointF(std::floor(unitLeft), std::round(baseline)), ticks.unit);
    }
}

void AxisPainter::paintLevel(QPainter& painter, const QRect& rect, float minimum, float maximum,
                             const QPalette& palette, const QFont& font, int wanted)
{
    if (rect.isEmpty())
        return;
    const AxisTicks ticks = levelTicks(minimum, maximum, rect.height(), font, wanted);
    const Pens pens(palette);
    const DeviceSpace device(painter);
    const QRect area = device.pixels(rect);
    const QFont deviceFont = device.font(font);
    const QFontMetricsF metrics(deviceFont);
    painter.setClipRect(area, Qt::IntersectClip);
    painter.setFont(deviceFont);
    painter.fillRect(area.right(), area.top(), 1, area.height(), pens.line);

    const double textRight = area.right() - device.length(majorLength + gap);
    const double unitWidth = metrics.horizontalAdvance(ticks.unit);
    const double line = metrics.ascent() + metrics.descent();
    painter.setPen(pens.line);
    painter.drawText(QPointF(std::round(textRight - unitWidth), std::round(area.top() + metrics.ascent())),
                     ticks.unit);
    const double highest = area.top() + line + metrics.descent();  // below the unit
    if (!(maximum > minimum))
        return;
    const ScanMapping mapping{{0, 1}, double(minimum), double(maximum), QRectF(area)};
    for (const AxisTick& tick : ticks.ticks) {
        const int y = clampedPixel(mapping.y(tick.value), area.top(), area.bottom());
        const int length = device.length(tick.major ? majorLength : minorLength);
        painter.fillRect(area.right() + 1 - length, y, length, 1, pens.line);
        if (!tick.major)
            continue;
        const double top = std::min(y - line / 2, area.bottom() + 1 - line);
        if (top < highest)
            continue;
        painter.setPen(pens.text);
        painter.drawText(QPointF(std::round(textRight - metrics.horizontalAdvance(tick.label)),
                                 std::round(top + metrics.ascent())),
                         tick.label);
    }
}
