#pragma once

#include <QString>
#include <optional>

// Quantities as people write them: a number with a unit prefix.
namespace Receiver {

// "77.5k", "98.5M", "5e6", "-3", each with or without a unit ("98.5 MHz", "2.4kHz"); prefixes k, M
// and G, case-sensitive but for k. Empty: not a number, or not finite.
std::optional<double> parseQuantity(const QString& text, const QString& unit = QString());

// 98500000 with "Hz" is "98.5 MHz". Prefixes are used for Hz and S/s, other units stay plain. Up to
// twelve significant digits.
QString quantityText(double value, const QString& unit);

// The reason of a clamped write: "clamped to 108 MHz".
QString clampedText(double value, const QString& unit);

}  // namespace Receiver
