#include "receiver/dsp/panoramatap.h"

#include <utility>

namespace Receiver {

PanoramaTap::PanoramaTap(double sampleRate, double fullScale)
    : m_sampleRate(sampleRate), m_fullScale(fullScale)
{
    qRegisterMetaType<Receiver::PanoramaPicture>();
}

PanoramaTap::~PanoramaTap()
{
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_ending = true;
        m_changed.notify_all();
    }
    if (m_builder.joinable())
        m_builder.join();
}

void PanoramaTap::set(const std::optional<PanoramaSettings>& settings)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    if (settings == m_settings)
        return;
    m_settings = settings;
    ++m_order;
    m_wanted.store(settings.has_value(), std::memory_order_relaxed);
    if (!settings) {
        m_validFrom = m_order + 1;
        m_builtOrder = m_order;
        m_newest.reset();
        m_skipped = 0;
        return;
    }
    if (!m_builder.joinable())
        m_builder = std::thread([this] { build(); });
    m_changed.notify_all();
}

// Builds what is wanted, and destroys what was: both take turns on the planner's lock, for which the
// engine's thread must not wait.
void PanoramaTap::build()
{
    std::unique_lock<std::mutex> lock(m_mutex);
    while (true) {
        m_changed.wait(lock, [this] { return m_ending || m_builtOrder != m_order || !m_retired.empty(); });
        if (m_ending)
            return;
        std::vector<std::unique_ptr<Panorama>> retired;
        std::swap(retired, m_retired);
        const quint64 order = m_order;
        std::optional<PanoramaSettings> settings;
        if (m_builtOrder != order)
            settings = m_settings;
        lock.unlock();
        retired.clear();
        std::unique_ptr<Panorama> built;
        if (settings)
            built = std::make_unique<Panorama>(m_sampleRate, m_fullScale, *settings);
        lock.lock();
        if (!built)
            continue;
        m_builtOrder = std::max(m_builtOrder, order);
        if (m_ready)
            m_retired.push_back(std::move(m_ready));
        m_ready = std::move(built);
        m_readyOrder = order;
    }
}

// Puts the newest panorama that was built in the place of the one before. With the mutex held.
void PanoramaTap::takeOver()
{
    const bool outdated = m_panorama && m_panoramaOrder < m_validFrom;
    if (!m_ready && !outdated)
        return;
    if (m_panorama) {
        m_retired.push_back(std::move(m_panorama));
        m_changed.notify_all();
    }
    if (m_ready && m_readyOrder >= m_validFrom) {
        m_panorama = std::move(m_ready);
        m_panoramaOrder = m_readyOrder;
    }
}

void PanoramaTap::feed(const Sample* samples, std::size_t count, std::int64_t time, double center)
{
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        takeOver();
    }
    if (!m_panorama)
        return;
    m_panorama->setCenter(center);
    m_panorama->process(samples, count, time, [this](const PanoramaFrame& frame) { post(frame); });
}

void PanoramaTap::interrupt()
{
    if (m_panorama)
        m_panorama->restart();
}

void PanoramaTap::post(const PanoramaFrame& frame)
{
    auto picture = std::make_shared<const PanoramaFrame>(frame);
    const std::lock_guard<std::mutex> lock(m_mutex);
    if (m_panoramaOrder < m_validFrom)
        return;
    const bool asked = m_newest != nullptr;
    if (asked)
        ++m_skipped;
    m_newest = std::move(picture);
    if (!asked)
        QMetaObject::invokeMethod(
            this, [this] { deliver(); }, Qt::QueuedConnection);
}

void PanoramaTap::deliver()
{
    PanoramaPicture picture;
    quint64 skipped = 0;
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        std::swap(picture, m_newest);
        std::swap(skipped, m_skipped);
    }
    if (picture)  // else nothing is wanted any more
        emit frameReady(picture, skipped);
}

}  // namespace Receiver
