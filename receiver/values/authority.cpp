#include "receiver/values/authority.h"

#include <algorithm>

namespace Receiver {

namespace {

using Link::AnswerKind;
using Link::Content;
using Link::ValueStatus;

const auto frequency = QStringLiteral("/Frequency");
const auto demodulation = QStringLiteral("/Demodulation");
const auto bandwidth = QStringLiteral("/Bandwidth");
const auto frequencyCoupled = QStringLiteral("/FrequencyCoupled");
const auto demodulationCoupled = QStringLiteral("/DemodulationCoupled");
const auto connectedClient = QStringLiteral("/ConnectedClient");
const auto recorderAvailable = QStringLiteral("/RECORDER/Available");
const auto channelRecording = QStringLiteral("/ChannelRecording");

const QStringList& recordingSwitches()
{
    static const QStringList suffixes = {QStringLiteral("/AudioRecording"), QStringLiteral("/IfRecording"),
                                         channelRecording};
    return suffixes;
}

WriteResult refused(const char* reason)
{
    return {AnswerKind::Refused, QString::fromUtf8(reason)};
}

WriteResult noRecorder()
{
    return refused("no recorder is available");
}

WriteResult noDirectionFinding()
{
    return refused("direction finding is not available with this source");
}

}  // namespace

Authority::Authority(ValueStore& store, const ReceiverSetup& setup)
    : m_store(store),
      m_setup(setup),
      m_paths(setup.devicePath),
      m_channels(setup.allChannels()),
      m_alive(std::make_shared<bool>(true))
{
    addDeviceRules();
    addCouplingRules();
    addRecordingRules();
    m_rules.insert(connectedClient, [this](const QString& channel, ClientId client, Content& content) {
        return claim(channel, client, std::get<QString>(content));
    });
    defineCatalogue(m_store, m_setup, [this](const QString& channel, const QString& suffix) {
        return authorityOf(channel, suffix);
    });
    connectReactions();
    m_store.addListener(this);

    const std::weak_ptr<bool> alive = m_alive;
    m_store.onClientGone([this, alive](ClientId client) {
        if (!alive.expired())
            clientGone(client);
    });
}

Authority::~Authority()
{
    m_store.removeListener(this);
}

// A value without a rule of its own takes whatever fits its type and limits.
ValueStore::Authority Authority::authorityOf(const QString& channel, const QString& suffix) const
{
    const auto rule = m_rules.constFind(suffix);
    if (rule == m_rules.constEnd())
        return {};
    const Rule decide = *rule;
    const std::weak_ptr<bool> alive = m_alive;
    return [decide, channel, alive](ClientId client, Content& content) {
        if (alive.expired())
            return refused("the driver is ending");
        return decide(channel, client, content);
    };
}

void Authority::addDeviceRules()
{
    m_rules.insert(QStringLiteral("/DRVCOMMANDS"), [this](const QString&, ClientId, Content& content) {
        switch (std::get<qint64>(content)) {
            case DriverCommand::directionFinding:
                return noDirectionFinding();
            case DriverCommand::replay:
                return hasRecorder() ? WriteResult() : noRecorder();
            case DriverCommand::switching:
                return refused("is announced by the driver, not asked for");
            default:
                return WriteResult();
        }
    });
    m_rules.insert(QStringLiteral("/DDF/DF_ENABLED"), [](const QString&, ClientId, Content& content) {
        return std::get<qint64>(content) == DirectionFindingSwitch::on ? noDirectionFinding() : WriteResult();
    });
    m_rules.insert(QStringLiteral("/RECORDREPLAY/MODE"), [this](const QString&, ClientId, Content& content) {
        const bool stops = std::get<qint64>(content) == RecordReplayMode::stop;
        return stops || hasRecorder() ? WriteResult() : noRecorder();
    });
    m_rules.insert(QStringLiteral("/COB/WriteDB"), [](const QString&, ClientId, Content& content) {
        return std::get<qint64>(content) == ActivityLogSwitch::on ? refused("no activity log is configured")
                                                                  : WriteResult();
    });
}

void Authority::addCouplingRules()
{
    const auto unlessCoupled = [this](const QString& coupling) -> Rule {
        return [this, coupling](const QString& channel, ClientId, Content&) {
            return m_store.flag(channelValue(channel, coupling)) ? refused("coupled to the main receiver")
                                                                 : WriteResult();
        };
    };
    m_rules.insert(frequency, unlessCoupled(frequencyCoupled));
    m_rules.insert(demodulation, unlessCoupled(demodulationCoupled));
    m_rules.insert(bandwidth, unlessCoupled(demodulationCoupled));

    const Rule notMain = [](const QString& channel, ClientId, Content& content) {
        const bool toItself = channel == Paths::mainChannel() && std::get<bool>(content);
        return toItself ? refused("MAIN is the main receiver itself") : WriteResult();
    };
    m_rules.insert(frequencyCoupled, notMain);
    m_rules.insert(demodulationCoupled, notMain);
}

void Authority::addRecordingRules()
{
    const Rule needsRecorder = [this](const QString&, ClientId, Content& content) {
        const bool stops = std::get<qint64>(content) == RecordSwitch::off;
        return stops || hasRecorder() ? WriteResult() : noRecorder();
    };
    for (const QString& suffix : recordingSwitches())
        m_rules.insert(suffix, needsRecorder);
    m_rules.insert(channelRecording,
                   [this, needsRecorder](const QString& channel, ClientId client, Content& content) {
                       const WriteResult result = needsRecorder(channel, client, content);
                       const bool stops = std::get<qint64>(content) == RecordSwitch::off;
                       if (result.kind == AnswerKind::Refused || stops || m_claims.isClaimed(channel))
                           return result;
                       return refused("the channel is not in use by a client");
                   });
}

// What follows which value.
void Authority::connectReactions()
{
    const QStringList demodulationSettings = {demodulation, bandwidth};
    m_reactions.insert(device(QStringLiteral("/FREQUENCY")), [this] { moveBand(); });
    m_reactions.insert(device(recorderAvailable), [this] {
        for (const QString& channel : m_channels)
            updateRecording(channel);
    });
    for (const QString& channel : m_channels) {
        const bool isMain = channel == Paths::mainChannel();
        m_reactions.insert(channelValue(channel, frequency), [this, channel, isMain] {
            const double hertz = m_store.number(channelValue(channel, frequency));
            m_store.set(channelValue(channel, QStringLiteral("/FREQUENCY")), hertz);
            if (isMain)
                followMain(frequencyCoupled, {frequency});
        });
        m_reactions.insert(channelValue(channel, connectedClient),
                           [this, channel] { updateRecording(channel); });
        if (isMain) {
            for (const QString& suffix : demodulationSettings) {
                m_reactions.insert(channelValue(channel, suffix),
                                   [this, suffix] { followMain(demodulationCoupled, {suffix}); });
            }
            continue;
        }
        m_reactions.insert(channelValue(channel, frequencyCoupled),
                           [this, channel] { follow(channel, frequencyCoupled, {frequency}); });
        m_reactions.insert(channelValue(channel, demodulationCoupled), [this, channel, demodulationSettings] {
            follow(channel, demodulationCoupled, demodulationSettings);
        });
    }
}

void Authority::valueChanged(ValueId id)
{
    const auto reaction = m_reactions.constFind(id);
    if (reaction != m_reactions.constEnd())
        (*reaction)();
}

ValueId Authority::device(const QString& suffix) const
{
    return m_store.find(m_paths.device(suffix));
}

ValueId Authority::channelValue(const QString& channel, const QString& suffix) const
{
    return m_store.find(m_paths.channel(channel, suffix));
}

bool Authority::hasRecorder() const
{
    return m_store.flag(device(recorderAvailable));
}

WriteResult Authority::claim(const QString& channel, ClientId client, const QString& text)
{
    const QString standing = m_store.text(channelValue(channel, connectedClient));
    return m_claims.decide(channel, client, text, standing);
}

void Authority::clientGone(ClientId client)
{
    for (const QString& channel : m_claims.release(client))
        m_store.set(channelValue(channel, connectedClient), QString());
}

// The channels' limits go with the centre. The main receiver's channel stays within them; the
// others keep the frequency that the operator chose, to have it again when the band comes back.
void Authority::moveBand()
{
    const double center = m_store.number(device(QStringLiteral("/FREQUENCY")));
    for (const QString& channel : m_channels) {
        const ValueId id = channelValue(channel, frequency);
        Link::Description description = m_store.description(id);
        description.minimum = m_setup.source.bandMinimum(center);
        description.maximum = m_setup.source.bandMaximum(center);
        m_store.describe(id, description);
        if (channel == Paths::mainChannel())
            m_store.set(id, std::clamp(m_store.number(id), description.minimum, description.maximum));
    }
}

// Takes over the main receiver's settings where the channel is coupled. Uncoupled it keeps them.
void Authority::follow(const QString& channel, const QString& coupling, const QStringList& suffixes)
{
    if (!m_store.flag(channelValue(channel, coupling)))
        return;
    for (const QString& suffix : suffixes) {
        m_store.set(channelValue(channel, suffix),
                    m_store.content(channelValue(Paths::mainChannel(), suffix)));
    }
}

void Authority::followMain(const QString& coupling, const QStringList& suffixes)
{
    for (const QString& channel : m_channels) {
        if (channel != Paths::mainChannel())
            follow(channel, coupling, suffixes);
    }
}

// A channel can be recorded while a client uses it and the recorder can serve. Without a recorder
// nothing is being recorded.
void Authority::updateRecording(const QString& channel)
{
    const bool recorder = hasRecorder();
    const bool claimed = !m_store.text(channelValue(channel, connectedClient)).isEmpty();
    m_store.set(channelValue(channel, QStringLiteral("/RecorderAvailable")), recorder);
    if (!recorder) {
        for (const QString& suffix : recordingSwitches())
            m_store.set(channelValue(channel, suffix), RecordSwitch::off);
    }
    m_store.setStatus(channelValue(channel, channelRecording),
                      recorder && claimed ? ValueStatus::Usable : ValueStatus::NotAvailable);
}

}  // namespace Receiver
