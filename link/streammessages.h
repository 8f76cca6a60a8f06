#pragma once

#include <QByteArray>
#include <QString>
#include <QVector>

// What is said on a stream's connection. It belongs to one stream: the client asks for it, the
// driver starts it or says Bye with a reason; then data flows, each frame acknowledged by the
// client, so that a slow reader is sent the latest and not the oldest. Heartbeats and Bye are those
// of the other connections.
namespace Link {

// Where a driver offers its streams unless told otherwise; also what an address without a port means.
constexpr quint16 defaultStreamPort = 4601;

// StreamRequest::kind of the panorama.
inline QString spectrumStream()
{
    return QStringLiteral("spectrum");
}

enum class StreamWindow : quint8
{
    Hann = 0,
    BlackmanHarris = 1,
    FlatTop = 2
};

enum class StreamDetector : quint8
{
    Mean = 0,    // power averaged over a frame's time
    Maximum = 1  // the highest power at any moment of it
};

// --- client to driver ---------------------------------------------------------------------------

// The first message on a connection. Said again later, it changes what the stream looks like.
struct StreamRequest
{
    int version = 1;              // protocolVersion
    QString kind;                 // "spectrum"
    QString path;                 // of the device: "/RX1"
    quint32 points = 4096;        // at most so many levels in a frame, 1 to Limits::scanPoints
    double frameRate = 30;        // at most so many frames per second; above 0, up to 60
    double averagingSeconds = 0;  // time constant, of power; 0: none; up to 60
    StreamWindow window = StreamWindow::BlackmanHarris;
    StreamDetector detector = StreamDetector::Mean;
};

// The frame with this sequence, and all before it, are taken.
struct StreamReady
{
    quint64 sequence = 0;
};

// --- driver to client ---------------------------------------------------------------------------

// The stream is as asked for. Where several clients share one panorama, the window and the
// resolution are those of the client that was there first: these are told here.
struct StreamStart
{
    int version = 1;
    quint32 unacknowledged = 0;  // frames sent ahead of the client's StreamReady, at most
    double frameRate = 0;        // frames per second, at most
    StreamWindow window = StreamWindow::BlackmanHarris;
};

// One picture of the spectrum.
struct ScanData
{
    quint64 sequence = 0;            // counts from 1 within a connection, skipped frames included
    qint64 time = 0;                 // microseconds since 1970, UTC, of the last sample in it
    double start = 0;                // Hz, the middle of the first bin
    double step = 0;                 // Hz from bin to bin
    double resolutionBandwidth = 0;  // Hz, equivalent noise bandwidth of a bin
    quint64 skipped = 0;             // frames left out since the last one sent
    QByteArray levels;               // dBµV, 32-bit IEEE floats, the least significant byte first
};

// Levels as they travel and back. Bytes behind the last whole number are ignored.
QByteArray packLevels(const float* levels, int count);
QVector<float> unpackLevels(const QByteArray& bytes);

}  // namespace Link
