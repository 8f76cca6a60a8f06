#include "spectrum/scantext.h"

#include <QCoreApplication>
#include <QDateTime>
#include <cmath>

#include "spectrum/axisticks.h"
#include "spectrum/levelpower.h"

namespace ScanText {

namespace {

const char decibelUnit[] = "dBµV";

QString decibel(double value)
{
    return std::isfinite(value) ? QString::number(value, 'f', 1) : QStringLiteral("---");
}

}  // namespace

QString frequency(double hertz, double resolution)
{
    return siText(hertz, resolution, QStringLiteral("Hz"));
}

QString level(double level)
{
    return decibel(level) + QLatin1Char(' ') + QString::fromUtf8(decibelUnit);
}

QString time(qint64 microseconds)
{
    // Tenths are cut, not rounded: a time must not show before it has come.
    const QDateTime moment =
        QDateTime::fromMSecsSinceEpoch(microseconds / 1000 - (microseconds % 1000 < 0 ? 1 : 0), Qt::UTC);
    return moment.toString(QStringLiteral("hh:mm:ss.zzz")).left(10) + QStringLiteral(" UTC");
}

QString delta(double hertz, double decibels, double resolution)
{
    const QString sign = hertz < 0 ? QString() : QStringLiteral("+");
    const QString levelSign = decibels < 0 ? QString() : QStringLiteral("+");
    return sign + frequency(hertz, resolution) + QStringLiteral("  ") +
           (std::isfinite(decibels) ? levelSign : QString()) + decibel(decibels) + QStringLiteral(" dB");
}

QString age(double seconds)
{
    const double whole = std::isfinite(seconds) ? std::floor(std::max(0.0, seconds)) : 0;
    if (whole < 120)
        return QCoreApplication::translate("ScanText", "%1 s").arg(whole, 0, 'f', 0);
    if (whole < 7200)
        return QCoreApplication::translate("ScanText", "%1 min").arg(std::floor(whole / 60), 0, 'f', 0);
    return QCoreApplication::translate("ScanText", "%1 h").arg(std::floor(whole / 3600), 0, 'f', 0);
}

QString cursor(double hertz, double resolution, double level, qint64 time)
{
    QString text = frequency(hertz, resolution) + QStringLiteral("  ") + ScanText::level(level);
    if (time != 0)
        text += QStringLiteral("  ") + ScanText::time(time);
    return text;
}

float levelAt(const ScanFrame& frame, double frequency)
{
    if (!frame.isValid())
        return LevelPower::none;
    const double bin = std::round((frequency - frame.start) / frame.step);
    if (!(bin >= 0) || bin >= static_cast<double>(frame.levels.size()))
        return LevelPower::none;
    const float level = frame.levels[static_cast<int>(bin)];
    return LevelPower::isLevel(level) ? level : LevelPower::none;
}

float levelNear(const ScanFrame& frame, double frequency, double width)
{
    float level = levelAt(frame, frequency);
    if (!LevelPower::isLevel(level))
        return level;
    const double last = static_cast<double>(frame.levels.size()) - 1;
    const double half = width / 2;
    const int begin =
        static_cast<int>(std::ceil(qBound(0.0, (frequency - half - frame.start) / frame.step, last)));
    const int end =
        static_cast<int>(std::floor(qBound(0.0, (frequency + half - frame.start) / frame.step, last)));
    for (int i = begin; i <= end; ++i)
        level = qMax(level, LevelPower::isLevel(frame.levels[i]) ? frame.levels[i] : level);
    return level;
}

double thresholdLine(double level, double bandwidth, double resolutionBandwidth)
{
    if (!(bandwidth > 0) || !(resolutionBandwidth > 0))
        return level;
    return level - 10 * std::log10(bandwidth / resolutionBandwidth);
}

}  // namespace ScanText
