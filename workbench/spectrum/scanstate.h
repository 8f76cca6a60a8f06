#pragma once

#include <QString>

#include "spectrum/scanstream.h"

// What an operator must know before trusting the picture.
struct ScanState
{
    bool stale = false;  // the picture is old, or there is none
    QString message;     // what is wrong; empty: nothing

    struct Facts
    {
        ScanStream::State stream = ScanStream::State::Stopped;
        QString address;         // as the stream tries it
        QString failure;         // why there is no stream; empty: none is known
        bool delivered = false;  // a frame came over the connection at hand
        bool hasTrace = false;
        double traceAge = 0;  // seconds since the last frame came
        double dropAge = -1;  // seconds since a frame was dropped; below 0: never
        quint64 dropped = 0;
        QString dropReason;
        QString rangeProblem;  // of the axes' values; empty: none
    };

    static ScanState of(const Facts& facts);
    bool operator==(const ScanState& other) const { return stale == other.stale && message == other.message; }
};
