#pragma once

#include <QObject>
#include <QTimer>
#include <functional>

#include "link/messages.h"
#include "spectrum/scanaddress.h"
#include "spectrum/scanframe.h"
#include "spectrum/scanframecheck.h"

class QTcpSocket;

namespace Link {
class Channel;
class Heart;
}  // namespace Link

struct ScanStreamOptions
{
    int connectMs = 5000;    // from the attempt to the connection
    int startMs = 3000;      // from the request to the driver's answer
    int heartbeatMs = 1000;  // a sign of life this often
    int lostMs = 3000;       // silence after which the driver counts as lost
    int backoffFirstMs = 100;
    int backoffLastMs = 5000;
};

// The pane's end of the scan buffer's stream: connects, asks, checks and acknowledges frames, and
// tries again for ever, with growing pauses, until it is stopped. Nothing blocks; nothing is kept
// but the newest frame's facts. Signals are emitted while the socket is being read: a slot must not
// run an event loop.
class ScanStream : public QObject
{
    Q_OBJECT
public:
    enum class State
    {
        Stopped,
        Connecting,  // waits for the connection
        Starting,    // waits for the driver's answer to the request
        Live,
        Waiting  // for the next attempt
    };

    explicit ScanStream(const ScanStreamOptions& options = {}, QObject* parent = nullptr);
    ~ScanStream() override;

    // As of ScanAddress. Another address than before connects anew.
    void setAddress(const QString& address);

    // Asked before each further attempt whether the stream is somewhere else now; an empty answer: not known.
    void setAddressSource(std::function<QString()> source) { m_source = std::move(source); }

    // Told to the driver at once when it differs.
    void setRequest(const Link::StreamRequest& request);

    void start();
    void stop();
    bool isRunning() const { return m_state != State::Stopped; }

    State state() const { return m_state; }
    const ScanAddress& address() const { return m_address; }

    // Why there is no stream, for the operator; empty while there is one or nothing failed yet.
    QString failure() const { return m_failure; }

    // Whether a frame came over the connection at hand.
    bool hasDelivered() const { return m_delivered; }

    // Of all connections since the making.
    quint64 received() const { return m_received; }
    quint64 skipped() const { return m_skipped; }  // by the driver, since this end was slow
    quint64 dropped() const { return m_dropped; }  // frames that could not be drawn
    quint64 emptied() const { return m_emptied + m_check.emptied(); }
    QString dropReason() const { return m_dropReason; }  // of the last one

signals:
    void frameReceived(const ScanFrame& frame);
    void frameDropped();
    void stateChanged();

private:
    void attempt();
    void request();
    void handle(const Link::Message& message);
    void handleData(const Link::ScanData& data);
    void fail(const QString& reason, bool tellPeer);
    void dropSocket();
    void setState(State state);
    void stepOver();
    void followDriver();

    ScanStreamOptions m_options;
    ScanAddress m_address;
    std::function<QString()> m_source;
    Link::StreamRequest m_request;
    State m_state = State::Stopped;
    QString m_failure;
    QTcpSocket* m_socket = nullptr;
    Link::Channel* m_channel = nullptr;
    Link::Heart* m_heart = nullptr;
    QTimer m_step;  // connection, answer or the pause before the next attempt
    int m_backoffMs = 0;
    bool m_delivered = false;
    ScanFrameCheck m_check;
    quint64 m_received = 0;
    quint64 m_skipped = 0;
    quint64 m_dropped = 0;
    quint64 m_emptied = 0;  // of former connections
    QString m_dropReason;
};
