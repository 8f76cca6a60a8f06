#pragma once

#include <QVector>

#include "spectrum/scanframe.h"

// What frames leave behind: their highest and lowest levels, and their running mean. All of it
// begins anew with a frame of other bins. Empty bins change nothing.
class TraceHold
{
public:
    // What is not held costs nothing. Switching off forgets.
    void setMaximumHeld(bool held);
    void setMinimumHeld(bool held);
    bool isMaximumHeld() const { return m_maximumHeld; }
    bool isMinimumHeld() const { return m_minimumHeld; }

    // Time constant in seconds of the exponential mean of power; 0 and below: none, frames pass as
    // they are. Counted in the frames' own time, so that skipped frames do not slow it down.
    void setAveraging(double seconds);
    double averaging() const { return m_seconds; }

    void add(const ScanFrame& frame);  // an invalid one is ignored
    void reset();                      // forgets the traces, keeps the settings

    // Null until there is something. Owned by this, the same objects until it ends.
    const ScanFrame* live() const;  // the mean, or the last frame where there is no averaging
    const ScanFrame* maximum() const;
    const ScanFrame* minimum() const;

private:
    void average(const ScanFrame& frame);
    double share(qint64 time);

    bool m_maximumHeld = false;
    bool m_minimumHeld = false;
    double m_seconds = 0;
    double m_frameSeconds = 0;  // last plain distance of two frames
    ScanFrame m_live;
    ScanFrame m_maximum;
    ScanFrame m_minimum;
    QVector<float> m_power;  // of the mean; 0: empty bin
};
