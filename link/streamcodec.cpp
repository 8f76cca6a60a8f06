#include "link/streamcodec.h"

#include <QtEndian>
#include <climits>

#include "link/cborin.h"
#include "link/cborout.h"
#include "link/limits.h"

namespace Link {
namespace {

constexpr quint32 bit(int key)
{
    return 1u << key;
}

// Reads the rest of a message of type T: which keys are required, and where each content goes.
template <class T, class Entry>
Message read(CborIn& in, quint32 required, Entry entry)
{
    T message;
    quint32 seen = bit(Keys::type);
    while (in.more())
        in.readEntry(seen, [&](int key) { return entry(message, key); });
    in.leave();
    in.checkRequired(required, seen);
    in.finish();
    return message;
}

// Reads one field when its key is the one at hand.
#define RX_FIELD(KEY, EXPRESSION) \
    if (key == (KEY)) {           \
        EXPRESSION;               \
        return true;              \
    }

StreamWindow readWindow(CborIn& in)
{
    return StreamWindow(in.unsignedInteger(quint64(StreamWindow::FlatTop)));
}

Message readRequest(CborIn& in)
{
    // Without further requirements: another version may have other fields.
    return read<StreamRequest>(in, bit(Keys::streamVersion), [&in](StreamRequest& m, int key) {
        RX_FIELD(Keys::streamVersion, m.version = int(in.unsignedInteger(INT_MAX)))
        RX_FIELD(Keys::requestKind, m.kind = in.text(Limits::nameBytes))
        RX_FIELD(Keys::requestPath, m.path = in.text())
        RX_FIELD(Keys::requestPoints, m.points = quint32(in.unsignedInteger(UINT_MAX)))
        RX_FIELD(Keys::requestFrameRate, m.frameRate = in.number())
        RX_FIELD(Keys::requestWindow, m.window = readWindow(in))
        RX_FIELD(Keys::requestDetector,
                 m.detector = StreamDetector(in.unsignedInteger(quint64(StreamDetector::Maximum))))
        RX_FIELD(Keys::requestAveraging, m.averagingSeconds = in.number())
        return false;
    });
}

Message readStart(CborIn& in)
{
    return read<StreamStart>(in, bit(Keys::streamVersion), [&in](StreamStart& m, int key) {
        RX_FIELD(Keys::streamVersion, m.version = int(in.unsignedInteger(INT_MAX)))
        RX_FIELD(Keys::startUnacknowledged, m.unacknowledged = quint32(in.unsignedInteger(UINT_MAX)))
        RX_FIELD(Keys::startFrameRate, m.frameRate = in.number())
        RX_FIELD(Keys::startWindow, m.window = readWindow(in))
        return false;
    });
}

Message readScan(CborIn& in)
{
    constexpr quint32 required = bit(Keys::scanSequence) | bit(Keys::scanTime) | bit(Keys::scanStart) |
                                 bit(Keys::scanStep) | bit(Keys::scanResolution) | bit(Keys::scanLevels);
    return read<ScanData>(in, required, [&in](ScanData& m, int key) {
        RX_FIELD(Keys::scanSequence, m.sequence = in.unsignedInteger(UINT64_MAX))
        RX_FIELD(Keys::scanTime, m.time = in.integer())
        RX_FIELD(Keys::scanStart, m.start = in.number())
        RX_FIELD(Keys::scanStep, m.step = in.number())
        RX_FIELD(Keys::scanResolution, m.resolutionBandwidth = in.number())
        RX_FIELD(Keys::scanSkipped, m.skipped = in.unsignedInteger(UINT64_MAX))
        RX_FIELD(Keys::scanLevels, m.levels = in.bytes(Limits::scanPoints * qint64(sizeof(float))))
        return false;
    });
}

Message readReady(CborIn& in)
{
    return read<StreamReady>(in, bit(Keys::readySequence), [&in](StreamReady& m, int key) {
        RX_FIELD(Keys::readySequence, m.sequence = in.unsignedInteger(UINT64_MAX))
        return false;
    });
}

#undef RX_FIELD

}  // namespace

QByteArray write(const StreamRequest& request)
{
    CborOut out(MessageType::StreamRequest);
    out.number(Keys::streamVersion, qint64(request.version));
    out.text(Keys::requestKind, request.kind);
    out.text(Keys::requestPath, request.path);
    out.number(Keys::requestPoints, request.points);
    out.real(Keys::requestFrameRate, request.frameRate);
    out.number(Keys::requestWindow, qint64(request.window));
    out.number(Keys::requestDetector, qint64(request.detector));
    out.real(Keys::requestAveraging, request.averagingSeconds);
    return out.finish();
}

QByteArray write(const StreamStart& start)
{
    CborOut out(MessageType::StreamStart);
    out.number(Keys::streamVersion, qint64(start.version));
    out.number(Keys::startUnacknowledged, start.unacknowledged);
    out.real(Keys::startFrameRate, start.frameRate);
    out.number(Keys::startWindow, qint64(start.window));
    return out.finish();
}

QByteArray write(const ScanData& data)
{
    CborOut out(MessageType::ScanData);
    out.number(Keys::scanSequence, data.sequence);
    out.number(Keys::scanTime, data.time);
    out.real(Keys::scanStart, data.start);
    out.real(Keys::scanStep, data.step);
    out.real(Keys::scanResolution, data.resolutionBandwidth);
    out.number(Keys::scanSkipped, data.skipped);
    out.bytes(Keys::scanLevels, data.levels);
    return out.finish();
}

QByteArray write(const StreamReady& ready)
{
    CborOut out(MessageType::StreamReady);
    out.number(Keys::readySequence, ready.sequence);
    return out.finish();
}

Message readStreamMessage(CborIn& in, MessageType type)
{
    switch (type) {
        case MessageType::StreamRequest:
            return readRequest(in);
        case MessageType::StreamStart:
            return readStart(in);
        case MessageType::ScanData:
            return readScan(in);
        default:
            return readReady(in);
    }
}

QByteArray packLevels(const float* levels, int count)
{
    QByteArray bytes(qsizetype(count) * qsizetype(sizeof(float)), Qt::Uninitialized);
    if (count > 0)
        qToLittleEndian<quint32>(levels, count, bytes.data());
    return bytes;
}

QVector<float> unpackLevels(const QByteArray& bytes)
{
    QVector<float> levels(bytes.size() / qsizetype(sizeof(float)));
    if (!levels.isEmpty())
        qFromLittleEndian<quint32>(bytes.constData(), levels.size(), levels.data());
    return levels;
}

}  // namespace Link
