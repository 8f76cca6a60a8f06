#pragma once

#include <QColor>
#include <QPalette>

// Colours of a scan on the background that the palette gives, light or dark. Traces differ in
// lightness as well as in hue, for those who do not tell some hues apart.
struct ScanTheme
{
    QColor background;
    QColor grid;
    QColor text;
    QColor trace;    // mean
    QColor maximum;  // from the mean up to the highest bin of a column
    QColor tint;     // laid over the background below the mean, translucent
    QColor maximumHold;
    QColor minimumHold;
    QColor threshold;
    QColor marker;
    QColor cursor;
    QColor box;  // behind texts, translucent
    QColor focus;

    // `stale`: what is drawn is old, traces and lines lose their colour.
    static ScanTheme of(const QPalette& palette, bool stale);

    // `share` of `over` laid on `under`, 0 to 1; opaque.
    static QColor mixed(const QColor& under, const QColor& over, double share);
};
