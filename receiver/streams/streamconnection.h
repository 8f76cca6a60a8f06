#pragma once

#include <QObject>
#include <QTimer>
#include <deque>
#include <memory>
#include <optional>

#include "link/channel.h"
#include "link/heart.h"
#include "receiver/dsp/panoramatap.h"
#include "receiver/streams/scanreducer.h"

class QTcpSocket;

namespace Receiver {

class StreamServer;

// Why a request cannot be served, for the client; empty: it can.
QString refusalOf(const Link::StreamRequest& request, const QString& devicePath);

// One client of the panorama. At most two frames are on the way to it; while it has acknowledged
// neither, the newest frame waits, and those that made room for it are counted. It lives until its
// socket is closed; from the moment it ends it takes part in nothing any more.
class StreamConnection : public QObject
{
    Q_OBJECT
public:
    static constexpr int framesAhead = 2;

    // Takes the socket.
    StreamConnection(QTcpSocket* socket, StreamServer* server);

    bool isStarted() const { return m_reducer != nullptr && !m_ended; }
    const Link::StreamRequest& request() const { return m_request; }

    void deliver(const PanoramaPicture& frame, quint64 skipped);

    // Tells the client what its stream is like, where it has not been told yet.
    void tellStart();

    // Says goodbye and closes the socket; the server forgets the connection at once.
    void end(const QString& reason);

private:
    void handle(const Link::Message& message);
    void handleRequest(const Link::StreamRequest& request);
    void handleReady(const Link::StreamReady& ready);
    bool isDue(qint64 time);
    void sendWaiting();
    void leave(const QString& reason);

    QTcpSocket* m_socket;
    StreamServer* m_server;
    Link::Channel m_channel;
    Link::Heart m_heart;
    QTimer m_requestTimer;
    QString m_peer;
    bool m_ended = false;

    Link::StreamRequest m_request;
    std::unique_ptr<ScanReducer> m_reducer;          // null until the stream was asked for
    std::optional<Link::StreamWindow> m_toldWindow;  // in the StreamStart before
    qint64 m_due = 0;                                // microseconds since 1970, of the next frame; 0: any
    quint64 m_sequence = 0;                          // of the newest frame meant for this client
    quint64 m_skipped = 0;                           // since the last one sent
    PanoramaPicture m_waiting;                       // for an acknowledgement
    std::deque<quint64> m_unacknowledged;
    quint64 m_lastSent = 0;
};

}  // namespace Receiver
