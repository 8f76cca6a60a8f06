#include "receiver/dsp/engineworker.h"

#include <QDateTime>
#include <algorithm>
#include <cmath>
#include <utility>

namespace Receiver {

namespace {

constexpr double settleSeconds = 5e-3;  // until samples of a new centre arrive
// Transforms overlap by three quarters: then every moment counts alike within 0.3 dB. At half, a
// pulse between two windows would be 10 dB down; that is left to rates where the price matters.
constexpr double closeOverlapRate = 10e6;  // samples/s
constexpr std::size_t readSamples = 32768;

}  // namespace

void Mailbox::post(Letter letter)
{
    std::unique_lock<std::mutex> lock(m_orders->mutex);
    if (m_wait)
        m_orders->changed.wait(lock, [this] { return m_orders->stop || m_letters.size() < capacity; });
    if (m_letters.size() >= capacity) {
        m_letters.pop_front();
        ++m_skipped;
    }
    letter.levels.skipped = m_skipped;
    m_letters.push_back(std::move(letter));
    call();
}

bool Mailbox::take(Letter* letter)
{
    const std::lock_guard<std::mutex> lock(m_orders->mutex);
    if (m_letters.empty())
        return false;
    *letter = std::move(m_letters.front());
    m_letters.pop_front();
    m_orders->changed.notify_all();
    return true;
}

void Mailbox::deliver()
{
    {
        const std::lock_guard<std::mutex> lock(m_orders->mutex);
        m_calling = false;  // a slot may run an event loop of its own, which goes on delivering
    }
    const QPointer<Mailbox> guard(this);
    Letter letter;
    for (int i = 0; i < lettersAtOnce; ++i) {
        if (!take(&letter))
            return;
        emit arrived(letter);
        if (!guard)
            return;
    }
    const std::lock_guard<std::mutex> lock(m_orders->mutex);
    call();
}

void Mailbox::call()
{
    if (m_calling || m_letters.empty())
        return;
    m_calling = true;
    QMetaObject::invokeMethod(this, "deliver", Qt::QueuedConnection);
}

void Mailbox::clear()
{
    const std::lock_guard<std::mutex> lock(m_orders->mutex);
    m_letters.clear();
    m_skipped = 0;
}

EngineWorker::EngineWorker(IqSource* source, const Engine::Options& options, EngineOrders* orders,
                           Mailbox* mailbox, PanoramaTap* tap)
    : m_source(source),
      m_options(options),
      m_orders(orders),
      m_mailbox(mailbox),
      m_tap(tap),
      m_rate(source->sampleRate()),
      m_meter(m_rate),
      m_buffer(std::size_t(2 * m_meter.size()), readSamples),
      m_pace(m_rate),
      m_startTime(QDateTime::currentMSecsSinceEpoch() * 1000)
{}

void EngineWorker::run()
{
    m_tap->interrupt();
    for (qint64 number = 0; !stopped(); ++number) {
        const Report report = reportAt(number);
        takeCenter();
        if (!measure(report))
            break;
        if (m_ended && m_buffer.end() <= report.end) {
            finish();
            break;
        }
    }
}

bool EngineWorker::stopped() const
{
    const std::lock_guard<std::mutex> lock(m_orders->mutex);
    return m_orders->stop;
}

EngineWorker::Report EngineWorker::reportAt(qint64 number) const
{
    const double length = m_rate / m_options.reportRate;
    return {std::llround(double(number) * length), std::llround(double(number + 1) * length)};
}

void EngineWorker::takeCenter()
{
    std::optional<double> center;
    {
        const std::lock_guard<std::mutex> lock(m_orders->mutex);
        std::swap(center, m_orders->center);
    }
    if (!center || *center == m_source->center())
        return;
    m_source->setCenter(*center);
    m_settled = m_buffer.end() + qint64(settleSeconds * m_rate);
}

// The transforms of a report stand evenly over its time, each with its middle in it.
bool EngineWorker::measure(const Report& report)
{
    const double length = double(report.end - report.begin);
    const double hop = m_meter.size() / (m_rate <= closeOverlapRate ? 4.0 : 2.0);
    const int count = std::max(1, int(std::ceil(length / hop)));
    m_meter.clear();
    for (int i = 0; i < count; ++i) {
        const qint64 middle = report.begin + std::llround((i + 0.5) * length / count);
        qint64 begin = std::max<qint64>(0, middle - m_meter.size() / 2);
        if (!fill(begin + m_meter.size()))
            return false;
        if (m_ended && m_buffer.end() < begin + m_meter.size()) {
            // The last samples are measured by transforms that end with them.
            if (m_buffer.end() <= report.begin || (middle >= m_buffer.end() && m_meter.transforms() > 0))
                break;
            begin = std::max<qint64>(0, m_buffer.end() - m_meter.size());
        }
        const bool last = i == count - 1;
        if (begin >= m_settled || (last && m_meter.transforms() == 0))
            m_meter.add(m_buffer.at(begin), int(std::min<qint64>(m_meter.size(), m_buffer.end() - begin)));
    }
    if (m_meter.transforms() > 0)
        send(std::min(report.end, m_buffer.end()));
    return true;
}

// False: stopped or failed. True with fewer samples: the source has ended.
bool EngineWorker::fill(qint64 until)
{
    while (m_buffer.end() < until && !m_ended) {
        if (!waitFor(until))
            return false;
        const auto missing = std::size_t(until - m_buffer.end());
        if (!readSome(std::min(missing, readSamples)))
            return false;
    }
    return true;
}

bool EngineWorker::waitFor(qint64 sample)
{
    if (!m_options.realTime)
        return !stopped();
    m_pace.resume(sample);
    std::unique_lock<std::mutex> lock(m_orders->mutex);
    return !m_orders->changed.wait_until(lock, m_pace.wakeFor(sample), [this] { return m_orders->stop; });
}

bool EngineWorker::readSome(std::size_t count)
{
    Sample* room = m_buffer.room(count);
    const std::size_t got = m_source->read(room, count);
    m_invalid += replaceInvalid(room, got);
    m_buffer.append(got);
    if (got > 0) {
        if (m_tap->isWanted())
            tap(room, got);
        return true;
    }
    QString reason = m_source->error();
    if (reason.isEmpty() && m_buffer.end() == m_rounds.back())
        reason = m_source->name() + QStringLiteral(": gave no samples");
    if (!reason.isEmpty()) {
        m_mailbox->post({Mailbox::Kind::Failed, {}, reason});
        return false;
    }
    if (m_options.loop && m_source->rewind())
        m_rounds.push_back(m_buffer.end());
    else
        m_ended = true;
    return true;
}

// The newest samples of the buffer, without those that are still of the centre before.
void EngineWorker::tap(const Sample* samples, std::size_t count)
{
    const qint64 unsettled =
        std::clamp<qint64>(m_settled - (m_buffer.end() - qint64(count)), 0, qint64(count));
    if (unsettled < qint64(count))
        m_tap->feed(samples + unsettled, count - std::size_t(unsettled), timeOf(m_buffer.end()),
                    m_source->center());
}

qint64 EngineWorker::timeOf(qint64 sample) const
{
    return m_options.realTime ? m_pace.timeOf(sample)
                              : m_startTime + std::llround(double(sample) / m_rate * 1e6);
}

double EngineWorker::positionOf(qint64 sample)
{
    while (m_rounds.size() > 1 && m_rounds[1] < sample)
        m_rounds.pop_front();
    return double(sample - m_rounds.front()) / m_rate;
}

void EngineWorker::send(qint64 end)
{
    {
        const std::lock_guard<std::mutex> lock(m_orders->mutex);
        m_channels = m_orders->channels;
    }
    Engine::Levels report;
    report.time = timeOf(end);
    report.position = positionOf(end);
    report.invalidSamples = m_invalid;
    report.levels.reserve(int(m_channels.size()));
    for (const ChannelSetting& channel : m_channels) {
        const double offset = channel.frequency - m_source->center();
        const double level = m_meter.level(offset - channel.bandwidth / 2, offset + channel.bandwidth / 2);
        report.levels.append(level > LevelMeter::floorLevel
                                 ? float(std::max(level + m_options.fullScale, LevelMeter::floorLevel))
                                 : float(LevelMeter::floorLevel));
    }
    m_mailbox->post({Mailbox::Kind::Levels, std::move(report), {}});
}

void EngineWorker::finish()
{
    m_mailbox->post({Mailbox::Kind::Ended, {}, {}});
}

}  // namespace Receiver
