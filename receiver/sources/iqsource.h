#pragma once

#include <QString>
#include <complex>
#include <cstddef>
#include <cstdint>

namespace Receiver {

using Sample = std::complex<float>;  // full scale of the source is 1.0

// Where IQ comes from. Used by one thread at a time, the engine's.
class IqSource
{
public:
    virtual ~IqSource() = default;

    virtual QString name() const = 0;       // for people: "built-in scene 1", a file's name
    virtual double sampleRate() const = 0;  // samples/s, > 0
    virtual double center() const = 0;      // Hz, the frequency of 0 in the spectrum
    virtual double centerMinimum() const { return center(); }  // equal limits: it cannot be tuned
    virtual double centerMaximum() const { return center(); }
    virtual void setCenter(double) {}  // clamped to the limits

    // Reads up to `count` samples, as fast as they can be had. 0: the end, for good.
    virtual std::size_t read(Sample* samples, std::size_t count) = 0;

    // Begins again at the first sample. False: cannot.
    virtual bool rewind() { return false; }

    // Where an error of the source is told, empty while there is none.
    virtual QString error() const { return {}; }
};

}  // namespace Receiver
