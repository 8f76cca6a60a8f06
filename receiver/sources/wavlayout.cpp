#include <QtEndian>
#include <algorithm>
#include <array>
#include <cstring>
#include <limits>

#include "receiver/sources/recordinglayout.h"

namespace Receiver {

namespace {

constexpr qint64 riffHeaderBytes = 12;
constexpr qint64 chunkHeaderBytes = 8;
constexpr quint32 sizeUnknown = 0xFFFFFFFFU;  // of a chunk: the ds64 chunk or the file's end tells it

const char* const copyAgain = "copy or record the file again";

// A few bytes of a header; 0 where the file does not reach.
struct Bytes
{
    std::array<char, 40> data{};
    qint64 size = 0;  // that were read

    bool has(std::size_t at, const char* four) const { return std::memcmp(data.data() + at, four, 4) == 0; }

    // The first four as a name for people; a broken file may hold anything there.
    QString name() const
    {
        QString name;
        for (int i = 0; i < 4; ++i)
            name += data[std::size_t(i)] > ' ' && data[std::size_t(i)] < 127
                        ? QLatin1Char(data[std::size_t(i)])
                        : QLatin1Char(' ');
        return name.trimmed();
    }

    template <typename Number>
    Number number(std::size_t at) const
    {
        return qFromLittleEndian<Number>(data.data() + at);
    }
};

// Walks the chunks of a RIFF or RF64 file and takes every data chunk: some recorders write one for
// each buffer, with chunks of their own (time stamps) in between.
class WavReader
{
public:
    WavReader(QFile& file, RecordingLayout* layout) : m_file(file), m_layout(layout) {}

    QString read();

private:
    QString readHeader();
    QString readChunk(const Bytes& head, qint64 at, qint64* next);
    QString readLengths(qint64 at, qint64 size);
    QString readFormat(qint64 at, qint64 size);
    QString takeData(qint64 at, qint64 size);
    QString truncated(const QString& what, qint64 at, qint64 promised) const;
    Bytes bytes(qint64 at, qint64 count);

    QFile& m_file;
    RecordingLayout* m_layout;
    qint64 m_end = 0;  // of the chunks, at most the file's
    bool m_rf64 = false;
    bool m_hasFormat = false;
    std::optional<qint64> m_dataBytes;  // of the first data chunk, from ds64
};

Bytes WavReader::bytes(qint64 at, qint64 count)
{
    Bytes bytes;
    if (m_file.seek(at))
        bytes.size = std::max<qint64>(m_file.read(bytes.data.data(), std::min<qint64>(count, 40)), 0);
    return bytes;
}

QString WavReader::truncated(const QString& what, qint64 at, qint64 promised) const
{
    const qint64 there = std::max<qint64>(m_end - at, 0);
    return QStringLiteral("truncated: %1 promises %2 bytes from byte %3 on, %4 are there, %5 are missing; %6")
        .arg(what)
        .arg(promised)
        .arg(at)
        .arg(there)
        .arg(promised - there)
        .arg(QLatin1String(copyAgain));
}

QString WavReader::readHeader()
{
    const Bytes head = bytes(0, riffHeaderBytes);
    if (head.size < riffHeaderBytes)
        return QStringLiteral("truncated: %1 bytes are no WAV header; %2")
            .arg(head.size)
            .arg(QLatin1String(copyAgain));
    m_rf64 = head.has(0, "RF64");
    if ((!m_rf64 && !head.has(0, "RIFF")) || !head.has(8, "WAVE"))
        return QStringLiteral(
                   "not a WAV file (no RIFF and WAVE at its beginning); if it holds bare samples, "
                   "say which with --format %1 and --rate")
            .arg(formatNames().join(QLatin1Char('|')));
    m_end = m_file.size();
    const quint32 size = head.number<quint32>(4);
    if (m_rf64 || size == 0 || size == sizeUnknown)
        return {};  // a stream's header was never completed: the chunks go on to the file's end
    if (qint64(size) + chunkHeaderBytes > m_file.size())
        return truncated(QStringLiteral("the RIFF header"), chunkHeaderBytes, size);
    m_end = qint64(size) + chunkHeaderBytes;
    return {};
}

QString WavReader::readLengths(qint64 at, qint64 size)
{
    const Bytes body = bytes(at, 24);
    if (size < 24 || body.size < 24)
        return QStringLiteral("the ds64 chunk at byte %1 is too short; %2")
            .arg(at)
            .arg(QLatin1String(copyAgain));
    const quint64 data = body.number<quint64>(8);
    if (data > quint64(std::numeric_limits<qint64>::max()) / 2)
        return QStringLiteral("the ds64 chunk at byte %1 promises %2 bytes of samples; %3")
            .arg(at)
            .arg(data)
            .arg(QLatin1String(copyAgain));
    m_dataBytes = qint64(data);
    return {};
}

std::optional<SampleFormat> formatOfTag(quint16 tag, int bits)
{
    constexpr quint16 integer = 1;
    constexpr quint16 floating = 3;
    if (tag == floating && bits == 32)
        return SampleFormat::F32;
    if (tag != integer)
        return {};
    switch (bits) {
        case 8:
            return SampleFormat::U8;
        case 16:
            return SampleFormat::S16;
        case 24:
            return SampleFormat::S24;
        case 32:
            return SampleFormat::S32;
        default:
            return {};
    }
}

QString WavReader::readFormat(qint64 at, qint64 size)
{
    constexpr quint16 extensible = 0xFFFE;
    const Bytes body = bytes(at, std::min<qint64>(size, 40));
    if (body.size < 16)
        return QStringLiteral("the fmt chunk at byte %1 is too short; %2")
            .arg(at)
            .arg(QLatin1String(copyAgain));
    quint16 tag = body.number<quint16>(0);
    if (tag == extensible && body.size >= 26)
        tag = body.number<quint16>(24);  // the first two bytes of the sub-format's identifier
    const int channels = body.number<quint16>(2);
    const int bits = body.number<quint16>(14);
    if (channels != 2)
        return QStringLiteral("has %1 channel%2, IQ needs two (left I, right Q); record it as IQ")
            .arg(channels)
            .arg(channels == 1 ? QString() : QStringLiteral("s"));
    const auto format = formatOfTag(tag, bits);
    if (!format)
        return QStringLiteral(
                   "WAV format %1 with %2 bits is not read; convert it to 8, 16, 24 or 32 bit integer "
                   "or 32 bit float")
            .arg(tag)
            .arg(bits);
    if (body.number<quint16>(12) != bytesPerSample(*format))
        return QStringLiteral("the fmt chunk at byte %1 says %2 bytes a sample where its format takes %3; %4")
            .arg(at)
            .arg(body.number<quint16>(12))
            .arg(bytesPerSample(*format))
            .arg(QLatin1String(copyAgain));
    m_layout->format = *format;
    m_layout->rate = body.number<quint32>(4);
    m_hasFormat = true;
    return {};
}

QString WavReader::takeData(qint64 at, qint64 size)
{
    if (!m_hasFormat)
        return QStringLiteral("the data chunk at byte %1 comes before any fmt chunk; %2")
            .arg(at)
            .arg(QLatin1String(copyAgain));
    const int step = bytesPerSample(m_layout->format);
    if (size % step != 0)
        return QStringLiteral("truncated: the data chunk at byte %1 ends %2 bytes into a sample; %3")
            .arg(at)
            .arg(size % step)
            .arg(QLatin1String(copyAgain));
    if (size > 0)
        m_layout->pieces.append({at, size});
    return {};
}

QString WavReader::readChunk(const Bytes& head, qint64 at, qint64* next)
{
    const auto size32 = head.number<quint32>(4);
    qint64 size = size32;
    const bool data = head.has(0, "data");
    if (data && size32 == sizeUnknown) {
        size = m_dataBytes.value_or(m_end - at);
        m_dataBytes.reset();
    }
    *next = at + size + (size & 1);  // chunks begin at even bytes
    if (size > m_end - at)
        return truncated(QStringLiteral("the %1 chunk").arg(head.name()), at, size);
    if (head.has(0, "ds64"))
        return readLengths(at, size);
    if (head.has(0, "fmt ") && !m_hasFormat)
        return readFormat(at, size);
    return data ? takeData(at, size) : QString();
}

QString WavReader::read()
{
    QString wrong = readHeader();
    qint64 at = riffHeaderBytes;
    while (wrong.isEmpty() && at + chunkHeaderBytes <= m_end) {
        const Bytes head = bytes(at, chunkHeaderBytes);
        if (head.size < chunkHeaderBytes)
            return QStringLiteral("reading failed at byte %1: %2").arg(at).arg(m_file.errorString());
        qint64 next = 0;
        wrong = readChunk(head, at + chunkHeaderBytes, &next);
        at = next;
    }
    if (!wrong.isEmpty())
        return wrong;
    if (!m_hasFormat)
        return QStringLiteral("has no fmt chunk; %1").arg(QLatin1String(copyAgain));
    if (m_layout->pieces.isEmpty())
        return QStringLiteral("has no data chunk with samples; %1").arg(QLatin1String(copyAgain));
    return {};
}

}  // namespace

QString readWavLayout(QFile& file, RecordingLayout* layout)
{
    return WavReader(file, layout).read();
}

}  // namespace Receiver
