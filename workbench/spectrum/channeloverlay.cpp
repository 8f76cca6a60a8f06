#include "spectrum/channeloverlay.h"

#include <QCoreApplication>
#include <QStringList>
#include <cmath>
#include <limits>

#include "spectrum/axisticks.h"
#include "spectrum/scantext.h"

namespace {

constexpr double nothing = std::numeric_limits<double>::quiet_NaN();
constexpr double bandwidthDigits = 0.0001;  // share of a bandwidth that its text shows at most

QString text(const char* source)
{
    return QCoreApplication::translate("ChannelOverlay", source);
}

// As short as it can be said: "150 kHz", "12.5 kHz".
QString shortText(double bandwidth)
{
    const QString whole = siText(bandwidth, bandwidth * bandwidthDigits, QStringLiteral("Hz"));
    QString number = whole.section(QLatin1Char(' '), 0, 0);
    if (number.contains(QLatin1Char('.'))) {
        while (number.endsWith(QLatin1Char('0')))
            number.chop(1);
        if (number.endsWith(QLatin1Char('.')))
            number.chop(1);
    }
    return number + QLatin1Char(' ') + whole.section(QLatin1Char(' '), 1);
}

}  // namespace

ChannelOverlay::ChannelOverlay(QWidget* noteHome, std::function<void()> changed)
    : frequency(noteHome, ScanValue::Number, changed),
      bandwidth(noteHome, ScanValue::Selection, changed),
      threshold(noteHome, ScanValue::Number, changed),
      colors(ColorItemMapAdapterPrivate::make(noteHome, changed)),
      m_center(noteHome, ScanValue::Number, changed),
      m_kept(nothing)
{}

ChannelOverlay::~ChannelOverlay()
{
    ColorItemMapAdapterPrivate::destroy(colors);
}

bool ChannelOverlay::bindCenter(const QString& path, bool follow)
{
    m_follow = follow;
    m_kept = nothing;
    return m_center.Bind(path);
}

double ChannelOverlay::center() const
{
    const double now = m_center.has() ? m_center.number() : frequency.number();
    if (m_follow)
        return now;
    if (std::isnan(m_kept))
        m_kept = now;
    return m_kept;
}

ScanChannel ChannelOverlay::drawn(double resolutionBandwidth) const
{
    ScanChannel channel;
    channel.visible = frequency.has();
    if (!channel.visible)
        return channel;
    channel.frequency = frequency.number();
    channel.center = center();
    channel.bandwidth = bandwidth.has() ? std::max(0.0, bandwidth.number()) : 0;
    const ColorItemMapAdapterPrivate* const map = ColorItemMapAdapterPrivate::of(colors);
    channel.color = map->passbandColor();
    QStringList parts;
    if (!map->demodulationText().isEmpty())
        parts << map->demodulationText();
    if (channel.bandwidth > 0)
        parts << shortText(channel.bandwidth);
    channel.text = parts.join(QLatin1Char(' '));
    channel.hasThreshold = threshold.has() && resolutionBandwidth > 0;
    if (channel.hasThreshold) {
        channel.thresholdLevel = threshold.number();
        channel.thresholdLine =
            ScanText::thresholdLine(channel.thresholdLevel, channel.bandwidth, resolutionBandwidth);
    }
    return channel;
}

double ChannelOverlay::thresholdOf(double line, double resolutionBandwidth) const
{
    const double width = bandwidth.has() ? std::max(0.0, bandwidth.number()) : 0;
    return line - ScanText::thresholdLine(0, width, resolutionBandwidth);
}

int ChannelOverlay::bandwidthKey() const
{
    const ValueSelection* const items = bandwidth.selection();
    return items ? items->GetCurrentKey() : -1;
}

int ChannelOverlay::bandwidthKeyNear(double width) const
{
    const ValueSelection* const items = bandwidth.selection();
    int key = -1;
    double least = std::numeric_limits<double>::infinity();
    for (int i = 0; items && i < items->GetCount(); ++i) {
        const SelectionItem item = items->GetItem(i);
        const double distance = std::fabs(item.GetNumber() - width);
        if (item.GetNumber() > 0 && distance < least) {
            least = distance;
            key = item.GetKey();
        }
    }
    return key;
}

int ChannelOverlay::bandwidthKeyBeside(int direction) const
{
    const ValueSelection* const items = bandwidth.selection();
    if (!items)
        return -1;
    const double now = items->GetCurrentNumber();
    int key = -1;
    double least = std::numeric_limits<double>::infinity();
    for (int i = 0; i < items->GetCount(); ++i) {
        const SelectionItem item = items->GetItem(i);
        const double distance = (item.GetNumber() - now) * direction;
        if (item.GetNumber() > 0 && distance > 0 && distance < least) {
            least = distance;
            key = item.GetKey();
        }
    }
    return key;
}

QString ChannelOverlay::words() const
{
    if (!frequency.has())
        return QString();
    QString words = text("Channel at %1").arg(ScanText::frequency(frequency.number(), 1));
    const QString passband = drawn(0).text;
    if (!passband.isEmpty())
        words += QStringLiteral(", ") + passband;
    if (threshold.has())
        words += QStringLiteral(", ") + text("squelch %1").arg(ScanText::level(threshold.number()));
    return words + QLatin1Char('.');
}
