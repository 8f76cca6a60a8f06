#include "recordertoolbar/recordericons.h"

#include <QPainter>
#include <QPixmap>
#include <QPolygonF>

namespace {

const int iconSizes[] = {16, 24, 32, 48};
const QColor recordColour(200, 30, 30);
const QColor stopColour(50, 55, 60);
const QColor warningColour(245, 190, 30);
const QColor warningInk(40, 30, 0);
const QColor disabledColour(170, 170, 170);

// Painted on a square of the side 1.
typedef void (*Shape)(QPainter& painter, bool enabled);

void PaintRecord(QPainter& painter, bool enabled)
{
    painter.setBrush(enabled ? recordColour : disabledColour);
    painter.drawEllipse(QRectF(0.14, 0.14, 0.72, 0.72));
}

void PaintStop(QPainter& painter, bool enabled)
{
    painter.setBrush(enabled ? stopColour : disabledColour);
    painter.drawRect(QRectF(0.2, 0.2, 0.6, 0.6));
}

void PaintWarning(QPainter& painter, bool enabled)
{
    painter.setBrush(enabled ? warningColour : disabledColour);
    painter.drawPolygon(QPolygonF({QPointF(0.5, 0.08), QPointF(0.96, 0.9), QPointF(0.04, 0.9)}));
    painter.setBrush(warningInk);
    painter.drawRoundedRect(QRectF(0.455, 0.36, 0.09, 0.28), 0.045, 0.045);
    painter.drawEllipse(QPointF(0.5, 0.75), 0.055, 0.055);
}

QPixmap Draw(Shape shape, int size, bool enabled)
{
    QPixmap pixmap(size, size);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.scale(size, size);
    shape(painter, enabled);
    return pixmap;
}

QIcon MakeIcon(Shape shape)
{
    QIcon icon;
    for (const int size : iconSizes) {
        icon.addPixmap(Draw(shape, size, true), QIcon::Normal);
        icon.addPixmap(Draw(shape, size, false), QIcon::Disabled);
    }
    return icon;
}

}  // namespace

namespace RecorderIcons {

QIcon Record()
{
    return MakeIcon(PaintRecord);
}

QIcon Stop()
{
    return MakeIcon(PaintStop);
}

QIcon Warning()
{
    return MakeIcon(PaintWarning);
}

}  // namespace RecorderIcons
