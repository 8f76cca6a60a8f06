#pragma once

#include <QFont>
#include <QRect>
#include <QRectF>
#include <QTransform>

class QPainter;

// While it lives, the painter counts in the pixels of its device, so that a line of width one is one
// pixel of the screen at any scale, also between whole ones. The painter comes back as it was.
class DeviceSpace
{
public:
    explicit DeviceSpace(QPainter& painter);
    ~DeviceSpace();

    double scale() const { return m_scale; }  // device pixels to one of the painter's

    // The pixels that a rectangle of the painter's own coordinates covers, edges to the nearest.
    QRect pixels(const QRectF& rect) const;

    // A length of the painter's own coordinates, at least one pixel.
    int length(double own) const;

    // The font in the size that it has in the painter's own coordinates.
    QFont font(const QFont& own) const;

private:
    Q_DISABLE_COPY(DeviceSpace)
    QPainter& m_painter;
    QTransform m_toDevice;
    double m_scale;
};
