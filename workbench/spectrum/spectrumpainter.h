#pragma once

#include <QFont>
#include <QPalette>
#include <QPointF>
#include <QRect>

#include <memory>

#include "spectrum/scanmapping.h"
#include "spectrum/scanscene.h"

class QPainter;

// Paints a ScanScene: background and grid, the channel's passband, the traces, then lines, markers
// and texts over them. What lies below the traces is kept between calls until range, size, colours
// or the passband change, so that a new frame costs little more than its pixels. Lines are one
// device pixel wide at any scale. One painter serves one picture.
class SpectrumPainter
{
public:
    SpectrumPainter();
    ~SpectrumPainter();

    // `rect` in the painter's own coordinates. A scene without a valid range gets its background and
    // message only.
    void paint(QPainter& painter, const QRect& rect, const ScanScene& scene, const QPalette& palette,
               const QFont& font);

    // How often what lies below the traces was painted anew.
    int staticPaints() const;

    static ScanMapping mapping(const ScanScene& scene, const QRect& rect);

    // What lies under `position` (in the coordinates of `rect`), the nearest where several do.
    static ScanHandle hitTest(const ScanScene& scene, const QRect& rect, const QPointF& position);

    // Index of the marker under `position`; -1: none.
    static int markerAt(const ScanScene& scene, const QRect& rect, const QPointF& position);

private:
    Q_DISABLE_COPY(SpectrumPainter)
    struct Private;
    std::unique_ptr<Private> d;
};
