#pragma once

#include <QTcpServer>
#include <QTcpSocket>
#include <QtTest>
#include <memory>
#include <vector>

#include "link/channel.h"
#include "link/messages.h"

// How long a condition may take on a loaded machine.
constexpr int patienceMs = 20000;

// One end of a link that says only what the test tells it to.
struct Peer
{
    explicit Peer(QTcpSocket* connected) : socket(connected), channel(socket.get())
    {
        QObject::connect(&channel, &Link::Channel::received, &channel,
                         [this](Link::Message& message) { heard.push_back(std::move(message)); });
    }

    void say(const Link::Message& message) { channel.send(message); }

    template <class T>
    const T* find() const
    {
        for (const Link::Message& message : heard) {
            if (const T* found = std::get_if<T>(&message))
                return found;
        }
        return nullptr;
    }

    template <class T>
    int count() const
    {
        int result = 0;
        for (const Link::Message& message : heard)
            result += std::holds_alternative<T>(message);
        return result;
    }

    // The last content heard for an id, in snapshots and batches.
    Link::Content content(quint32 id) const
    {
        Link::Content result;
        const auto take = [&](const QVector<Link::Update>& updates) {
            for (const Link::Update& update : updates) {
                if (update.id == id)
                    result = update.content;
            }
        };
        for (const Link::Message& message : heard) {
            if (const auto* snapshot = std::get_if<Link::Snapshot>(&message))
                take(snapshot->contents);
            else if (const auto* batch = std::get_if<Link::Batch>(&message))
                take(batch->updates);
        }
        return result;
    }

    bool isGone() const { return socket->state() == QAbstractSocket::UnconnectedState; }

    std::unique_ptr<QTcpSocket> socket;
    Link::Channel channel;
    std::vector<Link::Message> heard;
};

inline QTcpSocket* connectedSocket(quint16 port)
{
    auto* socket = new QTcpSocket;
    socket->connectToHost(QStringLiteral("127.0.0.1"), port);
    return socket;
}

inline Link::Hello helloOf(char session, int version = Link::protocolVersion)
{
    Link::Hello hello;
    hello.version = version;
    hello.client = QStringLiteral("station-") + QLatin1Char(session);
    hello.session = QByteArray(16, session);
    return hello;
}

// A driver of few words: accepts, and says what the test tells it to.
struct ScriptedDriver
{
    ScriptedDriver()
    {
        server.listen(QHostAddress::LocalHost, 0);
        QObject::connect(&server, &QTcpServer::newConnection, &server, [this] {
            while (QTcpSocket* socket = server.nextPendingConnection()) {
                socket->setParent(nullptr);
                peers.push_back(std::make_unique<Peer>(socket));
            }
        });
    }

    quint16 port() const { return server.serverPort(); }
    Peer& last() { return *peers.back(); }

    QTcpServer server;
    std::vector<std::unique_ptr<Peer>> peers;
};
