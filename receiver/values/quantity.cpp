#include "receiver/values/quantity.h"

#include <cmath>

namespace Receiver {

namespace {

struct Prefix
{
    char letter;
    double factor;
};

// Ascending, so that the last one that fits is the largest.
constexpr Prefix prefixes[] = {{'k', 1e3}, {'M', 1e6}, {'G', 1e9}};

bool takesPrefix(const QString& unit)
{
    return unit == QLatin1String("Hz") || unit == QLatin1String("S/s");
}

}  // namespace

std::optional<double> parseQuantity(const QString& text, const QString& unit)
{
    QString number = text.trimmed();
    if (!unit.isEmpty() && number.endsWith(unit))
        number = number.left(number.size() - unit.size()).trimmed();
    double factor = 1;
    if (!number.isEmpty()) {
        const QChar last = number.back() == QLatin1Char('K') ? QChar(QLatin1Char('k')) : number.back();
        for (const Prefix& prefix : prefixes) {
            if (last == QLatin1Char(prefix.letter))
                factor = prefix.factor;
        }
        if (factor != 1)
            number = number.chopped(1).trimmed();
    }
    bool ok = false;
    const double value = number.toDouble(&ok) * factor;
    if (!ok || !std::isfinite(value))
        return std::nullopt;
    return value;
}

QString quantityText(double value, const QString& unit)
{
    constexpr int digits = 12;
    if (unit.isEmpty())
        return QString::number(value, 'g', digits);
    QString prefixed = unit;
    double scaled = value;
    if (takesPrefix(unit)) {
        for (const Prefix& prefix : prefixes) {
            if (std::abs(value) >= prefix.factor) {
                scaled = value / prefix.factor;
                prefixed = QLatin1Char(prefix.letter) + unit;
            }
        }
    }
    return QString::number(scaled, 'g', digits) + QLatin1Char(' ') + prefixed;
}

QString clampedText(double value, const QString& unit)
{
    return QStringLiteral("clamped to %1").arg(quantityText(value, unit));
}

}  // namespace Receiver
