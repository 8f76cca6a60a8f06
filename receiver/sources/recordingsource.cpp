#include "receiver/sources/recordingsource.h"

#include <QFileInfo>
#include <algorithm>
#include <utility>

namespace Receiver {

namespace {
constexpr qint64 readBytes = 192 * 1024;  // a multiple of every sample's size
}

RecordingSource::RecordingSource(RecordingLayout layout, double rate, double center)
    : m_layout(std::move(layout)),
      m_rate(rate),
      m_center(center),
      m_file(m_layout.fileName),
      m_bytes(int(readBytes), Qt::Uninitialized)
{}

bool RecordingSource::open()
{
    if (m_file.open(QIODevice::ReadOnly | QIODevice::Unbuffered))
        return true;
    m_error = m_layout.fileName + QStringLiteral(": cannot be read: ") + m_file.errorString().toLower();
    return false;
}

QString RecordingSource::name() const
{
    return QFileInfo(m_layout.fileName).fileName();
}

std::size_t RecordingSource::read(Sample* samples, std::size_t count)
{
    std::size_t have = 0;
    while (have < count && m_error.isEmpty() && m_piece < m_layout.pieces.size()) {
        if (m_done == m_layout.pieces[m_piece].bytes) {
            ++m_piece;
            m_done = 0;
            continue;
        }
        have += readPiece(samples + have, count - have);
    }
    return have;
}

std::size_t RecordingSource::readPiece(Sample* samples, std::size_t count)
{
    const RecordingLayout::Piece& piece = m_layout.pieces[m_piece];
    const qint64 size = bytesPerSample(m_layout.format);
    const qint64 wanted = std::min({piece.bytes - m_done, qint64(count) * size, readBytes});
    const qint64 at = piece.offset + m_done;
    qint64 got = m_file.seek(at) ? 0 : -1;
    while (got >= 0 && got < wanted) {
        const qint64 step = m_file.read(m_bytes.data() + got, wanted - got);
        if (step <= 0)
            break;
        got += step;
    }
    if (got != wanted)
        m_error = m_layout.fileName +
                  QStringLiteral(
                      ": reading failed at byte %1: %2; copy the file to a sound disk and leave "
                      "it alone while it plays")
                      .arg(at + std::max<qint64>(got, 0))
                      .arg(m_file.error() == QFile::NoError ? QStringLiteral("the file became shorter")
                                                            : m_file.errorString().toLower());
    const auto whole = std::size_t(std::max<qint64>(got, 0) / size);
    convertSamples(m_layout.format, m_bytes.constData(), samples, whole);
    m_done += qint64(whole) * size;
    return whole;
}

bool RecordingSource::rewind()
{
    if (!m_error.isEmpty())
        return false;
    m_piece = 0;
    m_done = 0;
    return true;
}

}  // namespace Receiver
