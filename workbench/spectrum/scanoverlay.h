#pragma once

#include <QFont>
#include <QRect>
#include <QVector>

#include "spectrum/scanmapping.h"
#include "spectrum/scanscene.h"
#include "spectrum/scantheme.h"

class DeviceSpace;
class QPainter;

// What lies over the traces: the channel's lines, threshold, markers, cursor and texts. All in
// device pixels. Lives for one picture.
class ScanOverlay
{
public:
    // `mapping` in device pixels, valid.
    ScanOverlay(QPainter& painter, const DeviceSpace& device, const ScanScene& scene,
                const ScanMapping& mapping, const ScanTheme& theme);

    void paint();

    // A text in a box in the middle of `area`, broken into lines where it is wide.
    static void paintMessage(QPainter& painter, const DeviceSpace& device, const QRect& area,
                             const QString& message, const ScanTheme& theme);

private:
    void paintChannel();
    void paintThreshold();
    void paintMarkers();
    void paintMarker(const ScanMarker& marker, bool selected);
    void paintCursor();
    void paintNotice();

    // A text with its box, moved inwards where it would leave the picture. Gives the box.
    QRectF paintText(QPointF topLeft, const QString& text, const QColor& color);
    QRectF movedClear(QRectF box, bool up) const;
    QSizeF boxSize(const QString& text) const;
    void verticalLine(double frequency, const QColor& color, int width, bool dashed = false);
    void horizontalLine(double y, const QColor& color, int width, bool dashed = false);
    void arrow(QPointF tip, QPointF direction, const QColor& color);

    QPainter& m_painter;
    const DeviceSpace& m_device;
    const ScanScene& m_scene;
    const ScanMapping& m_mapping;
    const ScanTheme& m_theme;
    QRect m_area;
    QVector<QRectF> m_taken;  // by texts
};
