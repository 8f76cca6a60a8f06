#include "receiver/sources/scene.h"

#include <volk/volk.h>

#include <algorithm>
#include <cmath>

#include "receiver/sources/opensource.h"

namespace Receiver {

namespace {

constexpr double pi = 3.14159265358979323846;
constexpr double binHertz = sceneSampleRate / Scene::blockBins;

float amplitudeOf(double decibels)
{
    return float(std::pow(10.0, decibels / 20.0));
}

}  // namespace

// An emitter at work.
struct Scene::Voice
{
    Voice(const SceneEmitter& what, quint64 seed)
        : emitter(what),
          bins(modulatorBins(what.kind)),
          modulator(makeModulator(emitter, binHertz * bins, seed)),
          forward(bins, Fourier::Forward),
          rendered(std::size_t(bins)),
          window(std::size_t(bins))
    {
        // The window's halves add up to one. The transforms' factor goes in here as well.
        for (int i = 0; i < bins; ++i)
            window[std::size_t(i)] = float((0.5 - 0.5 * std::cos(2 * pi * i / bins)) / bins);
    }

    // Moves the rest that is finer than a bin; the phase runs on from block to block.
    void turn(Sample* samples, int count, double hertz)
    {
        const double step = 2 * pi * hertz / (binHertz * bins);
        const Sample increment(float(std::cos(step)), float(std::sin(step)));
        volk_32fc_s32fc_x2_rotator_32fc(samples, samples, increment, &phase,
                                        static_cast<unsigned int>(count));
        phase /= std::abs(phase);
    }

    SceneEmitter emitter;
    int bins;
    std::unique_ptr<Modulator> modulator;
    Fourier forward;
    std::vector<Sample> rendered;  // of the block: the older half, the newer half
    std::vector<float> window;
    Sample phase{1.0F, 0.0F};
};

Scene::Scene(quint64 seed)
    : m_seed(seed),
      m_noise(Random::hash(seed, 1000), std::pow(10.0, sceneNoiseLevel / 10.0)),
      m_inverse(blockBins, Fourier::Backward),
      m_tail(hopSamples),
      m_ready(hopSamples)
{
    quint64 number = 0;
    for (const SceneEmitter& emitter : sceneEmitters(seed))
        m_voices.push_back(std::make_unique<Voice>(emitter, Random::hash(seed, 2000 + number++)));
    restart();
}

Scene::~Scene() = default;

QString Scene::name() const
{
    return QStringLiteral("built-in scene %1").arg(m_seed);
}

void Scene::setCenter(double hertz)
{
    if (std::isfinite(hertz))
        m_center = std::clamp(hertz, sceneCenterMinimum, sceneCenterMaximum);
}

bool Scene::rewind()
{
    restart();
    return true;
}

void Scene::restart()
{
    for (auto& voice : m_voices) {
        voice->modulator->restart();
        voice->phase = Sample(1.0F, 0.0F);
        const int half = voice->bins / 2;
        voice->modulator->render(-half, half, voice->rendered.data() + half);
    }
    m_block = -1;
    std::fill(m_tail.begin(), m_tail.end(), Sample());
    renderBlock();
    m_taken = m_ready.size();  // block -1 made the tail only
}

double Scene::timeOfBlock() const
{
    return double(m_block + 1) * hopSamples / sceneSampleRate;  // its middle
}

void Scene::layIn(Voice& voice)
{
    const double offset = voice.emitter.frequency - m_center;
    const int middle = int(std::lround(offset / binHertz));
    const int half = voice.bins / 2;
    const int low = std::max(-half, -blockBins / 2 - middle);
    const int high = std::min(half, blockBins / 2 - middle);
    if (low >= high)
        return;  // wholly outside what is received
    Sample* newer = voice.rendered.data() + half;
    std::copy(newer, newer + half, voice.rendered.data());
    voice.modulator->render((m_block + 1) * half, half, newer);
    voice.turn(newer, half, offset - middle * binHertz);
    volk_32fc_32f_multiply_32fc(voice.forward.input(), voice.rendered.data(), voice.window.data(),
                                static_cast<unsigned int>(voice.bins));
    voice.forward.run();
    // A bin's phase at the beginning of a block: half a block turns odd bins by half a turn.
    const bool odd = ((m_block & 1) != 0) && ((middle & 1) != 0);
    const float gain = amplitudeOf(voice.emitter.levelAt(timeOfBlock())) * (odd ? -1.0F : 1.0F);
    const Sample* from = voice.forward.output();
    Sample* to = m_inverse.input();
    for (int bin = low; bin < high; ++bin)
        to[(middle + bin) & (blockBins - 1)] += gain * from[bin & (voice.bins - 1)];
}

void Scene::renderBlock()
{
    std::fill(m_inverse.input(), m_inverse.input() + blockBins, Sample());
    for (auto& voice : m_voices)
        layIn(*voice);
    m_inverse.run();
    const Sample* made = m_inverse.output();
    volk_32f_x2_add_32f(reinterpret_cast<float*>(m_ready.data()), reinterpret_cast<const float*>(made),
                        reinterpret_cast<const float*>(m_tail.data()), 2 * hopSamples);
    m_noise.addTo(m_ready.data(), m_ready.size(), quint64(m_block));
    std::copy(made + hopSamples, made + blockBins, m_tail.begin());
    ++m_block;
    m_taken = 0;
}

std::size_t Scene::read(Sample* samples, std::size_t count)
{
    std::size_t have = 0;
    while (have < count) {
        if (m_taken == m_ready.size())
            renderBlock();
        const std::size_t step = std::min(count - have, m_ready.size() - m_taken);
        std::copy_n(m_ready.data() + m_taken, step, samples + have);
        m_taken += step;
        have += step;
    }
    return have;
}

std::unique_ptr<IqSource> openScene(quint64 seed)
{
    return std::make_unique<Scene>(seed);
}

}  // namespace Receiver
