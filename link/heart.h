#pragma once

#include <QElapsedTimer>
#include <QObject>
#include <QTimer>

namespace Link {

class Channel;

// Keeps one connection alive and notices when the peer fell silent. Time during which this program
// itself did not run does not count against the peer.
class Heart : public QObject
{
    Q_OBJECT
public:
    // Sends a heartbeat every `intervalMs`; emits lost() after `lostMs` without a byte of the peer.
    Heart(Channel* channel, int intervalMs, int lostMs, QObject* parent);

signals:
    void lost(const QString& reason);

private:
    void beat();
    bool peerMoved();

    Channel* m_channel;
    QTimer m_timer;
    QElapsedTimer m_sinceBeat;
    QElapsedTimer m_sinceSent;
    int m_intervalMs;
    int m_lostMs;
    int m_tickMs;
    qint64 m_silentMs = 0;
    quint64 m_received = 0;
    quint64 m_written = 0;
};

}  // namespace Link
