#include "spectrum/spectrumpainter.h"

#include <QImage>
#include <QPainter>
#include <algorithm>
#include <cmath>

#include "spectrum/axispainter.h"
#include "spectrum/devicespace.h"
#include "spectrum/scanoverlay.h"
#include "spectrum/scantheme.h"
#include "spectrum/tracecolumns.h"
#include "spectrum/tracepicture.h"

namespace {

// Everything that what lies below the traces depends on.
struct Ground
{
    QRect rect;  // the painter's pixels
    QSize size;  // device pixels
    ScanRange view;
    float levelMinimum = 0;
    float levelMaximum = 0;
    int levelLabels = 0;
    bool filled = false;
    bool stale = false;
    QRgb colors[3] = {};
    QString font;
    ScanRange band;  // not valid: none
    QRgb bandColor = 0;

    bool operator==(const Ground& other) const
    {
        return rect == other.rect && size == other.size && view == other.view &&
               levelMinimum == other.levelMinimum && levelMaximum == other.levelMaximum &&
               levelLabels == other.levelLabels && filled == other.filled && stale == other.stale &&
               std::equal(colors, colors + 3, other.colors) && font == other.font && band == other.band &&
               bandColor == other.bandColor;
    }
};

constexpr double bandShare = 0.24;  // of the passband's colour over the background
constexpr double bandGridShare = 0.24;

// The columns of a stretch of the axis, at least one; empty when it lies outside of the picture.
QRect bandColumns(const ScanRange& band, const ScanMapping& mapping)
{
    const QRect area = mapping.rect.toRect();
    const double left = std::floor(mapping.x(band.start));
    const double right = std::max(left + 1, std::floor(mapping.x(band.stop)));
    if (!(right > area.left()) || !(left <= area.right()))
        return {};
    const int first = static_cast<int>(std::max(left, double(area.left())));
    const int behind = static_cast<int>(std::min(right, double(area.right() + 1)));
    return {first, area.top(), behind - first, area.height()};
}

}  // namespace

struct SpectrumPainter::Private
{
    void paintGround(const Ground& wanted, const ScanTheme& theme, const QFont& font);
    void paintGrid(QPainter& painter, const QFont& font, const ScanMapping& mapping,
                   const QColor& color) const;
    void paintTraces(const ScanScene& scene, const ScanMapping& mapping, const ScanTheme& theme,
                     int thickness);

    bool known = false;  // `ground` describes the images
    Ground ground;
    QImage plain;
    QImage tinted;
    TraceColumns columns;
    TracePicture picture;
    int staticPaints = 0;
};

void SpectrumPainter::Private::paintGrid(QPainter& painter, const QFont& font, const ScanMapping& mapping,
                                         const QColor& color) const
{
    const QRect area = mapping.rect.toRect();
    for (const AxisTick& tick : AxisPainter::frequencyTicks(ground.view, ground.rect.width(), font).ticks) {
        const int x = static_cast<int>(std::floor(mapping.x(tick.value)));
        if (tick.major && x >= area.left() && x <= area.right())
            painter.fillRect(x, area.top(), 1, area.height(), color);
    }
    for (const AxisTick& tick : AxisPainter::levelTicks(ground.levelMinimum, ground.levelMaximum,
                                                        ground.rect.height(), font, ground.levelLabels)
                                    .ticks) {
        const int y = static_cast<int>(std::floor(mapping.y(tick.value)));
        if (tick.major && y >= area.top() && y <= area.bottom())
            painter.fillRect(area.left(), y, area.width(), 1, color);
    }
}

void SpectrumPainter::Private::paintGround(const Ground& wanted, const ScanTheme& theme, const QFont& font)
{
    if (known && ground == wanted)
        return;
    ground = wanted;
    known = true;
    ++staticPaints;
    if (plain.size() != ground.size)
        plain = QImage(ground.size, QImage::Format_RGB32);
    plain.fill(theme.background.rgb());
    const ScanMapping mapping{ground.view, double(ground.levelMinimum), double(ground.levelMaximum),
                              QRectF(QPointF(0, 0), QSizeF(ground.size))};
    if (!plain.isNull() && mapping.isValid()) {
        QPainter painter(&plain);
        paintGrid(painter, font, mapping, theme.grid);
        const QRect band = ground.band.isValid() ? bandColumns(ground.band, mapping) : QRect();
        if (!band.isEmpty()) {
            const QColor color = QColor::fromRgb(ground.bandColor);
            painter.setClipRect(band);
            painter.fillRect(band, ScanTheme::mixed(theme.background, color, bandShare));
            paintGrid(painter, font, mapping, ScanTheme::mixed(theme.grid, color, bandGridShare));
        }
    }
    tinted = plain;
    if (ground.filled && !plain.isNull()) {
        QPainter painter(&tinted);
        painter.fillRect(tinted.rect(), theme.tint);
    }
}

void SpectrumPainter::Private::paintTraces(const ScanScene& scene, const ScanMapping& mapping,
                                           const ScanTheme& theme, int thickness)
{
    const int width = plain.width();
    if (scene.trace && scene.trace->isValid()) {
        columns.fill(*scene.trace, scene.view, width);
        picture.compose(plain, tinted, columns, mapping, {theme.trace.rgb(), theme.maximum.rgb()}, thickness);
    } else {
        picture.compose(plain);
    }
    if (scene.minimumHold) {
        // The lowest level of several bins would say little: their highest is where the trace never
        // falls below.
        columns.fillMaximum(*scene.minimumHold, scene.view, width);
        picture.drawLine(columns.maximum, mapping, theme.minimumHold.rgb(), thickness);
    }
    if (scene.maximumHold) {
        columns.fillMaximum(*scene.maximumHold, scene.view, width);
        picture.drawLine(columns.maximum, mapping, theme.maximumHold.rgb(), thickness);
    }
}

SpectrumPainter::SpectrumPainter() : d(new Private) {}

SpectrumPainter::~SpectrumPainter() = default;

int SpectrumPainter::staticPaints() const
{
    return d->staticPaints;
}

void SpectrumPainter::paint(QPainter& painter, const QRect& rect, const ScanScene& scene,
                            const QPalette& palette, const QFont& font)
{
    const ScanTheme theme = ScanTheme::of(palette, scene.stale);
    const DeviceSpace device(painter);
    const QRect area = device.pixels(rect);
    if (area.isEmpty())
        return;
    painter.setClipRect(area, Qt::IntersectClip);
    painter.setFont(device.font(font));

    Ground wanted;
    wanted.rect = rect;
    wanted.size = area.size();
    wanted.view = scene.view;
    wanted.levelMinimum = scene.levelMinimum;
    wanted.levelMaximum = scene.levelMaximum;
    wanted.levelLabels = scene.levelLabels;
    wanted.filled = scene.filled;
    wanted.stale = scene.stale;
    wanted.colors[0] = theme.background.rgb();
    wanted.colors[1] = theme.grid.rgb();
    wanted.colors[2] = theme.trace.rgb();
    wanted.font = font.key();
    if (scene.channel.visible && scene.channel.bandwidth > 0) {
        wanted.band = {scene.channel.center - scene.channel.bandwidth / 2,
                       scene.channel.center + scene.channel.bandwidth / 2};
        wanted.bandColor = scene.stale ? theme.threshold.rgb() : scene.channel.color.rgb();
    }
    d->paintGround(wanted, theme, font);

    const ScanMapping inPicture = mapping(scene, QRect(QPoint(0, 0), area.size()));
    if (inPicture.isValid()) {
        d->paintTraces(scene, inPicture, theme, device.length(1));
        painter.drawImage(area.topLeft(), d->picture.image());
        const ScanMapping onDevice = mapping(scene, area);
        ScanOverlay(painter, device, scene, onDevice, theme).paint();
    } else {
        painter.drawImage(area.topLeft(), d->plain);
    }
    if (!scene.message.isEmpty())
        ScanOverlay::paintMessage(painter, device, area, scene.message, theme);
    if (scene.focused) {
        painter.setPen(QPen(theme.focus, 1));
        painter.setBrush(Qt::NoBrush);
        painter.drawRect(area.adjusted(0, 0, -1, -1));
    }
}
