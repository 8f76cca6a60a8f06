#pragma once

#include <QHash>
#include <QString>
#include <QStringList>
#include <functional>

#include "receiver/values/paths.h"
#include "receiver/values/valuestore.h"

// The values that the driver offers, one table for the device and one for each channel: type,
// unit, limits, items, access and what stands at the start. Frequencies and bandwidths are in Hz,
// levels in dBµV, angles in degrees.
namespace Receiver {

// Keys of the selections that the driver itself acts on.
namespace DriverCommand {
constexpr qint64 stop = 0;
constexpr qint64 fixedFrequency = 1;
constexpr qint64 directionFinding = 2;
constexpr qint64 replay = 3;
constexpr qint64 switching = 14;  // a mode change under way, announced by the driver only
}  // namespace DriverCommand

namespace RecordSwitch {
constexpr qint64 on = 0;
constexpr qint64 off = 1;
}  // namespace RecordSwitch

namespace DirectionFindingSwitch {
constexpr qint64 off = 0;
constexpr qint64 on = 1;
}  // namespace DirectionFindingSwitch

namespace ActivityLogSwitch {
constexpr qint64 off = 0;
constexpr qint64 on = 1;
}  // namespace ActivityLogSwitch

namespace RecordReplayMode {
constexpr qint64 stop = 0;
constexpr qint64 record = 1;
constexpr qint64 replay = 2;
constexpr qint64 pause = 3;
}  // namespace RecordReplayMode

namespace Demodulation {
constexpr qint64 am = 0;
constexpr qint64 fm = 1;
constexpr qint64 usb = 2;
constexpr qint64 lsb = 3;
constexpr qint64 cw = 4;
constexpr qint64 iq = 5;
}  // namespace Demodulation

// What the values need to know of the source.
struct SourceFacts
{
    double sampleRate = 0;  // samples/s
    double center = 0;      // Hz
    double centerMinimum = 0;
    double centerMaximum = 0;

    // A channel is cut out of the source's stream: what it can reach around a centre.
    double bandMinimum(double around) const { return around - sampleRate / 2; }
    double bandMaximum(double around) const { return around + sampleRate / 2; }
};

// What a channel is tuned to at the start.
struct ChannelStart
{
    double frequency = 0;  // Hz
    qint64 demodulation = Demodulation::am;
    double bandwidth = 9e3;  // Hz; the next larger that the source can give, else its largest
};

struct ReceiverSetup
{
    QString devicePath = QStringLiteral("/RX1");
    QString caption = QStringLiteral("RX1");
    QStringList channels = Paths::channelNames(4);         // without MAIN
    QStringList pulseChannels = {QStringLiteral("DDC4")};  // those with pulse analysis
    SourceFacts source;
    QHash<QString, ChannelStart> starts;  // by channel name; without: at the centre

    QStringList allChannels() const { return channels + QStringList(Paths::mainChannel()); }
    ChannelStart start(const QString& channel) const;
};

// Gives the authority of a value; `channel` is empty for a value of the device. An empty authority
// accepts whatever fits type, limits and access.
using AuthorityFor = std::function<ValueStore::Authority(const QString& channel, const QString& suffix)>;

// Defines all values of the setup: the device's, then each channel's, MAIN last.
void defineCatalogue(ValueStore& store, const ReceiverSetup& setup, const AuthorityFor& authorityFor);

// The bandwidths up to the source's rate; keys are the same for every source.
QVector<Link::Item> bandwidthItems(double sampleRate);

// The spans that the source can give: the part of its band that is free of the edges of its
// filters, then downwards in 1-2-5 steps.
QVector<Link::Item> spanItems(double sampleRate);

}  // namespace Receiver
