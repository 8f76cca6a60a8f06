#pragma once

#include "spectrum/coloritemmapadapter_p.h"
#include "spectrum/scanscene.h"
#include "spectrum/scanvalue.h"

// The channel in a scan: the values that say where it is, how wide, how loud it must be and what it
// demodulates, and what an operator does to them. Parts appear as their values do.
class ChannelOverlay
{
public:
    ChannelOverlay(QWidget* noteHome, std::function<void()> changed);
    ~ChannelOverlay();

    bool bindCenter(const QString& path, bool follow);

    // As it is drawn over a trace of that resolution bandwidth in Hz. Not above 0: there is no trace,
    // and no place for the threshold's line.
    ScanChannel drawn(double resolutionBandwidth) const;

    // The threshold whose line lies at `line`: the inverse of what drawn() does.
    double thresholdOf(double line, double resolutionBandwidth) const;

    // Key of the bandwidth nearest to a width in Hz, and of the next wider (+1) or narrower (-1) one;
    // -1: there is none.
    int bandwidthKeyNear(double width) const;
    int bandwidthKeyBeside(int direction) const;
    int bandwidthKey() const;  // the one that stands; -1: none

    QString words() const;  // for a screen reader; empty: nothing is known

    ScanValue frequency;
    ScanValue bandwidth;
    ScanValue threshold;
    ColorItemMapAdapter* colors;  // owned

private:
    double center() const;

    ScanValue m_center;
    bool m_follow = true;
    mutable double m_kept;  // where the passband stays when it does not follow; NaN: not known yet
};
