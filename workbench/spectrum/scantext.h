#pragma once

#include <QString>

#include "spectrum/scanframe.h"

// Numbers of a scan in words, the same in read-outs, markers and tables.
namespace ScanText {

// "98.5125 MHz"; `resolution` in Hz says how exact it is, usually what one pixel or bin stands for.
QString frequency(double hertz, double resolution);

QString level(double level);  // "45.2 dBµV"; not finite: "--- dBµV"

// "14:03:22.5 UTC" of microseconds since 1970.
QString time(qint64 microseconds);

// "+12.5 kHz  -3.2 dB" from one marker to the next.
QString delta(double hertz, double decibel, double resolution);

// "3 s", "4 min", "2 h": how old something is.
QString age(double seconds);

// Read-out at the cursor: frequency and level, and the time where it is not now (0: left out).
QString cursor(double hertz, double resolution, double level, qint64 time = 0);

// The level of the bin whose middle is nearest to `frequency`; NaN outside of the frame.
float levelAt(const ScanFrame& frame, double frequency);

// The highest level of it and of the bins whose middles lie within `width` Hz around it: what a
// picture shows there whose pixels are that wide. NaN where levelAt() is.
float levelNear(const ScanFrame& frame, double frequency, double width);

// Both levels of a threshold: as it is set in the channel, and where its line is drawn. Noise of
// `level` in `bandwidth` shows as level - 10 log10(bandwidth / resolutionBandwidth) in the trace.
double thresholdLine(double level, double bandwidth, double resolutionBandwidth);

}  // namespace ScanText
