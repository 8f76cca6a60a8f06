#pragma once

#include <QColor>
#include <QIcon>
#include <QPalette>
#include <QString>

class QFontMetrics;
class QPainter;
class QPixmap;
class QRect;
class QWidget;

// What the states of a control look like. All colours follow the palette, so that they hold in the
// dark as in the light; shapes differ as well, for those who do not tell red from amber.
namespace ControlLook {

// Lays the background over a control whose value cannot be used; its content stays readable.
void PaintWash(QPainter& painter, const QRect& rect, const QPalette& palette);

// The colour that the wash makes of a colour.
QColor Washed(const QColor& color, const QPalette& palette);

// A dotted line along the lower edge: written, not answered yet.
void PaintPending(QPainter& painter, const QRect& rect, const QPalette& palette);

// A bar along the left edge: an entry that is not applied yet.
void PaintEdited(QPainter& painter, const QRect& rect, const QPalette& palette);

// A frame with a corner mark: the last write was refused or limited, the note beside says why.
void PaintTold(QPainter& painter, const QRect& rect, const QPalette& palette, bool refused);

QColor RefusedColor(const QPalette& palette);
QColor PendingColor(const QPalette& palette);

// Black or white, whichever reads better on the background.
QColor ReadableOn(const QColor& background);

// Contrast ratio of two colours, 1 to 21.
double Contrast(const QColor& one, const QColor& other);

// A picture that stays sharp on any screen: whole multiples are made without smoothing. On a dark
// button it lies on a light plate, since the pictures are drawn for light ground.
QIcon CrispIcon(const QPixmap& picture, const QPalette& palette);

bool IsDark(const QPalette& palette);

QString Elided(const QString& text, const QFontMetrics& metrics, int width);

}  // namespace ControlLook
