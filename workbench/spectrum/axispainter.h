#pragma once

#include <QFont>
#include <QPalette>
#include <QRect>
#include <QString>

#include "spectrum/axisticks.h"
#include "spectrum/scanframe.h"

class QPainter;

// Ticks, labels and the unit of an axis beside a picture. Labels never overlap: where room is short
// there are fewer of them, in the end none. The ticks of grid and axis come from the same function,
// so that they always meet.
class AxisPainter
{
public:
    // Ticks of a frequency axis `width` pixels wide, in Hz with a prefix, as many as `font` allows.
    static AxisTicks frequencyTicks(const ScanRange& view, int width, const QFont& font);

    // Ticks of a level axis `height` pixels high, in dBµV. `wanted`: labels aimed at, 0: as many as
    // fit well.
    static AxisTicks levelTicks(float minimum, float maximum, int height, const QFont& font, int wanted = 0);

    // Heights and widths that an axis needs beside the picture, in pixels.
    static int frequencyAxisHeight(const QFont& font);
    static int levelAxisWidth(const QFont& font);

    // Below a picture: `rect` is as wide as the picture. The unit stands at the right end.
    static void paintFrequency(QPainter& painter, const QRect& rect, const ScanRange& view,
                               const QPalette& palette, const QFont& font);

    // Left of a picture: `rect` is as high as the picture. The unit stands at the top.
    static void paintLevel(QPainter& painter, const QRect& rect, float minimum, float maximum,
                           const QPalette& palette, const QFont& font, int wanted = 0);
};
