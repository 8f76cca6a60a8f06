#include "spectrum/axisticks.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr int mostLabels = 200;
constexpr int mostDecimals = 12;
constexpr double smallestRange = 1e-9;

struct Prefix
{
    double factor;
    const char* text;
};

Prefix prefixFor(double magnitude)
{
    if (magnitude >= 1e12)
        return {1e12, "T"};
    if (magnitude >= 1e9)
        return {1e9, "G"};
    if (magnitude >= 1e6)
        return {1e6, "M"};
    if (magnitude >= 1e3)
        return {1e3, "k"};
    return {1, ""};
}

// The round step (1, 2, 5 times a power of ten) next above `raw`.
double roundStep(double raw)
{
    const double power = std::pow(10.0, std::floor(std::log10(raw)));
    for (const double factor : {1.0, 2.0, 5.0}) {
        if (raw <= factor * power * (1 + 1e-9))
            return factor * power;
    }
    return 10 * power;
}

int decimalsFor(double step)
{
    return std::clamp(static_cast<int>(std::ceil(-std::log10(step) - 1e-9)), 0, mostDecimals);
}

// Minor ticks split a step of 1 or 5 in five and one of 2 in four.
int minorParts(double step)
{
    const double leading = step / std::pow(10.0, std::floor(std::log10(step) + 1e-9));
    return std::abs(leading - 2) < 1e-6 ? 4 : 5;
}

}  // namespace

AxisTicks AxisTicks::between(double start, double stop, int wanted, const QString& unit, bool prefixes)
{
    AxisTicks result;
    result.unit = unit;
    const double low = std::min(start, stop);
    const double high = std::max(start, stop);
    if (!std::isfinite(high - low) || !(high > low) || wanted < 1)
        return result;
    wanted = std::min(wanted, mostLabels);
    const double magnitude = std::max(std::abs(low), std::abs(high));
    // Beyond what a double or the decimals of a label tell apart there is nothing to mark.
    if (high - low < magnitude * 1e-12 || high - low < smallestRange)
        return result;

    const Prefix prefix = prefixes ? prefixFor(magnitude) : Prefix{1, ""};
    result.unit = QString::fromLatin1(prefix.text) + unit;
    const double step = roundStep((high - low) / wanted);
    const int parts = minorParts(step);
    const int decimals = decimalsFor(step / prefix.factor);
    const double fine = step / parts;
    const qint64 first = static_cast<qint64>(std::ceil(low / fine - 1e-9));
    const qint64 last = static_cast<qint64>(std::floor(high / fine + 1e-9));
    for (qint64 i = first; i <= last; ++i) {
        AxisTick tick;
        tick.value = static_cast<double>(i) * fine;
        tick.major = i % parts == 0;
        if (tick.major) {
            const double shown = tick.value / prefix.factor;
            tick.label =
                QString::number(std::abs(shown) < step / prefix.factor * 1e-6 ? 0 : shown, 'f', decimals);
        }
        result.ticks.append(tick);
    }
    return result;
}

QString siText(double value, double resolution, const QString& unit)
{
    if (!std::isfinite(value))
        return QStringLiteral("---");
    // Rounded first: 999.9996 kHz to the nearest hertz is 1 MHz, not 1000.000 kHz.
    const bool known = resolution > 0 && std::isfinite(resolution);
    const double least = known ? std::pow(10.0, std::floor(std::log10(resolution) + 1e-9)) : 1;
    const double rounded = std::isfinite(value / least) ? std::round(value / least) * least : value;
    const Prefix prefix = prefixFor(std::abs(rounded));
    const QString number =
        QString::number(rounded / prefix.factor + 0.0, 'f', decimalsFor(least / prefix.factor));
    return number + QLatin1Char(' ') + QString::fromLatin1(prefix.text) + unit;
}
