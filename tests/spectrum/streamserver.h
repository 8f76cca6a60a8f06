#pragma once

#include <QHostAddress>
#include <QList>
#include <QPointer>
#include <QTcpServer>
#include <QTcpSocket>
#include <cmath>

#include "link/channel.h"
#include "link/messages.h"

// A driver's end of the spectrum stream, as small as it can be: real sockets, real frames.
class StreamServer
{
public:
    enum class Answer
    {
        Start,   // as asked
        Refuse,  // Bye with a reason
        Silence
    };

    StreamServer()
    {
        QObject::connect(&m_server, &QTcpServer::newConnection, &m_server, [this] { take(); });
        listen(0);
    }

    // On the port it had before, or any.
    bool listen(quint16 port) { return m_server.listen(QHostAddress::LocalHost, port); }

    // Nobody is let in any more, and who is in is thrown out.
    void close()
    {
        m_server.close();
        drop();
    }

    void drop()
    {
        if (m_socket)
            m_socket->abort();
    }

    quint16 port() const { return m_server.serverPort(); }
    QString address() const { return QStringLiteral("127.0.0.1:%1").arg(port()); }

    void send(const Link::Message& message)
    {
        if (m_channel) {
            m_channel->send(message);
            m_socket->flush();
        }
    }
    void sendBytes(const QByteArray& bytes)
    {
        m_socket->write(bytes);
        m_socket->flush();
    }

    // Frames count from 1 in each connection.
    Link::ScanData next(Link::ScanData data)
    {
        data.sequence = ++m_sequence;
        data.time = m_time += 33333;
        return data;
    }
    void sendFrame(const Link::ScanData& data) { send(next(data)); }

    bool isConnected() const { return m_socket && m_socket->state() == QAbstractSocket::ConnectedState; }

    Answer answer = Answer::Start;
    QString refusal = QStringLiteral("no such device");
    int connections = 0;
    QList<Link::StreamRequest> requests;
    QList<quint64> ready;
    int goodbyes = 0;

private:
    void take()
    {
        m_socket = m_server.nextPendingConnection();
        m_socket->setSocketOption(QAbstractSocket::LowDelayOption, 1);  // as a driver does
        ++connections;
        m_sequence = 0;
        m_channel = new Link::Channel(m_socket, m_socket);
        QObject::connect(m_channel, &Link::Channel::received, m_socket,
                         [this](Link::Message& message) { handle(message); });
    }

    void handle(const Link::Message& message)
    {
        if (const auto* request = std::get_if<Link::StreamRequest>(&message)) {
            requests.append(*request);
            if (answer == Answer::Start)
                send(Link::StreamStart{1, 2, 30, request->window});
            else if (answer == Answer::Refuse)
                send(Link::Bye{refusal});
        } else if (const auto* taken = std::get_if<Link::StreamReady>(&message)) {
            ready.append(taken->sequence);
        } else if (std::holds_alternative<Link::Bye>(message)) {
            ++goodbyes;
        }
    }

    QTcpServer m_server;
    QPointer<QTcpSocket> m_socket;
    QPointer<Link::Channel> m_channel;
    quint64 m_sequence = 0;
    qint64 m_time = 1'700'000'000'000'000;
};

// A quiet panorama of 2 MHz around 98.5 MHz with one carrier in it.
inline Link::ScanData panorama(double carrier = 98.7e6, float level = 60, double centre = 98.5e6,
                               double width = 2e6, int points = 2000)
{
    Link::ScanData data;
    data.step = width / points;
    data.start = centre - width / 2 + data.step / 2;
    data.resolutionBandwidth = 2 * data.step;
    QVector<float> levels(points);
    for (int i = 0; i < points; ++i)
        levels[i] = 2 + 2 * float(std::sin(i * 1.7) + std::sin(i * 0.61));
    const int bin = int(std::lround((carrier - data.start) / data.step));
    for (int i = -2; i <= 2; ++i) {
        if (bin + i >= 0 && bin + i < points)
            levels[bin + i] = level - 6 * float(i * i);
    }
    data.levels = Link::packLevels(levels.constData(), points);
    return data;
}
