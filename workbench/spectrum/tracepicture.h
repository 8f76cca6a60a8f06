#pragma once

#include <QColor>
#include <QImage>
#include <QVector>

#include "spectrum/scanmapping.h"
#include "spectrum/tracecolumns.h"

// Writes traces into an image column by column: no polyline of tens of thousands of points, only
// the pixels that show. Rows outside of all traces are copied as they are.
class TracePicture
{
public:
    struct Colors
    {
        QRgb mean;
        QRgb maximum;
    };

    // Copies `plain` above the trace and `tinted` below its mean into the picture, and draws the
    // trace between them. All images have the same size and are RGB32; `plain` and `tinted` may be
    // the same one. The level range is that of `mapping`, its rect the picture's in pixels. Lines are
    // `thickness` pixels high.
    void compose(const QImage& plain, const QImage& tinted, const TraceColumns& columns,
                 const ScanMapping& mapping, const Colors& colors, int thickness);

    // Nothing but the background.
    void compose(const QImage& plain);

    // A line over what is there; gaps where `levels` has none.
    void drawLine(const QVector<float>& levels, const ScanMapping& mapping, QRgb color, int thickness);

    const QImage& image() const { return m_image; }

private:
    // First and last row of the line in every column.
    struct Extents
    {
        QVector<int> top;
        QVector<int> bottom;

        void fill(const QVector<float>& levels, const ScanMapping& mapping, int thickness);
    };

    bool prepare(const QSize& size);

    QImage m_image;
    qint64 m_plain = 0;  // of which images rows are known to be copies; 0: of none
    qint64 m_tinted = 0;
    int m_first = 0;   // rows above are those of the plain image
    int m_behind = 0;  // this one and those below are those of the tinted image
    Extents m_line;
    QVector<int> m_maximum;  // row of the highest level in every column
};
