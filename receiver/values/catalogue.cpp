#include "receiver/values/catalogue.h"

#include <algorithm>
#include <cmath>

#include "receiver/values/quantity.h"

namespace Receiver {

namespace {

using Link::Content;
using Link::Item;
using Link::ValueKind;
using Items = QVector<Item>;

// What a row may depend on.
struct Facts
{
    const ReceiverSetup& setup;
    QString channel;  // empty: the device
    ChannelStart start;
};

struct Limits
{
    double minimum;
    double maximum;
};

// One line of the catalogue.
struct Row
{
    QString suffix;
    ValueKind kind;
    Content (*initial)(const Facts&);
    QString unit = QString();
    Limits (*limits)(const Facts&) = nullptr;
    Items (*items)(const Facts&) = nullptr;
    double step = 0;
    int precision = -1;
    bool writable = true;
    bool event = false;
    Link::ValueStatus status = Link::ValueStatus::Usable;

    Row& in(const char* text)
    {
        unit = QString::fromUtf8(text);
        return *this;
    }
    Row& within(Limits (*function)(const Facts&))
    {
        limits = function;
        return *this;
    }
    Row& oneOf(Items (*function)(const Facts&))
    {
        items = function;
        return *this;
    }
    Row& stepped(double by, int decimals)
    {
        step = by;
        precision = decimals;
        return *this;
    }
    Row& readOnly()
    {
        writable = false;
        return *this;
    }
    Row& asEvent()
    {
        event = true;
        return *this;
    }
    Row& notAvailable()
    {
        status = Link::ValueStatus::NotAvailable;
        return *this;
    }
};

Row row(const char* suffix, ValueKind kind, Content (*initial)(const Facts&))
{
    return Row{QString::fromLatin1(suffix), kind, initial};
}

// --- contents that many rows share ---

Content off(const Facts&)
{
    return false;
}

Content zero(const Facts&)
{
    return 0.0;
}

Content firstKey(const Facts&)
{
    return qint64(0);
}

Content emptyText(const Facts&)
{
    return QString();
}

Content notRecording(const Facts&)
{
    return RecordSwitch::off;
}

// --- limits ---

Limits tuning(const Facts& facts)
{
    return {facts.setup.source.centerMinimum, facts.setup.source.centerMaximum};
}

Limits band(const Facts& facts)
{
    const SourceFacts& source = facts.setup.source;
    return {source.bandMinimum(source.center), source.bandMaximum(source.center)};
}

Limits levelRange(const Facts&)
{
    return {-60, 140};
}

Limits circle(const Facts&)
{
    return {0, 360};
}

Limits percent(const Facts&)
{
    return {0, 100};
}

Limits balance(const Facts&)
{
    return {-1, 1};  // left to right
}

// --- items ---

Items numbered(std::initializer_list<const char*> texts)
{
    Items items;
    for (const char* text : texts)
        items.append({qint64(items.size()), QString::fromUtf8(text), 0});
    return items;
}

Items quantities(std::initializer_list<double> numbers, const QString& unit)
{
    Items items;
    for (const double number : numbers)
        items.append({qint64(items.size()), quantityText(number, unit), number});
    return items;
}

Items onOff(const Facts&)
{
    return numbered({"On", "Off"});
}

Items driverCommands(const Facts&)
{
    return {{DriverCommand::stop, QStringLiteral("Stop"), 0},
            {DriverCommand::fixedFrequency, QStringLiteral("FFM"), 0},
            {DriverCommand::directionFinding, QStringLiteral("DF"), 0},
            {DriverCommand::replay, QStringLiteral("Replay"), 0},
            {DriverCommand::switching, QStringLiteral("Switching"), 0}};
}

Items spans(const Facts& facts)
{
    return spanItems(facts.setup.source.sampleRate);
}

Items bandwidths(const Facts& facts)
{
    return bandwidthItems(facts.setup.source.sampleRate);
}

// The smallest bandwidth that is not below the wanted one, else the largest.
Content startBandwidth(const Facts& facts)
{
    const Items items = bandwidths(facts);
    for (const Item& item : items) {
        if (item.number >= facts.start.bandwidth)
            return item.key;
    }
    return items.last().key;
}

Content startFrequency(const Facts& facts)
{
    const Limits limits = band(facts);
    return std::clamp(facts.start.frequency, limits.minimum, limits.maximum);
}

// --- the tables ---

QVector<Row> deviceRows()
{
    return {
        row("/DEVICE_CAPTION", ValueKind::Text, [](const Facts& f) { return Content(f.setup.caption); })
            .readOnly(),
        row("/FREQUENCY", ValueKind::Float, [](const Facts& f) { return Content(f.setup.source.center); })
            .in("Hz")
            .within(tuning)
            .stepped(1e3, 0),
        row("/IFPANSPAN", ValueKind::Selection, firstKey).in("Hz").oneOf(spans),
        row("/IFMAPPING", ValueKind::Selection, firstKey).oneOf([](const Facts&) {
            return numbered({"Peak", "Average", "Sample"});
        }),
        row("/DRVCOMMANDS", ValueKind::Selection,
            [](const Facts&) { return Content(DriverCommand::fixedFrequency); })
            .oneOf(driverCommands),

        row("/DDF/DF_ENABLED", ValueKind::Selection, firstKey).oneOf([](const Facts&) {
            return numbered({"OFF", "ON"});
        }),
        row("/DDF/DFMODE", ValueKind::Selection, firstKey).oneOf([](const Facts&) {
            return numbered({"Normal", "Continuous", "Gated"});
        }),
        row("/DDF/DFBANDWIDTHS", ValueKind::Selection, [](const Facts&) { return Content(qint64(3)); })
            .in("Hz")
            .oneOf([](const Facts&) {
                return quantities({1e3, 2.5e3, 5e3, 8e3, 15e3, 30e3, 50e3, 120e3}, QStringLiteral("Hz"));
            }),
        row("/DDF/DFMEASTIME", ValueKind::Selection, [](const Facts&) { return Content(qint64(3)); })
            .in("s")
            .oneOf([](const Facts&) {
                return quantities({0.01, 0.02, 0.05, 0.1, 0.2, 0.5, 1, 2, 5}, QStringLiteral("s"));
            }),
        row("/DDF/QUALITYTHRESHOLD", ValueKind::Float, [](const Facts&) { return Content(50.0); })
            .in("%")
            .within(percent)
            .stepped(1, 0),
        row("/DDF/DFFIELDSTRENGTHAVAILABLE", ValueKind::Bool, off).readOnly(),
        row("/COMPASS/COMPASSVALUE", ValueKind::Float, zero).in("°").within(circle).stepped(1, 1),

        row("/SOURCE/State", ValueKind::Text, [](const Facts&) { return Content(QString("missing")); })
            .readOnly(),
        // Gain belongs to hardware: its driver says the limits and lets it be set.
        row("/SOURCE/Gain", ValueKind::Float, zero).in("dB").stepped(1, 1).readOnly().notAvailable(),
        row("/SOURCE/SampleRate", ValueKind::Float,
            [](const Facts& f) { return Content(f.setup.source.sampleRate); })
            .in("S/s")
            .readOnly(),
        row("/SOURCE/Overflows", ValueKind::Integer, [](const Facts&) { return Content(qint64(0)); })
            .readOnly(),

        row("/RECORDER/Available", ValueKind::Bool, off).readOnly(),
        row("/RECORDREPLAY/MODE", ValueKind::Selection, firstKey).oneOf([](const Facts&) {
            return numbered({"Stop", "Record", "Replay", "Pause"});
        }),
        row("/RECORDREPLAY/SOURCE", ValueKind::Selection, firstKey).oneOf([](const Facts&) {
            return numbered({"IF", "Audio", "IF + Audio"});
        }),

        row("/AUDIO/AUDIOMODE", ValueKind::Selection, firstKey).in("S/s").oneOf([](const Facts&) {
            return Items{{0, QStringLiteral("None"), 0},
                         {1, QStringLiteral("8 kS/s"), 8e3},
                         {2, QStringLiteral("16 kS/s"), 16e3},
                         {3, QStringLiteral("32 kS/s"), 32e3},
                         {4, QStringLiteral("48 kS/s"), 48e3}};
        }),
        row("/AUDIO/CHANNELMUTE", ValueKind::Selection, [](const Facts&) { return Content(qint64(1)); })
            .oneOf(onOff),
        row("/AUDIO/AUDRECORDVALID", ValueKind::Bool, off),
    };
}

QVector<Row> channelRows()
{
    return {
        row("/Frequency", ValueKind::Float, startFrequency).in("Hz").within(band).stepped(100, 0),
        row("/FREQUENCY", ValueKind::Float, startFrequency).in("Hz").stepped(0, 0).readOnly(),
        row("/Demodulation", ValueKind::Selection,
            [](const Facts& f) { return Content(f.start.demodulation); })
            .oneOf([](const Facts&) {
                return numbered({"AM", "FM", "USB", "LSB", "CW", "IQ"});
            }),
        row("/Bandwidth", ValueKind::Selection, startBandwidth).in("Hz").oneOf(bandwidths),
        row("/LevelValue", ValueKind::Float, zero).in("dBµV").stepped(0, 1).readOnly().notAvailable(),
        row("/SquelchState", ValueKind::Bool, off),
        row("/SquelchValue", ValueKind::Float, [](const Facts&) { return Content(20.0); })
            .in("dBµV")
            .within(levelRange)
            .stepped(1, 1),
        row("/SquelchOpen", ValueKind::Bool, [](const Facts&) { return Content(true); }).readOnly().asEvent(),
        row("/FrequencyCoupled", ValueKind::Bool, off),
        row("/DemodulationCoupled", ValueKind::Bool, off),
        row("/AudioMute", ValueKind::Bool, off),
        row("/AudioMode", ValueKind::Bool, off),
        row("/AudioBalance", ValueKind::Float, zero).within(balance).stepped(0.1, 2),
        row("/AudioRecording", ValueKind::Selection, notRecording).oneOf(onOff),
        row("/IfRecording", ValueKind::Selection, notRecording).oneOf(onOff),
        row("/ChannelRecording", ValueKind::Selection, notRecording).oneOf(onOff).notAvailable(),
        row("/RecorderAvailable", ValueKind::Bool, off).readOnly(),
        row("/COB/WriteDB", ValueKind::Selection, firstKey).oneOf([](const Facts&) {
            return numbered({"Off", "On"});
        }),
        row("/ConnectedClient", ValueKind::Text, emptyText),
        row("/ConnectMapView", ValueKind::Bool, off),
        row("/BEARINGRESULT", ValueKind::Bearing, [](const Facts&) { return Content(QByteArray()); })
            .readOnly()
            .asEvent()
            .notAvailable(),
    };
}

QVector<Row> pulseRows()
{
    return {
        row("/DDCMode", ValueKind::Selection, firstKey).oneOf([](const Facts&) {
            return numbered({"Off", "Pulse analysis"});
        }),
        row("/PDWPath", ValueKind::Text, emptyText),
        row("/HandoverPath", ValueKind::Text, emptyText),
    };
}

void defineRow(ValueStore& store, const Row& row, const QString& root, const Facts& facts,
               const AuthorityFor& authorityFor)
{
    Link::Description description;
    description.path = root + row.suffix;
    description.kind = row.kind;
    description.unit = row.unit;
    description.step = row.step;
    description.precision = row.precision;
    description.writable = row.writable;
    description.event = row.event;
    if (row.limits) {
        const Limits limits = row.limits(facts);
        description.hasLimits = true;
        description.minimum = limits.minimum;
        description.maximum = limits.maximum;
    }
    if (row.items)
        description.items = row.items(facts);
    const ValueId id = store.define(description, row.initial(facts), authorityFor(facts.channel, row.suffix));
    store.setStatus(id, row.status);
}

}  // namespace

ChannelStart ReceiverSetup::start(const QString& channel) const
{
    ChannelStart atCenter;
    atCenter.frequency = source.center;
    return starts.value(channel, atCenter);
}

QVector<Link::Item> bandwidthItems(double sampleRate)
{
    const Items all = quantities({150,  200,  300,  500,   1e3,   2.4e3, 3.1e3, 6e3, 9e3, 12e3,
                                  15e3, 30e3, 50e3, 120e3, 150e3, 250e3, 500e3, 1e6, 2e6, 5e6},
                                 QStringLiteral("Hz"));
    Items possible;
    for (const Item& item : all) {
        if (item.number <= sampleRate || possible.isEmpty())
            possible.append(item);
    }
    return possible;
}

QVector<Link::Item> spanItems(double sampleRate)
{
    constexpr double usablePart = 1 / 1.25;  // of the band; the rest are edges
    constexpr double smallest = 1e3;         // Hz
    const QString unit = QStringLiteral("Hz");

    const double widest = std::max(1.0, std::floor(sampleRate * usablePart));
    Items items{{0, quantityText(widest, unit), widest}};
    for (double decade = std::pow(10, std::floor(std::log10(widest))); decade >= smallest; decade /= 10) {
        for (const double digit : {5.0, 2.0, 1.0}) {
            const double span = std::round(digit * decade);
            if (span < widest)
                items.append({qint64(items.size()), quantityText(span, unit), span});
        }
    }
    return items;
}

void defineCatalogue(ValueStore& store, const ReceiverSetup& setup, const AuthorityFor& authorityFor)
{
    const Paths paths(setup.devicePath);
    const Facts device{setup, QString(), ChannelStart()};
    for (const Row& row : deviceRows())
        defineRow(store, row, paths.device(), device, authorityFor);

    for (const QString& channel : setup.allChannels()) {
        const Facts facts{setup, channel, setup.start(channel)};
        QVector<Row> rows = channelRows();
        if (setup.pulseChannels.contains(channel))
            rows += pulseRows();
        for (const Row& row : rows)
            defineRow(store, row, paths.channel(channel), facts, authorityFor);
    }
}

}  // namespace Receiver
