#pragma once

#include <QVector>

#include "spectrum/scanframe.h"

// A signal in a trace.
struct ScanPeak
{
    double frequency = 0;  // Hz, between bins by a parabola through three of them
    float level = 0;       // dBµV, of the parabola's top
    int bin = 0;           // the highest bin
};

// What counts as a peak of its own.
struct PeakSearch
{
    int count = 10;              // at most that many, the strongest
    double minimumDistance = 0;  // Hz; of two closer ones the stronger stays
    float prominence = 6;        // dB by which the trace falls on both sides before it rises higher
    float minimumLevel = -1000;  // dBµV, weaker ones are left out
};

// The strongest peaks of `frame` within `view`, strongest first; one pass over the bins.
QVector<ScanPeak> findPeaks(const ScanFrame& frame, const ScanRange& view, const PeakSearch& search = {});
