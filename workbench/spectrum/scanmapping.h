#pragma once

#include <QRectF>

#include "spectrum/scanframe.h"

// Between the values of a picture and its pixels, in whatever pixels `rect` is given. A frequency
// of view.start lies on the left edge, one of view.stop on the right edge; the top is the highest
// level.
struct ScanMapping
{
    ScanRange view;           // Hz, valid
    double levelMinimum = 0;  // dBµV at the bottom
    double levelMaximum = 1;  // at the top, above the minimum
    QRectF rect;              // not empty

    double x(double frequency) const
    {
        return rect.left() + (frequency - view.start) / view.width() * rect.width();
    }
    double frequency(double x) const { return view.start + (x - rect.left()) / rect.width() * view.width(); }
    double y(double level) const
    {
        return rect.top() + (levelMaximum - level) / (levelMaximum - levelMinimum) * rect.height();
    }
    double level(double y) const
    {
        return levelMaximum - (y - rect.top()) / rect.height() * (levelMaximum - levelMinimum);
    }

    bool isValid() const { return view.isValid() && levelMaximum > levelMinimum && !rect.isEmpty(); }
};
