// What an operator does to a scan, whether by pointer, key or menu.

#include <QDateTime>
#include <QFileInfo>
#include <QPainter>
#include <QSaveFile>
#include <algorithm>
#include <cmath>
#include <limits>

#include "spectrum/scantext.h"
#include "spectrum/vcscanwidget_p.h"

namespace {

constexpr double zoomPerNotch = 1.25;
constexpr double framesPerSecond = 30;  // that averaging counts by
constexpr int squelchDigits = 10;       // steps in a decibel
constexpr double nothing = std::numeric_limits<double>::quiet_NaN();

// Free room below the noise and above the strongest signal when the level range is fitted.
constexpr double belowNoise = 10;
constexpr double abovePeak = 10;
constexpr double noiseShare = 0.1;  // so many of the bins lie below what counts as noise

double rounded(double level)
{
    return std::round(level * squelchDigits) / squelchDigits;
}

}  // namespace

void VCScanWidgetPrivate::tuneTo(double frequency)
{
    channel.frequency.writeMerged(view.rounded(frequency));
}

void VCScanWidgetPrivate::tuneBy(double steps)
{
    const double now = channel.frequency.target();
    const double step = steps * view.tuningStep();
    // Whole hertz: nothing here is set finer.
    channel.frequency.writeMerged(std::round(now + (std::fabs(step) < 1 ? std::copysign(1, step) : step)));
}

void VCScanWidgetPrivate::chooseBandwidth(int key)
{
    if (key >= 0 && key != channel.bandwidthKey())
        channel.bandwidth.writeMerged(key);
}

// Written at once: the next step begins where this one ends.
void VCScanWidgetPrivate::stepBandwidth(int direction)
{
    const int key = channel.bandwidthKeyBeside(direction);
    if (key >= 0)
        channel.bandwidth.writeNow(key);
}

void VCScanWidgetPrivate::dragThreshold(double line)
{
    channel.threshold.writeMerged(rounded(channel.thresholdOf(line, resolutionBandwidth())));
}

void VCScanWidgetPrivate::squelchBy(double decibel)
{
    channel.threshold.writeMerged(rounded(channel.threshold.target() + decibel));
}

void VCScanWidgetPrivate::zoomBy(double frequency, double notches)
{
    view.zoom(frequency, std::pow(zoomPerNotch, notches));
    changed();
}

// Without a closer look to take, the panorama itself becomes half or twice as wide.
void VCScanWidgetPrivate::zoomByKey(double frequency, double notches)
{
    const double half = axes.halfWidth.target();
    if (axes.halfWidthWritable && axes.halfWidth.CanWrite() && half > 0 && view.isFit())
        axes.halfWidth.writeMerged(notches > 0 ? half / 2 : half * 2);
    else
        zoomBy(frequency, notches);
}

void VCScanWidgetPrivate::panBy(double hertz)
{
    view.pan(hertz);
    changed();
}

void VCScanWidgetPrivate::fit()
{
    view.fit();
    changed();
}

void VCScanWidgetPrivate::fitLevels()
{
    if (!trace())
        return;
    QVector<float> levels;
    for (const float level : trace()->levels) {
        if (std::isfinite(level))
            levels.append(level);
    }
    if (levels.isEmpty())
        return;
    const auto noise = levels.begin() + qsizetype(noiseShare * double(levels.size() - 1));
    std::nth_element(levels.begin(), noise, levels.end());
    const double low = double(*noise);
    const double high = double(*std::max_element(levels.begin(), levels.end()));
    axes.writeLevels(std::floor(low - belowNoise), std::ceil(high + abovePeak));
    axes.flushLevels();
}

// --- markers and cursor -------------------------------------------------------------------------

void VCScanWidgetPrivate::addMarker(bool delta)
{
    if (!options.markers)
        return;
    const double place = hasCursor()               ? m_cursor
                         : channel.frequency.has() ? channel.frequency.number()
                                                   : view.range().center();
    markers.add(place, delta);
    changed();
}

void VCScanWidgetPrivate::removeMarker()
{
    markers.removeSelected();
    changed();
}

bool VCScanWidgetPrivate::hasCursor() const
{
    return !std::isnan(m_cursor);
}

void VCScanWidgetPrivate::setCursor(double frequency, double level)
{
    m_cursor = frequency;
    m_cursorLevel = level;
    changed();
}

void VCScanWidgetPrivate::clearCursor()
{
    cursorTime = 0;
    setCursor(nothing, nothing);
}

void VCScanWidgetPrivate::showRow(const ScanFrame& row, double frequency)
{
    cursorTime = row.time;
    cursorRowLevel = ScanText::levelAt(row, frequency);
}

bool VCScanWidgetPrivate::dropNotes()
{
    bool dropped = false;
    ScanValue* const values[] = {&channel.frequency, &channel.bandwidth, &channel.threshold,
                                 &axes.levelStart,   &axes.levelStop,    &axes.halfWidth};
    for (ScanValue* const value : values) {
        dropped = dropped || value->HasNote();
        value->DropNote();
    }
    return dropped;
}

// --- traces -------------------------------------------------------------------------------------

void VCScanWidgetPrivate::setAveraging(int frames)
{
    m_averaging = frames > 1 ? frames : 0;
    hold.setAveraging(m_averaging / framesPerSecond);
    changed();
}

void VCScanWidgetPrivate::setHeld(bool maximum, bool held)
{
    if (maximum)
        hold.setMaximumHeld(held);
    else
        hold.setMinimumHeld(held);
    changed();
}

// The live trace stays: only what was held begins anew.
void VCScanWidgetPrivate::clearHold()
{
    const bool maximum = hold.isMaximumHeld();
    const bool minimum = hold.isMinimumHeld();
    hold.setMaximumHeld(false);
    hold.setMinimumHeld(false);
    hold.setMaximumHeld(maximum);
    hold.setMinimumHeld(minimum);
    changed();
}

void VCScanWidgetPrivate::setPalette(ScanPalette::Kind kind)
{
    m_palette = kind;
    changed();
}

// --- what can be taken along --------------------------------------------------------------------

QImage VCScanWidgetPrivate::picture() const
{
    const qreal ratio = widget->devicePixelRatioF();
    QImage image(widget->size() * ratio, QImage::Format_RGB32);
    image.setDevicePixelRatio(ratio);
    image.fill(widget->palette().color(QPalette::Window));
    widget->render(&image);
    return image;
}

// Written aside and put in place at the end, so that a former picture is not lost half way.
bool VCScanWidgetPrivate::savePicture(const QString& fileName, QString* problem) const
{
    QSaveFile file(fileName);
    if (file.open(QIODevice::WriteOnly) && picture().save(&file, "PNG") && file.commit())
        return true;
    *problem = VCScanWidget::tr("The picture could not be saved as %1: %2. Choose another folder or name.")
                   .arg(QFileInfo(fileName).absoluteFilePath(), file.errorString());
    return false;
}

// Numbers in the C locale, so that any program reads them; an empty bin has an empty level.
QString VCScanWidgetPrivate::traceAsCsv() const
{
    if (!trace())
        return QString();
    const ScanFrame& frame = *trace();
    QString csv =
        QStringLiteral("# Spectrum of %1, resolution bandwidth %2 Hz\n")
            .arg(QDateTime::fromMSecsSinceEpoch(frame.time / 1000, Qt::UTC).toString(Qt::ISODateWithMs))
            .arg(frame.resolutionBandwidth, 0, 'g', 9);
    csv += QStringLiteral("Frequency in Hz,Level in dBµV\n");
    for (int i = 0; i < int(frame.levels.size()); ++i) {
        const float level = frame.levels[i];
        csv += QString::number(frame.start + i * frame.step, 'f', 1) + QLatin1Char(',');
        if (std::isfinite(level))
            csv += QString::number(double(level), 'f', 2);
        csv += QLatin1Char('\n');
    }
    return csv;
}
