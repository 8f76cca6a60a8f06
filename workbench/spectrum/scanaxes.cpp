#include "spectrum/scanaxes.h"

#include <QCoreApplication>
#include <algorithm>
#include <cmath>

#include "spectrum/scantext.h"

namespace {

constexpr double leastLevels = 5;       // dB from the bottom to the top
constexpr double farthestLevel = 1000;  // dBµV; beyond it there is no level
constexpr int writtenPerDecibel = 10;   // of an axis that is dragged

QString text(const char* source)
{
    return QCoreApplication::translate("ScanAxes", source);
}

}  // namespace

ScanAxes::ScanAxes(QWidget* noteHome, std::function<void()> changed)
    : levelStart(noteHome, ScanValue::Number, changed),
      levelStop(noteHome, ScanValue::Number, changed),
      center(noteHome, ScanValue::Number, changed),
      halfWidth(noteHome, ScanValue::Number, changed),
      start(noteHome, ScanValue::Number, changed),
      stop(noteHome, ScanValue::Number, changed),
      mapping(noteHome, ScanValue::Selection, changed)
{}

ScanRange ScanAxes::panorama(const ScanFrame* frame, QString* problem) const
{
    const ScanRange bound{start.number(), stop.number()};
    if (bound.isValid())
        return bound;
    if (bound.start > bound.stop)
        *problem = text("The frequency axis begins at %1, above its end at %2.")
                       .arg(ScanText::frequency(bound.start, 1), ScanText::frequency(bound.stop, 1));
    const double half = halfWidth.number();
    if (center.has() && half > 0)
        return {center.number() - half, center.number() + half};
    if (frame && frame->isValid())
        return {frame->start - frame->step / 2, frame->stop() + frame->step / 2};
    return {};
}

void ScanAxes::readLevels(QString* problem)
{
    if (!levelStart.has() && !levelStop.has())
        return;
    const double low = levelStart.has() ? levelStart.number() : double(m_minimum);
    const double high = levelStop.has() ? levelStop.number() : double(m_maximum);
    if (low < high && std::fabs(low) <= farthestLevel && std::fabs(high) <= farthestLevel) {
        m_minimum = float(low);
        m_maximum = float(high);
        return;
    }
    *problem =
        text("A level range from %1 to %2 cannot be shown.").arg(ScanText::level(low), ScanText::level(high));
}

void ScanAxes::writeLevels(double minimum, double maximum)
{
    const double low =
        std::round(std::clamp(minimum, -farthestLevel, farthestLevel - leastLevels) * writtenPerDecibel) /
        writtenPerDecibel;
    const double high =
        std::round(std::clamp(maximum, low + leastLevels, farthestLevel) * writtenPerDecibel) /
        writtenPerDecibel;
    if (levelStart.target() != low)
        levelStart.writeMerged(low);
    if (levelStop.target() != high)
        levelStop.writeMerged(high);
}

void ScanAxes::flushLevels()
{
    levelStart.flush();
    levelStop.flush();
}

bool ScanAxes::wantsPeaks() const
{
    const ValueSelection* const items = mapping.selection();
    return items && items->GetCurrentText().compare(QLatin1String("Peak"), Qt::CaseInsensitive) == 0;
}
