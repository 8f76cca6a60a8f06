#pragma once

#include <QColor>
#include <QPointF>
#include <QString>
#include <QVector>
#include <limits>

#include "spectrum/scanframe.h"

// The channel as it is drawn into the spectrum.
struct ScanChannel
{
    bool visible = false;  // its frequency is known
    double frequency = 0;  // Hz, the line
    double center = 0;     // Hz, middle of the passband
    double bandwidth = 0;  // Hz, width of the passband; 0: none is drawn
    QColor color;          // of the passband, by the demodulation
    QString text;          // "FM 150 kHz"
    bool hasThreshold = false;
    double thresholdLevel = 0;  // dBµV in the channel's bandwidth, as the operator sets it
    double thresholdLine = 0;   // dBµV per resolution bandwidth, where the line is drawn
};

struct ScanMarker
{
    double frequency = 0;  // Hz
    float level = 0;       // dBµV, of the trace at that frequency; NaN: nothing there
    QString text;          // "1", or "Δ2" with what it says
    bool delta = false;    // measured against the marker before
};

// What the pointer can take hold of.
enum class ScanHandle
{
    None,
    Frequency,  // the channel's line and passband
    LowerEdge,  // of the passband
    UpperEdge,
    Threshold,
    Marker
};

// Everything that one picture of the spectrum shows. Built by the widget, painted by
// SpectrumPainter; nothing in it is owned by the painter.
struct ScanScene
{
    ScanRange view;                    // Hz from the left to the right edge
    float levelMinimum = -20;          // dBµV at the bottom
    float levelMaximum = 80;           // at the top
    int levelLabels = 0;               // labels aimed at beside the picture; 0: as many as fit well
    const ScanFrame* trace = nullptr;  // live trace; null: none yet
    const ScanFrame* maximumHold = nullptr;
    const ScanFrame* minimumHold = nullptr;
    bool filled = true;  // the area below the mean is tinted
    ScanChannel channel;
    QVector<ScanMarker> markers;
    int selectedMarker = -1;  // also of the peak table's choice
    ScanHandle hovered = ScanHandle::None;
    bool cursorVisible = false;
    double cursorFrequency = 0;  // Hz
    // dBµV, the height of the cross; NaN: at the trace
    float cursorLevel = std::numeric_limits<float>::quiet_NaN();
    QString cursorText;    // "98.512 MHz  45.2 dBµV"
    QString noticeText;    // in the upper left corner: "mean of 0.5 s"; empty: none
    bool stale = false;    // what is drawn is old: grey
    QString message;       // over the picture: why nothing (or nothing new) comes; empty: fine
    bool focused = false;  // has the keyboard
};
