#include "receiver/sources/emitters.h"

#include <cmath>

#include "receiver/sources/modulators.h"
#include "receiver/sources/noisetable.h"

namespace Receiver {

namespace {

constexpr double pi = 3.14159265358979323846;

struct EmitterRow
{
    EmitterKind kind;
    double frequency;  // Hz
    double spread;     // Hz, a seed moves it up or down by at most this much
    double level;      // dBFS
    double bandwidth;  // Hz
    bool steady;       // the same for every seed, without fading
};

const EmitterRow emitterRows[] = {
    {EmitterKind::FmBroadcast, 89.3e6, 0, -34, 180e3, false},
    {EmitterKind::FmBroadcast, 92.1e6, 0, -41, 180e3, false},
    {EmitterKind::FmBroadcast, 94.4e6, 0, -30, 180e3, false},
    {EmitterKind::FmBroadcast, 96.4e6, 0, -38, 180e3, false},
    {EmitterKind::Hopping, 96.8e6, 20e3, -44, 240e3, false},
    {EmitterKind::NarrowFm, 97.0625e6, 12.5e3, -46, 16e3, false},
    {EmitterKind::Carrier, 97.3e6, 0, -40, 500, true},
    {EmitterKind::Am, 97.54e6, 5e3, -42, 5e3, false},
    {EmitterKind::Ssb, 97.62e6, 2e3, -50, 3e3, false},
    {EmitterKind::Cw, 97.7e6, 1e3, -52, 500, false},
    {EmitterKind::OnOffKeyed, 97.92e6, 8e3, -45, 20e3, false},
    {EmitterKind::Fsk, 98.08e6, 8e3, -48, 20e3, false},
    {EmitterKind::FmBroadcast, 98.5e6, 0, -24, 180e3, true},
    {EmitterKind::DriftingCarrier, 98.76e6, 10e3, -47, 6e3, false},
    {EmitterKind::Ofdm, 99.2e6, 20e3, -33, 420e3, false},
    {EmitterKind::Pulsed, 99.75e6, 20e3, -32, 300e3, false},
    {EmitterKind::FmBroadcast, 102.7e6, 0, -28, 180e3, false},
    {EmitterKind::FmBroadcast, 105.9e6, 0, -36, 180e3, false},
};

}  // namespace

QString emitterKindName(EmitterKind kind)
{
    static const struct
    {
        EmitterKind kind;
        const char* name;
    } rows[] = {{EmitterKind::Carrier, "carrier"},
                {EmitterKind::DriftingCarrier, "drifting carrier"},
                {EmitterKind::FmBroadcast, "FM broadcast"},
                {EmitterKind::NarrowFm, "narrow FM"},
                {EmitterKind::Am, "AM"},
                {EmitterKind::Ssb, "SSB"},
                {EmitterKind::Cw, "CW"},
                {EmitterKind::OnOffKeyed, "on-off keyed"},
                {EmitterKind::Fsk, "FSK"},
                {EmitterKind::Ofdm, "OFDM"},
                {EmitterKind::Pulsed, "pulsed"},
                {EmitterKind::Hopping, "hopping"}};
    for (const auto& row : rows)
        if (row.kind == kind)
            return QLatin1String(row.name);
    return {};
}

double SceneEmitter::levelAt(double seconds) const
{
    return level + fadeDepth * std::sin(2 * pi * seconds / fadePeriod + fadePhase);
}

QVector<SceneEmitter> sceneEmitters(quint64 seed)
{
    QVector<SceneEmitter> emitters;
    quint64 number = 0;
    for (const EmitterRow& row : emitterRows) {
        Random random(Random::hash(seed, 3000 + number++));
        SceneEmitter emitter;
        emitter.kind = row.kind;
        emitter.bandwidth = row.bandwidth;
        emitter.frequency = row.frequency + random.between(-row.spread, row.spread);
        emitter.level = row.level;
        if (!row.steady) {
            emitter.level += random.between(-2.0, 2.0);
            emitter.fadeDepth = random.between(1.0, 4.0);
            emitter.fadePeriod = random.between(8.0, 25.0);
            emitter.fadePhase = random.between(0.0, 2 * pi);
        }
        if (row.kind == EmitterKind::DriftingCarrier)
            emitter.drift = 2e3;
        describeModulation(&emitter);
        emitters.append(emitter);
    }
    return emitters;
}

}  // namespace Receiver
