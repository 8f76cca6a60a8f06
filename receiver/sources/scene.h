#pragma once

#include <memory>
#include <vector>

#include "receiver/dsp/fourier.h"
#include "receiver/sources/emitters.h"
#include "receiver/sources/iqsource.h"
#include "receiver/sources/modulators.h"
#include "receiver/sources/noisetable.h"

namespace Receiver {

// The built-in scene. Every emitter is made at a low rate of its own; block by block its spectrum
// is laid into the bins where it belongs, one inverse transform makes the samples of all of them,
// and half-overlapping blocks are added. So the price hardly grows with the number of emitters.
class Scene : public IqSource
{
public:
    explicit Scene(quint64 seed);
    ~Scene() override;

    QString name() const override;
    double sampleRate() const override { return sceneSampleRate; }
    double center() const override { return m_center; }
    double centerMinimum() const override { return sceneCenterMinimum; }
    double centerMaximum() const override { return sceneCenterMaximum; }
    void setCenter(double hertz) override;  // from the next block (1.6 ms) on
    std::size_t read(Sample* samples, std::size_t count) override;
    bool rewind() override;

    static constexpr int blockBins = 16384;
    static constexpr int hopSamples = blockBins / 2;

private:
    struct Voice;

    void restart();
    void renderBlock();  // fills m_ready
    void layIn(Voice& voice);
    double timeOfBlock() const;

    quint64 m_seed;
    double m_center = sceneCenterDefault;
    std::vector<std::unique_ptr<Voice>> m_voices;
    NoiseTable m_noise;
    Fourier m_inverse;
    std::vector<Sample> m_tail;   // second half of the block before
    std::vector<Sample> m_ready;  // samples to be read
    std::size_t m_taken = 0;      // of m_ready
    qint64 m_block = 0;           // the next block; -1 only fills the tail
};

}  // namespace Receiver
