#include "link/heart.h"

#include <QDateTime>

#include "link/channel.h"
#include "link/limits.h"

namespace Link {
namespace {

constexpr int ticksPerInterval = 4;

}

Heart::Heart(Channel* channel, int intervalMs, int lostMs, QObject* parent)
    : QObject(parent),
      m_channel(channel),
      m_intervalMs(intervalMs),
      m_lostMs(lostMs),
      m_tickMs(qMax(1, intervalMs / ticksPerInterval))
{
    connect(&m_timer, &QTimer::timeout, this, &Heart::beat);
    m_timer.start(m_tickMs);
    m_sinceBeat.start();
    m_sinceSent.start();
}

// A peer that is not being read (paused) shows its life by reading.
bool Heart::peerMoved()
{
    const quint64 received = m_channel->bytesReceived();
    const quint64 written = m_channel->bytesWritten();
    const bool moved = received != m_received || (m_channel->isPaused() && written != m_written);
    m_received = received;
    m_written = written;
    return moved;
}

void Heart::beat()
{
    const qint64 elapsed = m_sinceBeat.restart();
    if (peerMoved())
        m_silentMs = 0;
    else
        m_silentMs += qMin<qint64>(elapsed, 2 * m_tickMs);
    if (m_silentMs >= m_lostMs) {
        m_timer.stop();
        emit lost(tr("nothing heard for %1 s").arg(double(m_lostMs) / 1000));
        return;
    }
    // A reader that does not read needs no further sign of life.
    if (m_sinceSent.elapsed() + m_tickMs / 2 < m_intervalMs ||
        m_channel->bytesToWrite() > Limits::unsentBytes)
        return;
    m_sinceSent.restart();
    m_channel->send(Heartbeat{QDateTime::currentMSecsSinceEpoch() * 1000});
}

}  // namespace Link
