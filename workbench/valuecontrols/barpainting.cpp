#include <QPaintDevice>
#include <QPainter>
#include <cmath>

#include "valuecontrols/barpicture.h"
#include "valuecontrols/controllook.h"

bool BarPicture::operator==(const BarPicture& other) const
{
    return usable == other.usable && missing == other.missing && level == other.level &&
           lowest == other.lowest && highest == other.highest && beyond == other.beyond && text == other.text;
}

namespace BarPainting {

namespace {

const int frameWidth = 1;
const int longTick = 5;
const int shortTick = 3;
const int arrowWidth = 6;
const int textMargin = arrowWidth + 2;  // the arrow beyond the scale stays beside the number

struct BarColors
{
    QColor ground;
    QColor fill;
    QColor onGround;
    QColor onFill;
};

// A fill that stands out from the ground by lightness alone, whatever the palette's accent is.
QColor FillColor(const QPalette& palette)
{
    QColor fill = palette.color(QPalette::Highlight);
    const QColor ground = palette.color(QPalette::Base);
    const bool dark = ground.lightness() < 128;
    for (int round = 0; round < 6 && ControlLook::Contrast(fill, ground) < 3; ++round)
        fill = dark ? fill.lighter(120) : fill.darker(120);
    return fill;
}

void PaintTicks(QPainter& painter, const QRect& area, const BarScale& scale, const QColor& color)
{
    if (scale.parts < 2)
        return;
    const int spaces = int(scale.parts) - 1;
    const int longEvery = scale.marks > 1 ? qMax(1, int(std::lround(double(spaces) / (scale.marks - 1)))) : 0;
    painter.setPen(Qt::NoPen);
    painter.setBrush(color);
    for (int tick = 1; tick < spaces; ++tick) {
        const int length = longEvery && tick % longEvery == 0 ? longTick : shortTick;
        const qreal x = area.left() + qreal(area.width()) * tick / spaces;
        painter.drawRect(QRectF(std::floor(x), area.bottom() + 1 - length, 1, length));
    }
}

// The highest points down from the top, the lowest up from the bottom: told apart without colour.
// Only a hair line crosses the middle, where the number stands.
void PaintMark(QPainter& painter, const QRect& area, qreal x, bool highest, const BarColors& colors,
               qreal filledTo)
{
    const qreal half = 4;
    const qreal tip = 5;
    const qreal middle = qBound(qreal(area.left()) + 1, x, qreal(area.right()));
    const qreal edge = highest ? area.top() : area.bottom() + 1;
    const QPointF points[3] = {
        {middle - half, edge}, {middle + half, edge}, {middle, highest ? edge + tip : edge - tip}};
    QColor hair = middle <= filledTo ? colors.onFill : colors.onGround;
    hair.setAlpha(90);
    painter.setPen(Qt::NoPen);
    painter.setBrush(hair);
    painter.drawRect(QRectF(middle - 0.5, area.top(), 1, area.height()));
    painter.setPen(QPen(colors.ground, 1));
    painter.setBrush(colors.onGround);
    painter.drawPolygon(points, 3);
}

void PaintArrow(QPainter& painter, const QRect& area, bool right, const QColor& color)
{
    const qreal middle = area.center().y() + 0.5;
    const qreal tip = right ? area.right() : area.left() + 1;
    const qreal back = right ? tip - arrowWidth : tip + arrowWidth;
    const QPointF points[3] = {{tip, middle}, {back, middle - 5}, {back, middle + 5}};
    painter.setPen(Qt::NoPen);
    painter.setBrush(color);
    painter.drawPolygon(points, 3);
}

// At the right end, which a level reaches only when it is unusually high: elsewhere the bar's own end
// and its marks would run through the digits.
void PaintText(QPainter& painter, const QRect& area, const QRectF& part, const QString& text,
               const QColor& color)
{
    painter.save();
    painter.setClipRect(part);
    painter.setPen(color);
    const QRect place = area.adjusted(textMargin, 0, -textMargin, 0).translated(0, -1);  // clear of the ticks
    painter.drawText(place, Qt::AlignRight | Qt::AlignVCenter, text);
    painter.restore();
}

}  // namespace

QRect ScaleRect(const QRect& widget)
{
    return widget.adjusted(frameWidth, frameWidth, -frameWidth, -frameWidth);
}

void Paint(QPainter& painter, const QRect& widget, const BarPicture& picture, const BarScale& scale,
           const QPalette& palette)
{
    const qreal ratio = painter.device() ? painter.device()->devicePixelRatioF() : 1;
    const QRect area = ScaleRect(widget);
    BarColors colors;
    colors.ground = palette.color(QPalette::Base);
    colors.fill = picture.usable ? FillColor(palette) : palette.color(QPalette::Mid);
    colors.onGround = palette.color(QPalette::Text);
    colors.onFill = ControlLook::ReadableOn(colors.fill);

    painter.fillRect(widget, palette.color(QPalette::Mid));
    painter.fillRect(area, colors.ground);
    const QRectF filled(area.left(), area.top(), picture.missing ? 0 : picture.level / ratio, area.height());
    const QRectF empty(filled.right(), area.top(), area.right() + 1 - filled.right(), area.height());
    painter.fillRect(filled, colors.fill);

    QColor tick = colors.onGround;
    tick.setAlpha(110);
    PaintTicks(painter, area, scale, tick);

    painter.setRenderHint(QPainter::Antialiasing);
    if (picture.lowest >= 0)
        PaintMark(painter, area, area.left() + picture.lowest / ratio, false, colors, filled.right());
    if (picture.highest >= 0)
        PaintMark(painter, area, area.left() + picture.highest / ratio, true, colors, filled.right());
    if (picture.beyond == BarPicture::Above)
        PaintArrow(painter, area, true, colors.onFill);
    else if (picture.beyond == BarPicture::Below)
        PaintArrow(painter, area, false, colors.onGround);
    if (!picture.text.isEmpty()) {
        PaintText(painter, area, filled, picture.text, colors.onFill);
        PaintText(painter, area, empty, picture.text, colors.onGround);
    }
}

QRect Difference(const QRect& widget, const BarPicture& before, const BarPicture& after, double pixelRatio)
{
    if (before.usable != after.usable || before.missing != after.missing || before.beyond != after.beyond ||
        before.text != after.text || before.lowest != after.lowest || before.highest != after.highest)
        return widget;
    const QRect area = ScaleRect(widget);
    const int left = int(std::floor(qMin(before.level, after.level) / pixelRatio)) - 1;
    const int right = int(std::ceil(qMax(before.level, after.level) / pixelRatio)) + 1;
    return QRect(area.left() + left, area.top(), right - left + 1, area.height()) & area;
}

}  // namespace BarPainting
