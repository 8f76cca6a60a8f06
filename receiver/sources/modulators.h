#pragma once

#include <memory>

#include "receiver/sources/emitters.h"
#include "receiver/sources/iqsource.h"

namespace Receiver {

// Makes one emitter's signal around 0 Hz at a rate of its own, with mean power 1 while it is on.
class Modulator
{
public:
    virtual ~Modulator() = default;

    // Samples first ... first + count - 1 of its own rate; `first` may be below 0. Called in order,
    // a gap is allowed.
    virtual void render(qint64 first, int count, Sample* samples) = 0;

    // Begins anew; the next samples are those of a new modulator.
    virtual void restart() {}
};

// How many bins of the scene's block transform the emitter takes, a power of two: its own rate is
// that share of the scene's.
int modulatorBins(EmitterKind kind);

// `rate` is the modulator's own, samples/s.
std::unique_ptr<Modulator> makeModulator(const SceneEmitter& emitter, double rate, quint64 seed);

// Sets the emitter's period and duty to what its modulator will send.
void describeModulation(SceneEmitter* emitter);

}  // namespace Receiver
