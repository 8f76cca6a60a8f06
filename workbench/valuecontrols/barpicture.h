#pragma once

#include <QPalette>
#include <QRect>
#include <QString>

class QPainter;
class QFont;

// What a level bar shows, in pixels of the screen: two bars with equal pictures look the same, so
// that a change which moves no pixel costs no repaint.
struct BarPicture
{
    enum Beyond
    {
        Within,
        Below,  // under the left end of the scale
        Above   // over the right end
    };

    bool usable = true;  // false: greyed
    bool missing = false;
    int level = 0;    // filled from the left; physical pixels within the scale
    int lowest = -1;  // marks of the last seconds, physical pixels; -1: none
    int highest = -1;
    Beyond beyond = Within;
    QString text;  // the number and its unit; empty: not shown

    bool operator==(const BarPicture& other) const;
    bool operator!=(const BarPicture& other) const { return !(*this == other); }
};

struct BarScale
{
    unsigned parts = 0;  // scale lines, both ends included
    int marks = 0;       // how many of them are long
};

namespace BarPainting {

// The area of the scale inside the frame, in widget coordinates.
QRect ScaleRect(const QRect& widget);

void Paint(QPainter& painter, const QRect& widget, const BarPicture& picture, const BarScale& scale,
           const QPalette& palette);

// The part of the widget in which the two pictures differ.
QRect Difference(const QRect& widget, const BarPicture& before, const BarPicture& after, double pixelRatio);

}  // namespace BarPainting
