#pragma once

#include <QIODevice>
#include <QObject>
#include <QPointer>

#include "link/messages.h"

namespace Link {

// Messages over any sequential QIODevice: each is a frame of four bytes of length (big endian) and
// that many bytes of CBOR. Knows nothing of what the messages mean. Received bytes are bounded by
// one frame and what is read in one go; sending is not bounded: look at bytesToWrite().
class Channel : public QObject
{
    Q_OBJECT
public:
    // The device must be open and outlive the channel or be deleted together with it.
    explicit Channel(QIODevice* device, QObject* parent = nullptr);

    void send(const Message& message);
    void sendPayload(const QByteArray& payload);
    qint64 bytesToWrite() const;

    // A paused channel reads nothing from the device, so that the peer has to wait.
    void setPaused(bool paused);
    bool isPaused() const { return m_paused; }

    // Ends the reading for good: nothing is received any more, sending still works.
    void close();
    bool isClosed() const { return m_closed; }

    // Count up with every byte; who watches the peer compares them.
    quint64 bytesReceived() const { return m_bytesReceived; }
    quint64 bytesWritten() const { return m_bytesWritten; }

signals:
    // Emitted while the device is being read: do not start an event loop inside.
    void received(Link::Message& message);

    // The peer sent what is not a message. The channel is closed then.
    void failed(const QString& reason);

private:
    void readDevice();
    bool readPart();
    bool takeFrames();
    void fail(const QString& reason);

    QPointer<QIODevice> m_device;
    QByteArray m_buffer;
    qsizetype m_begin = 0;  // of the first frame in the buffer that was not taken yet
    quint64 m_bytesReceived = 0;
    quint64 m_bytesWritten = 0;
    bool m_paused = false;
    bool m_closed = false;
    bool m_reading = false;
};

}  // namespace Link
