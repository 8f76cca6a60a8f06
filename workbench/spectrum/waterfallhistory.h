#pragma once

#include <QImage>
#include <QVector>

#include "spectrum/scanframe.h"
#include "spectrum/scanpalette.h"

// The waterfall's memory: a ring of raw rows, the newest on top of the picture. Since the levels
// are kept, not the colours, zooming and another level range recolour the whole history. The
// picture follows row by row: a new row paints one line, everything else only moves.
class WaterfallHistory
{
public:
    // `rows` is the number of rows kept, at least 1.
    explicit WaterfallHistory(int rows = 600);

    void setRows(int rows);  // the newest are kept
    int rows() const { return m_rows; }
    int filled() const { return static_cast<int>(m_ring.size()); }

    void add(const ScanFrame& frame);
    void clear();

    // Row 0 is the newest; null beyond what is filled.
    const ScanFrame* row(int index) const;

    // What the picture shows. Changing any of it paints the whole picture anew at the next draw.
    void setView(const ScanRange& view);
    void setLevels(float minimum, float maximum);  // maximum > minimum
    void setPalette(const ScanPalette& palette);
    void setWidth(int pixels);

    // Draws the newest rows one pixel high each into `target` (device pixels), top down.
    void draw(QPainter& painter, const QRect& target);

    // Lines painted since the last call, to see that a new row costs one.
    int takePaintedLines();

private:
    void paintLine(int index, const ScanFrame& frame);  // index in m_ring
    void paintAll();

    QVector<ScanFrame> m_ring;
    int m_rows;
    int m_newest = -1;    // in m_ring
    QImage m_image;       // m_ring[i] is line m_rows - 1 - i: older rows lie below newer ones
    bool m_stale = true;  // the picture must be painted anew
    ScanRange m_view;
    float m_minimum = -20;
    float m_maximum = 80;
    ScanPalette m_palette;
    int m_width = 0;
    int m_painted = 0;
    QVector<float> m_columns;
};
