#pragma once

#include <QVector>
#include <QtGlobal>
#include <cmath>

// One picture of the spectrum as it came from the scan buffer. Levels in dBµV; what is not finite is
// an empty bin: nothing was measured there.
struct ScanFrame
{
    quint64 sequence = 0;            // counts up; a jump means frames that nobody saw
    qint64 time = 0;                 // microseconds since 1970, UTC
    double start = 0;                // Hz, the middle of the first bin
    double step = 0;                 // Hz from bin to bin, > 0
    double resolutionBandwidth = 0;  // Hz, equivalent noise bandwidth of a bin, > 0
    QVector<float> levels;

    bool isEmpty() const { return levels.isEmpty(); }

    // It has bins, and they lie somewhere. Anything else is shown as nothing.
    bool isValid() const
    {
        return !levels.isEmpty() && std::isfinite(start) && std::isfinite(step) && step > 0;
    }

    double stop() const { return start + step * static_cast<double>(levels.size() - 1); }

    // Both pictures have the same bins, so that they may be compared bin by bin.
    bool sameBins(const ScanFrame& other) const
    {
        return start == other.start && step == other.step && levels.size() == other.levels.size();
    }
};

// A stretch of the frequency axis in Hz.
struct ScanRange
{
    double start = 0;
    double stop = 0;

    double width() const { return stop - start; }
    double center() const { return (start + stop) / 2; }
    bool isValid() const { return stop > start && std::isfinite(stop - start); }
    bool contains(double frequency) const { return frequency >= start && frequency <= stop; }
    bool operator==(const ScanRange& other) const { return start == other.start && stop == other.stop; }
};
