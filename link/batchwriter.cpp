#include "link/batchwriter.h"

#include "link/keys.h"
#include "link/limits.h"

namespace Link {

BatchWriter::BatchWriter(quint64 epoch, quint64 sequence, quint64 skipped, quint64 lost) : m_writer(&m_out)
{
    m_out.reserve(Limits::chunkBytes + 4096);
    m_writer.startMap(6);
    const auto entry = [this](int key, quint64 number) {
        m_writer.append(key);
        m_writer.append(number);
    };
    entry(Keys::type, quint64(MessageType::Batch));
    entry(Keys::batchEpoch, epoch);
    entry(Keys::batchSequence, sequence);
    entry(Keys::batchSkipped, skipped);
    entry(Keys::batchLost, lost);
    m_writer.append(Keys::batchUpdates);
    m_writer.startArray();  // how many is known at the end
}

void BatchWriter::add(quint32 id, qint64 time, ValueStatus status, const Content& content)
{
    m_writer.startArray(4);
    m_writer.append(quint64(id));
    m_writer.append(qint64(quint64(time) - quint64(m_time)));
    m_writer.append(quint64(status));
    if (const double* number = std::get_if<double>(&content))
        m_writer.append(*number);
    else if (const bool* flag = std::get_if<bool>(&content))
        m_writer.append(*flag);
    else if (const qint64* integer = std::get_if<qint64>(&content))
        m_writer.append(*integer);
    else if (const QString* text = std::get_if<QString>(&content))
        m_writer.append(QStringView(*text));
    else if (const QByteArray* bytes = std::get_if<QByteArray>(&content))
        m_writer.append(*bytes);
    else
        m_writer.append(nullptr);
    m_writer.endArray();
    m_time = time;
    ++m_count;
}

QByteArray BatchWriter::finish()
{
    m_writer.endArray();
    m_writer.endMap();
    return std::move(m_out);
}

}  // namespace Link
