#include "link/channel.h"

#include <QtEndian>

#include "link/codec.h"
#include "link/limits.h"

namespace Link {
namespace {

constexpr qsizetype headBytes = 4;

}

Channel::Channel(QIODevice* device, QObject* parent) : QObject(parent), m_device(device)
{
    connect(device, &QIODevice::readyRead, this, &Channel::readDevice);
    connect(device, &QIODevice::bytesWritten, this,
            [this](qint64 bytes) { m_bytesWritten += quint64(bytes); });
    // What arrived before the channel was made is announced no more.
    if (device->bytesAvailable() > 0)
        QMetaObject::invokeMethod(this, &Channel::readDevice, Qt::QueuedConnection);
}

void Channel::send(const Message& message)
{
    sendPayload(encode(message));
}

void Channel::sendPayload(const QByteArray& payload)
{
    if (!m_device || !m_device->isOpen())
        return;
    uchar head[headBytes];
    qToBigEndian(quint32(payload.size()), head);
    m_device->write(reinterpret_cast<const char*>(head), headBytes);
    m_device->write(payload);
}

qint64 Channel::bytesToWrite() const
{
    return m_device ? m_device->bytesToWrite() : 0;
}

void Channel::setPaused(bool paused)
{
    if (m_paused == paused)
        return;
    m_paused = paused;
    if (!paused)
        QMetaObject::invokeMethod(this, &Channel::readDevice, Qt::QueuedConnection);
}

void Channel::close()
{
    m_closed = true;
    if (!m_reading)
        m_buffer.clear();
}

void Channel::fail(const QString& reason)
{
    m_closed = true;
    emit failed(reason);
}

void Channel::readDevice()
{
    if (m_reading)
        return;
    // Nobody wants what comes now, but a socket with unread bytes does not close cleanly.
    if (m_closed && m_device) {
        m_device->skip(m_device->bytesAvailable());
        return;
    }
    m_reading = true;
    const QPointer<Channel> alive(this);
    // Reading in parts keeps the memory bounded while a fast peer goes on sending.
    while (takeFrames() && readPart()) {
    }
    if (!alive)
        return;
    m_reading = false;
    if (m_closed)
        m_buffer.clear();
}

// False when there is nothing to read.
bool Channel::readPart()
{
    const qint64 available = m_device ? qMin(m_device->bytesAvailable(), Limits::receiveBytes) : 0;
    if (available <= 0)
        return false;
    m_buffer.remove(0, m_begin);
    m_begin = 0;
    const qsizetype before = m_buffer.size();
    m_buffer.resize(before + available);
    const qint64 count = m_device->read(m_buffer.data() + before, available);
    m_buffer.resize(before + qMax<qint64>(0, count));
    m_bytesReceived += quint64(qMax<qint64>(0, count));
    return count > 0;
}

// Hands out what is complete. False when the channel takes no more, or is no more.
bool Channel::takeFrames()
{
    const QPointer<Channel> alive(this);
    while (!m_closed && !m_paused) {
        const qsizetype left = m_buffer.size() - m_begin;
        if (left < headBytes)
            return true;
        const qint64 length = qFromBigEndian<quint32>(m_buffer.constData() + m_begin);
        if (length > Limits::frameBytes || length == 0) {
            fail(QStringLiteral("a frame of %1 bytes was announced, 1 to %2 are allowed")
                     .arg(length)
                     .arg(Limits::frameBytes));
            return false;
        }
        if (left - headBytes < length)
            return true;
        Message message;
        QString error;
        const char* payload = m_buffer.constData() + m_begin + headBytes;
        m_begin += headBytes + length;
        if (!decode(QByteArray::fromRawData(payload, length), &message, &error)) {
            fail(QStringLiteral("a frame that cannot be read: %1").arg(error));
            return false;
        }
        emit received(message);
        if (!alive)
            return false;
    }
    return false;
}

}  // namespace Link
