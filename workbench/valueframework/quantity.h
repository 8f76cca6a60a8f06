#pragma once

#include <QString>

// Numbers as people write them: "98.5M", "12 kHz", "98 500 000", "-20 dBµV".
namespace Quantity {

// Reads a finite number with an optional prefix k, M or G and an optional unit. Digits may be
// grouped in threes by spaces; a comma is refused, since it means a fraction to some and a group
// to others. `unit` receives what stands behind the prefix, empty when nothing does; whether that
// is a unit at all is for the caller to say. False, changing nothing, for anything else.
bool Read(const QString& text, double* number, QString* unit);

// Whether a text is one of the units that this system shows.
bool IsKnownUnit(const QString& unit);

// Whether two units are the same, whatever their case and the way in which the micro sign is written.
bool SameUnit(const QString& first, const QString& second);

}  // namespace Quantity
