// What the receiver's signal side costs, in cores at 5 MS/s in real time: the built-in scene, the
// transform with the levels of 4 and of 32 channels, and both together as the driver runs them.

#include <QCoreApplication>
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <ctime>
#include <memory>
#include <vector>

#include "receiver/dsp/engine.h"
#include "receiver/sources/emitters.h"
#include "receiver/sources/opensource.h"

using namespace Receiver;

namespace {

constexpr double warmUpSeconds = 0.5;  // of signal; planning the transforms is over by then
constexpr double measuredSeconds = 3.0;
constexpr int repetitions = 5;

double cpuSeconds()
{
    timespec now{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
    return double(now.tv_sec) + double(now.tv_nsec) * 1e-9;
}

// Ends another source after the measured time and notes the processor time spent in between.
class Stretch : public IqSource
{
public:
    Stretch(std::unique_ptr<IqSource> source, double* cpu) : m_source(std::move(source)), m_cpu(cpu) {}

    QString name() const override { return m_source->name(); }
    double sampleRate() const override { return m_source->sampleRate(); }
    double center() const override { return m_source->center(); }

    std::size_t read(Sample* samples, std::size_t count) override
    {
        const auto warm = std::size_t(warmUpSeconds * sampleRate());
        const auto end = warm + std::size_t(measuredSeconds * sampleRate());
        if (m_at <= warm)
            m_began = cpuSeconds();
        else if (m_at >= end) {
            *m_cpu = cpuSeconds() - m_began;
            return 0;
        }
        // Not past the warm-up, so that the clock starts with a whole read.
        const std::size_t limit = m_at < warm ? warm - m_at : end - m_at;
        const std::size_t got = m_source->read(samples, std::min(count, limit));
        m_at += got;
        return got;
    }

private:
    std::unique_ptr<IqSource> m_source;
    double* m_cpu;
    double m_began = 0;
    std::size_t m_at = 0;
};

// Half a second of the scene over and over: costs a copy.
class Replay : public IqSource
{
public:
    Replay() : m_samples(2500000) { openScene(1)->read(m_samples.data(), m_samples.size()); }

    QString name() const override { return QStringLiteral("replay"); }
    double sampleRate() const override { return sceneSampleRate; }
    double center() const override { return sceneCenterDefault; }

    std::size_t read(Sample* samples, std::size_t count) override
    {
        const std::size_t step = std::min(count, m_samples.size() - m_at);
        std::copy_n(m_samples.data() + m_at, step, samples);
        m_at = (m_at + step) % m_samples.size();
        return step;
    }

private:
    std::vector<Sample> m_samples;
    std::size_t m_at = 0;
};

// Cores that the engine takes. Ends the program when a level is wrong: then it is no measurement.
double engineCores(std::unique_ptr<IqSource> source, int channels)
{
    double cpu = 0;
    Engine::Options options;
    options.loop = false;
    options.realTime = false;
    Engine engine(std::make_unique<Stretch>(std::move(source), &cpu), options);
    engine.setChannelCount(channels);
    engine.setChannel(0, 97.3e6, 500);
    for (int i = 1; i < channels; ++i)
        engine.setChannel(i, 96e6 + 4e6 * i / channels, i % 2 == 0 ? 15e3 : 250e3);
    float level = 0;
    bool ended = false;
    QObject::connect(&engine, &Engine::levelsReady, &engine,
                     [&](const Engine::Levels& levels) { level = levels.levels[0]; });
    QObject::connect(&engine, &Engine::ended, &engine, [&] { ended = true; });
    engine.start();
    while (!ended)
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    if (std::abs(level - 40.0F) > 0.3F) {
        std::fprintf(stderr, "the carrier measures %.2f instead of 40 dBuV\n", double(level));
        std::exit(1);
    }
    return cpu / measuredSeconds;
}

double renderCores()
{
    double cpu = 0;
    Stretch scene(openScene(1), &cpu);
    std::vector<Sample> samples(31250);
    while (scene.read(samples.data(), samples.size()) > 0) {
    }
    return cpu / measuredSeconds;
}

template <typename Run>
double median(Run run)
{
    std::vector<double> values;
    for (int i = 0; i < repetitions; ++i)
        values.push_back(run());
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

void tell(const char* name, double value, const char* bound, const char* sense)
{
    std::printf(
        "{\"name\": \"%s\", \"value\": %.4f, \"unit\": \"cores\", \"bound\": %s, \"sense\": \"%s\"}\n", name,
        value, bound, sense);
    std::fflush(stdout);
}

}  // namespace

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    tell("scene.render", median(renderCores), "null", "info");
    for (const int channels : {4, 32}) {
        char name[32];
        std::snprintf(name, sizeof name, "levels.%d", channels);
        tell(name, median([channels] { return engineCores(std::make_unique<Replay>(), channels); }), "null",
             "info");
    }
    tell("scene.core", median([] { return engineCores(openScene(1), 4); }), "0.5", "max");
    return 0;
}
