#pragma once

#include <QObject>
#include <atomic>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <optional>
#include <thread>
#include <vector>

#include "receiver/dsp/panorama.h"

namespace Receiver {

using PanoramaPicture = std::shared_ptr<const PanoramaFrame>;

// Carries samples from the engine's thread into a panorama, and its frames to the thread in which
// the tap lives. Costs the engine a look at a flag while no panorama is wanted.
//
// Planning a transform may take a good part of a second: a thread of the tap does it, and the
// panorama before goes on meanwhile. It lives from the first panorama on.
class PanoramaTap : public QObject
{
    Q_OBJECT
public:
    PanoramaTap(double sampleRate, double fullScale);
    ~PanoramaTap() override;  // the engine's thread has ended

    // What is wanted; nothing: no panorama. Frames of the settings before may still come for a moment,
    // but none after nothing was wanted.
    void set(const std::optional<PanoramaSettings>& settings);

    // --- by the engine's thread
    bool isWanted() const { return m_wanted.load(std::memory_order_relaxed); }
    // `time`: microseconds since 1970 of the end of the samples; `center`: Hz, of their band.
    void feed(const Sample* samples, std::size_t count, std::int64_t time, double center);
    // The samples that come next do not follow on those before.
    void interrupt();

signals:
    // The newest frame, and how many the receiving thread had no time for since the one before.
    void frameReady(const Receiver::PanoramaPicture& frame, quint64 skipped);

private:
    void takeOver();
    void post(const PanoramaFrame& frame);
    void deliver();
    void build();

    const double m_sampleRate;
    const double m_fullScale;
    std::atomic<bool> m_wanted{false};

    // The engine's thread's.
    std::unique_ptr<Panorama> m_panorama;
    quint64 m_panoramaOrder = 0;

    std::mutex m_mutex;  // held for copies only; guards what follows
    std::condition_variable m_changed;
    std::optional<PanoramaSettings> m_settings;
    quint64 m_order = 0;       // counts what was asked for
    quint64 m_validFrom = 1;   // panoramas of orders before this one show nothing any more
    quint64 m_builtOrder = 0;  // the newest that was built, or that needs no building
    std::unique_ptr<Panorama> m_ready;
    quint64 m_readyOrder = 0;
    std::vector<std::unique_ptr<Panorama>> m_retired;  // destroyed by the builder
    PanoramaPicture m_newest;                          // not delivered yet
    quint64 m_skipped = 0;
    bool m_ending = false;
    std::thread m_builder;
};

}  // namespace Receiver

Q_DECLARE_METATYPE(Receiver::PanoramaPicture)
