#pragma once

#include <QtGlobal>
#include <deque>

// The lowest and highest level of the last 10 s, at a cost that does not grow with the rate: levels
// are collected in slices of a tenth of a second.
class LevelHistory
{
public:
    static constexpr qint64 spanMs = 10000;

    void Add(double level, qint64 nowMs);
    void Clear() { m_Slices.clear(); }

    // Forgets what is older than the span. False when nothing is left.
    bool Extremes(qint64 nowMs, double* lowest, double* highest);

    // Until the oldest slice leaves; -1 when there is none.
    qint64 NextChangeMs(qint64 nowMs) const;

private:
    struct Slice
    {
        qint64 start;
        double lowest;
        double highest;
    };
    std::deque<Slice> m_Slices;
};
