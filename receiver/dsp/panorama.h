#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

#include "receiver/dsp/windowfunction.h"
#include "receiver/sources/iqsource.h"

namespace Receiver {

// What a panorama looks like.
struct PanoramaSettings
{
    double span = 0;    // Hz around the centre; 0: all that the source gives
    int points = 4096;  // of the transform, 64 to 131072, even; a narrow span holds 4/5 of them
    WindowFunction window = WindowFunction::BlackmanHarris;
    double frameRate = 30;  // frames per second of signal, 1 to 60

    bool operator==(const PanoramaSettings& other) const
    {
        return span == other.span && points == other.points && window == other.window &&
               frameRate == other.frameRate;
    }
    bool operator!=(const PanoramaSettings& other) const { return !(*this == other); }
};

// One picture of the spectrum. Levels in dBµV by the calibration given.
struct PanoramaFrame
{
    std::uint64_t sequence = 0;      // counts from 1
    std::int64_t time = 0;           // microseconds since 1970 of the last sample in it
    double start = 0;                // Hz, the middle of the first bin
    double step = 0;                 // Hz from bin to bin, > 0
    double resolutionBandwidth = 0;  // Hz, equivalent noise bandwidth of a bin
    std::vector<float> mean;         // power averaged over the frame's time
    std::vector<float> maximum;      // highest power of any transform in the frame; as many
};

// Makes frames out of a sample stream. Narrow spans are decimated first, so that the resolution
// really rises; when the span's transform needs more samples than a frame brings, transforms
// overlap, so that the frame rate is kept. Used by one thread at a time.
class Panorama
{
public:
    using Deliver = std::function<void(const PanoramaFrame&)>;

    // `fullScale`: dBµV of a complex tone of amplitude 1. Settings out of range are taken as the
    // nearest that is possible. Plans a transform (see Fourier).
    Panorama(double sampleRate, double fullScale, const PanoramaSettings& settings);
    ~Panorama();

    // How large a transform must be for `span` to hold at most `bins` of them: as large as possible,
    // but not longer than a second, so that a narrow picture still follows what happens.
    static int pointsFor(double sampleRate, double span, int bins);

    const PanoramaSettings& settings() const;  // as in use

    // The frequency in Hz of the middle of the band, from the next sample on. A new one throws away
    // the frame under way.
    void setCenter(double center);

    // The next samples do not follow on those before: the frame under way is thrown away.
    void restart();

    // `time`: microseconds since 1970 of the end of these samples.
    void process(const Sample* samples, std::size_t count, std::int64_t time, const Deliver& deliver);

private:
    struct Private;
    std::unique_ptr<Private> d;
};

}  // namespace Receiver
