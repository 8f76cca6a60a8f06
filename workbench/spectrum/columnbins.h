#pragma once

#include <algorithm>
#include <cmath>

#include "spectrum/scanframe.h"

// Which bins of a frame fall into which column of a picture. A bin belongs to the column in which
// its middle lies, so that every bin in view has exactly one.
class ColumnBins
{
public:
    // The frame, the view and the width must be valid.
    ColumnBins(const ScanFrame& frame, const ScanRange& view, int width)
        : m_first((view.start - frame.start) / frame.step),
          m_perColumn(view.width() / width / frame.step),
          m_count(static_cast<double>(frame.levels.size()))
    {}

    // The first bin of column `x`; that of column x + 1 is one behind its last. Columns without a
    // bin's middle begin where they end.
    int begin(int x) const
    {
        return static_cast<int>(std::clamp(std::ceil(m_first + x * m_perColumn), 0.0, m_count));
    }

    // Where the middle of column `x` lies, in bins; outside of the frame below 0 or above the last.
    double middle(int x) const { return m_first + (x + 0.5) * m_perColumn; }

    double perColumn() const { return m_perColumn; }

private:
    double m_first;  // bin at the left edge
    double m_perColumn;
    double m_count;
};
