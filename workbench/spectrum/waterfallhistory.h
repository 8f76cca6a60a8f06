#pragma once

#include <QImage>
#include <QVector>
#include <vector>

#include "spectrum/scanframe.h"
#include "spectrum/scanpalette.h"
#include "spectrum/tracecolumns.h"

class QPainter;

// The waterfall's memory: a ring of raw rows, the newest on top of the picture. Since the levels
// are kept, not the colours, zooming and another level range recolour the whole history. The
// picture follows row by row: a new row paints one line, everything else only moves.
class WaterfallHistory
{
public:
    // A row keeps at most so many levels; wider ones are reduced by their highest.
    static constexpr int mostLevels = 8192;
    // All rows together keep at most so many bytes of levels; the oldest go first.
    static constexpr qint64 mostBytes = qint64(32) * 1024 * 1024;

    // `rows` is the number of rows kept, at least 1 and at most 8192.
    explicit WaterfallHistory(int rows = 600);

    void setRows(int rows);  // the newest are kept
    int rows() const { return m_rows; }
    int filled() const { return m_filled; }
    qint64 bytes() const { return m_bytes; }  // of levels

    void add(const ScanFrame& frame);  // an invalid one becomes an empty row
    void clear();

    // Row 0 is the newest; null beyond what is filled. Its levels may be reduced.
    const ScanFrame* row(int index) const;

    // The row that `draw` shows `below` device pixels below the top of the picture.
    const ScanFrame* rowAt(int below) const { return row(below); }

    // What the picture shows. Changing any of it paints the whole picture anew at the next draw.
    void setView(const ScanRange& view);
    void setLevels(float minimum, float maximum);  // finite, maximum > minimum; else ignored
    void setPalette(const ScanPalette& palette);
    void setGreyed(bool greyed);  // old data: the same lightness without colour

    // Draws the newest rows one device pixel high each into `target` (the painter's coordinates),
    // top down, as wide as that is in device pixels.
    void draw(QPainter& painter, const QRect& target);

    // Lines painted since the last call, to see that a new row costs one.
    int takePaintedLines();

private:
    void dropOldest();
    int slot(int index) const { return (m_newest - index + m_rows) % m_rows; }
    void setWidth(int pixels);
    void setColors();
    void paintLine(int slot);
    void paintAll();

    std::vector<ScanFrame> m_ring;  // m_rows of them
    int m_rows;
    int m_newest = 0;  // in m_ring
    int m_filled = 0;
    qint64 m_bytes = 0;
    QImage m_image;       // m_ring[i] is line m_rows - 1 - i: older rows lie below newer ones
    bool m_stale = true;  // the picture must be painted anew
    ScanRange m_view;
    float m_minimum = -20;
    float m_maximum = 80;
    ScanPalette m_palette;
    bool m_greyed = false;
    std::array<QRgb, 256> m_colors;  // as they are painted
    int m_width = 0;
    int m_painted = 0;
    TraceColumns m_columns;
};
