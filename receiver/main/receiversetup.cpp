#include "receiver/main/receiversetup.h"

#include <cmath>

#include "receiver/sources/emitters.h"

namespace Receiver {

namespace {

const auto pulseChannel = QStringLiteral("DDC4");

struct KindRow
{
    EmitterKind kind;
    qint64 demodulation;
    double bandwidth;  // Hz; 0: the emitter's own
};

const KindRow kindRows[] = {
    {EmitterKind::FmBroadcast, Demodulation::fm, 150e3},
    {EmitterKind::NarrowFm, Demodulation::fm, 15e3},
    {EmitterKind::Carrier, Demodulation::cw, 0},
    {EmitterKind::DriftingCarrier, Demodulation::cw, 0},
    {EmitterKind::Am, Demodulation::am, 9e3},
    {EmitterKind::Ssb, Demodulation::usb, 3.1e3},
    {EmitterKind::Cw, Demodulation::cw, 0},
    {EmitterKind::OnOffKeyed, Demodulation::am, 0},
    {EmitterKind::Fsk, Demodulation::fm, 0},
    {EmitterKind::Ofdm, Demodulation::iq, 0},
    {EmitterKind::Pulsed, Demodulation::iq, 0},
    {EmitterKind::Hopping, Demodulation::iq, 0},
};

// In which order channels are laid on emitters: what shows the most first. The fourth channel does
// pulse analysis.
constexpr EmitterKind preferredKinds[] = {EmitterKind::FmBroadcast, EmitterKind::Carrier, EmitterKind::Am,
                                          EmitterKind::Pulsed};

ChannelStart startOn(const SceneEmitter& emitter)
{
    ChannelStart start;
    start.frequency = std::round(emitter.frequency);
    start.bandwidth = emitter.bandwidth;
    for (const KindRow& row : kindRows) {
        if (row.kind != emitter.kind)
            continue;
        start.demodulation = row.demodulation;
        if (row.bandwidth > 0)
            start.bandwidth = row.bandwidth;
    }
    return start;
}

// The emitters that can be heard around the centre, the preferred kinds first and the loudest of a
// kind first, then the others by frequency.
QVector<SceneEmitter> inOrderOfInterest(const SourceFacts& source, quint64 seed)
{
    QVector<SceneEmitter> left;
    for (const SceneEmitter& emitter : sceneEmitters(seed)) {
        const double usable = source.sampleRate / 2 - emitter.bandwidth / 2;
        if (std::abs(emitter.frequency - source.center) < usable)
            left.append(emitter);
    }
    QVector<SceneEmitter> ordered;
    for (const EmitterKind kind : preferredKinds) {
        int loudest = -1;
        for (int i = 0; i < left.size(); ++i) {
            if (left[i].kind == kind && (loudest < 0 || left[i].level > left[loudest].level))
                loudest = i;
        }
        if (loudest >= 0)
            ordered.append(left.takeAt(loudest));
    }
    return ordered + left;
}

void standOnEmitters(ReceiverSetup& setup, quint64 seed)
{
    const QVector<SceneEmitter> emitters = inOrderOfInterest(setup.source, seed);
    if (emitters.isEmpty())
        return;
    for (int i = 0; i < setup.channels.size(); ++i)
        setup.starts.insert(setup.channels[i], startOn(emitters[i % emitters.size()]));
    setup.starts.insert(Paths::mainChannel(), startOn(emitters.first()));
}

}  // namespace

ReceiverSetup receiverSetup(const DriverOptions& options, const IqSource& source)
{
    ReceiverSetup setup;
    setup.devicePath = options.devicePath;
    setup.caption = options.caption;
    setup.channels = Paths::channelNames(options.channels);
    setup.pulseChannels.clear();
    if (setup.channels.contains(pulseChannel))
        setup.pulseChannels.append(pulseChannel);
    setup.source = {source.sampleRate(), source.center(), source.centerMinimum(), source.centerMaximum()};
    if (options.recordingFile.isEmpty())
        standOnEmitters(setup, options.seed);
    return setup;
}

}  // namespace Receiver
