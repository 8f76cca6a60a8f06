#pragma once

#include <QTcpSocket>
#include <vector>

#include "link/channel.h"
#include "link/messages.h"

// A client of a stream that says only what the test tells it to.
class StreamPeer : public QObject
{
public:
    explicit StreamPeer(quint16 port) : channel(&socket)
    {
        // A channel watches its device from the beginning, an unconnected socket gives nothing.
        connect(&channel, &Link::Channel::received, this, [this](Link::Message& message) {
            if (auto* data = std::get_if<Link::ScanData>(&message)) {
                frames.push_back(std::move(*data));
                if (acknowledges)
                    channel.send(Link::StreamReady{frames.back().sequence});
            } else if (const auto* start = std::get_if<Link::StreamStart>(&message)) {
                starts.push_back(*start);
            } else if (const auto* bye = std::get_if<Link::Bye>(&message)) {
                reason = bye->reason;
            } else if (std::holds_alternative<Link::Heartbeat>(message)) {
                ++heartbeats;
            } else {
                ++others;
            }
        });
        socket.connectToHost(QStringLiteral("127.0.0.1"), port);
    }

    bool isGone() const { return socket.state() == QAbstractSocket::UnconnectedState; }
    void say(const Link::Message& message) { channel.send(message); }
    void acknowledge(quint64 sequence) { say(Link::StreamReady{sequence}); }

    QTcpSocket socket;
    Link::Channel channel;
    bool acknowledges = true;
    std::vector<Link::ScanData> frames;
    std::vector<Link::StreamStart> starts;
    QString reason;  // of the Bye
    int heartbeats = 0;
    int others = 0;
};

inline Link::StreamRequest spectrumRequest(quint32 points = 4096)
{
    Link::StreamRequest request;
    request.kind = Link::spectrumStream();
    request.path = QStringLiteral("/RX1");
    request.points = points;
    return request;
}
