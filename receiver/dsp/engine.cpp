#include "receiver/dsp/engine.h"

#include <algorithm>
#include <cmath>
#include <thread>
#include <utility>

#include "receiver/dsp/engineworker.h"

namespace Receiver {

namespace {
constexpr int channelsMaximum = 4096;
}

struct Engine::Private
{
    Private(std::unique_ptr<IqSource> what, const Options& how)
        : source(std::move(what)),
          options(how),
          rate(source->sampleRate()),
          center(source->center()),
          minimum(source->centerMinimum()),
          maximum(source->centerMaximum()),
          name(source->name()),
          mailbox(&orders, !how.realTime),
          tap(rate, how.fullScale)
    {
        if (!(options.reportRate > 0) || !std::isfinite(options.reportRate))
            options.reportRate = Options().reportRate;
    }

    std::unique_ptr<IqSource> source;  // the thread's while it runs
    Options options;
    double rate;
    double center;
    double minimum;
    double maximum;
    QString name;
    EngineOrders orders;
    Mailbox mailbox;
    PanoramaTap tap;
    std::thread thread;
};

Engine::Engine(std::unique_ptr<IqSource> source, const Options& options, QObject* parent)
    : QObject(parent), d(std::make_unique<Private>(std::move(source), options))
{
    qRegisterMetaType<Receiver::Engine::Levels>();
    connect(&d->mailbox, &Mailbox::arrived, this, [this](const Mailbox::Letter& letter) {
        switch (letter.kind) {
            case Mailbox::Kind::Levels:
                emit levelsReady(letter.levels);
                break;
            case Mailbox::Kind::Ended:
                emit ended();
                break;
            case Mailbox::Kind::Failed:
                emit failed(letter.reason);
                break;
        }
    });
    connect(&d->tap, &PanoramaTap::frameReady, this, &Engine::panoramaReady);
}

Engine::~Engine()
{
    stop();
}

QString Engine::sourceName() const
{
    return d->name;
}

double Engine::sampleRate() const
{
    return d->rate;
}

double Engine::center() const
{
    return d->center;
}

double Engine::centerMinimum() const
{
    return d->minimum;
}

double Engine::centerMaximum() const
{
    return d->maximum;
}

void Engine::start()
{
    stop();
    {
        const std::lock_guard<std::mutex> lock(d->orders.mutex);
        d->orders.stop = false;
        d->orders.center = d->center;
    }
    d->thread = std::thread([p = d.get()] {
        p->source->rewind();
        EngineWorker(p->source.get(), p->options, &p->orders, &p->mailbox, &p->tap).run();
    });
}

void Engine::stop()
{
    if (d->thread.joinable()) {
        {
            const std::lock_guard<std::mutex> lock(d->orders.mutex);
            d->orders.stop = true;
            d->orders.changed.notify_all();
        }
        d->thread.join();
    }
    d->mailbox.clear();
}

void Engine::setCenter(double hertz)
{
    if (!std::isfinite(hertz))
        return;
    d->center = std::clamp(hertz, d->minimum, d->maximum);
    const std::lock_guard<std::mutex> lock(d->orders.mutex);
    d->orders.center = d->center;
}

void Engine::setChannelCount(int count)
{
    const std::lock_guard<std::mutex> lock(d->orders.mutex);
    d->orders.channels.resize(std::size_t(std::clamp(count, 0, channelsMaximum)));
}

void Engine::setChannel(int channel, double frequencyHz, double bandwidthHz)
{
    const std::lock_guard<std::mutex> lock(d->orders.mutex);
    if (channel < 0 || std::size_t(channel) >= d->orders.channels.size())
        return;
    d->orders.channels[std::size_t(channel)] = {frequencyHz, bandwidthHz};
}

void Engine::setPanorama(const std::optional<PanoramaSettings>& settings)
{
    d->tap.set(settings);
}

}  // namespace Receiver
