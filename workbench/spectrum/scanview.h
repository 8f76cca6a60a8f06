#pragma once

#include "spectrum/scanframe.h"

// Which stretch of the panorama is looked at. The view never leaves the panorama; while it shows
// all of it, it follows the panorama, and a closer look keeps its place relative to the centre when
// the receiver is tuned.
class ScanView
{
public:
    // The whole panorama. False, changing nothing, where the range is not valid.
    bool setFull(const ScanRange& full);
    const ScanRange& full() const { return m_full; }

    // The least width that zooming in goes down to, in Hz.
    void setFinest(double width) { m_finest = width; }

    const ScanRange& range() const { return m_range; }  // not valid before the first setFull()
    bool isFit() const { return m_range == m_full; }

    void fit() { m_range = m_full; }
    void show(const ScanRange& range);           // as far as the panorama goes
    void zoom(double frequency, double factor);  // `frequency` keeps its place; above 1: closer
    void pan(double hertz);                      // above 0: to higher frequencies

    // What a click, an arrow key or a drag is rounded to: the step of 1, 2 or 5 times a power of ten
    // at or below a thousandth of the view, at least 1 Hz.
    double tuningStep() const;
    double rounded(double frequency) const;  // to a multiple of tuningStep()

private:
    ScanRange kept(double start, double width) const;

    ScanRange m_full;
    ScanRange m_range;
    double m_finest = 10;
};
