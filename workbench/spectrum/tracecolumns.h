#pragma once

#include <QVector>

#include "spectrum/scanframe.h"

// A trace cut down to the pixels of a picture: for every column the highest level and the mean
// power of the bins that fall into it, so that no narrow signal is ever lost between pixels. Where
// bins are wider than pixels, levels between the middles of two bins are interpolated. Empty bins
// count for nothing.
struct TraceColumns
{
    QVector<float> maximum;  // dBµV; NaN where the frame has no bins
    QVector<float> mean;

    // `width` columns over `view`. Buffers are kept from call to call.
    void fill(const ScanFrame& frame, const ScanRange& view, int width);

    // Only the maximum; the mean is left empty.
    void fillMaximum(const ScanFrame& frame, const ScanRange& view, int width);

private:
    bool prepare(const ScanFrame& frame, const ScanRange& view, int width);

    QVector<float> m_levels;  // of the bins in view, empty ones far below everything
    QVector<float> m_power;   // of the bins in view, 0 for empty ones
};
