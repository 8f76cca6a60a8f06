#pragma once

#include <QString>
#include <QVector>

namespace Receiver {

enum class EmitterKind
{
    Carrier,
    DriftingCarrier,
    FmBroadcast,
    NarrowFm,
    Am,
    Ssb,
    Cw,
    OnOffKeyed,
    Fsk,
    Ofdm,
    Pulsed,
    Hopping
};

// For people: "FM broadcast", "CW" ...
QString emitterKindName(EmitterKind kind);

// One emitter of the built-in scene, as it is on the air.
struct SceneEmitter
{
    EmitterKind kind = EmitterKind::Carrier;
    double frequency = 0;    // Hz, the middle of what it occupies
    double level = -60;      // dBFS, mean power while it is on, without the fading
    double bandwidth = 500;  // Hz, holds at least 98 % of its power
    double fadeDepth = 0;    // dB, the level moves up and down by this much; 0: steady
    double fadePeriod = 10;  // s
    double fadePhase = 0;    // rad
    double drift = 0;        // Hz, a drifting carrier moves up and down by this much
    double period = 0;       // s after which what it sends begins again; 0: never
    double duty = 1;         // mean power over a period, of that while it is on

    // dBFS at a time, s since the beginning of the scene, while it is on.
    double levelAt(double seconds) const;
};

// What openScene(seed) plays, in the order of frequency. Every seed has a steady FM station at
// 98.5 MHz with -24 dBFS and a steady carrier at 97.3 MHz with -40 dBFS; the others' frequencies,
// levels and fading differ from seed to seed. 13 of them lie between 96 and 100 MHz, a few more FM
// stations outside.
QVector<SceneEmitter> sceneEmitters(quint64 seed);

constexpr double sceneSampleRate = 5e6;       // samples/s
constexpr double sceneCenterDefault = 98e6;   // Hz
constexpr double sceneCenterMinimum = 88e6;   // Hz
constexpr double sceneCenterMaximum = 108e6;  // Hz
constexpr double sceneNoiseLevel = -62.0;     // dBFS, white, over the whole sample rate

}  // namespace Receiver
