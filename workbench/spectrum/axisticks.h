#pragma once

#include <QString>
#include <QVector>

// Where an axis is marked, and how: round steps of 1, 2 or 5, SI prefixes, as many decimals as the
// step needs and no more.
struct AxisTick
{
    double value = 0;
    bool major = true;  // has a label
    QString label;      // number only: "98.5"; empty for a minor tick
};

struct AxisTicks
{
    QVector<AxisTick> ticks;  // ascending
    QString unit;             // of all labels: "MHz"

    // About `wanted` labelled ticks, at most 200, between `start` and `stop` (either order; equal, not
    // finite or too close to tell apart: none). `prefixes` scales by k, M, G, T where the numbers are
    // large; levels take none.
    static AxisTicks between(double start, double stop, int wanted, const QString& unit, bool prefixes);
};

// A number for people: "98.5125 MHz" has its prefix by size, and `resolution` decides the decimals:
// those of its first digit. Not finite: "---".
QString siText(double value, double resolution, const QString& unit);
