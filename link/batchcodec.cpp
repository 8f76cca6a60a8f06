#include "link/batchcodec.h"

#include <QtEndian>
#include <cstring>

#include "link/keys.h"
#include "link/limits.h"

namespace Link {
namespace {

enum Major : quint8
{
    Unsigned = 0x00,
    Negative = 0x20,
    Bytes = 0x40,
    Text = 0x60,
    Array = 0x80,
    Map = 0xa0
};
constexpr quint8 falseByte = 0xf4;
constexpr quint8 trueByte = 0xf5;
constexpr quint8 nullByte = 0xf6;
constexpr quint8 doubleByte = 0xfb;
constexpr quint8 fixedArray = Array | 26;  // followed by four bytes of count
constexpr int updateFields = 4;

int putHead(uchar* out, Major major, quint64 number)
{
    if (number < 24) {
        out[0] = uchar(major | number);
        return 1;
    }
    if (number <= 0xff) {
        out[0] = major | 24;
        out[1] = uchar(number);
        return 2;
    }
    if (number <= 0xffff) {
        out[0] = major | 25;
        qToBigEndian(quint16(number), out + 1);
        return 3;
    }
    if (number <= 0xffffffff) {
        out[0] = major | 26;
        qToBigEndian(quint32(number), out + 1);
        return 5;
    }
    out[0] = major | 27;
    qToBigEndian(number, out + 1);
    return 9;
}

int putInteger(uchar* out, qint64 number)
{
    if (number >= 0)
        return putHead(out, Unsigned, quint64(number));
    return putHead(out, Negative, quint64(-(number + 1)));
}

// A cursor over the payload; every read says whether it fitted.
class Cursor
{
public:
    explicit Cursor(const QByteArray& data)
        : m_at(reinterpret_cast<const uchar*>(data.constData())), m_end(m_at + data.size())
    {}

    bool atEnd() const { return m_at == m_end; }
    qint64 left() const { return m_end - m_at; }

    bool byte(quint8* out)
    {
        if (m_at == m_end)
            return false;
        *out = *m_at++;
        return true;
    }

    bool head(quint8* major, quint64* number)
    {
        quint8 first = 0;
        if (!byte(&first))
            return false;
        *major = first & 0xe0;
        const quint8 info = first & 0x1f;
        if (info < 24) {
            *number = info;
            return true;
        }
        if (info > 27)
            return false;
        const int size = 1 << (info - 24);
        if (left() < size)
            return false;
        quint64 value = 0;
        for (int i = 0; i < size; ++i)
            value = (value << 8) | m_at[i];
        m_at += size;
        *number = value;
        return true;
    }

    bool unsignedNumber(quint64* number)
    {
        quint8 major = 0;
        return head(&major, number) && major == Unsigned;
    }

    bool integer(qint64* number)
    {
        quint8 major = 0;
        quint64 raw = 0;
        if (!head(&major, &raw) || raw > quint64(INT64_MAX))
            return false;
        if (major == Unsigned)
            *number = qint64(raw);
        else if (major == Negative)
            *number = -1 - qint64(raw);
        else
            return false;
        return true;
    }

    bool key(int expected)
    {
        quint64 number = 0;
        return unsignedNumber(&number) && number == quint64(expected);
    }

    bool content(Content* out)
    {
        if (atEnd())
            return false;
        switch (*m_at) {
            case doubleByte: {
                if (left() < 9)
                    return false;
                const quint64 bits = qFromBigEndian<quint64>(m_at + 1);
                double number = 0;
                std::memcpy(&number, &bits, sizeof number);
                *out = number;
                m_at += 9;
                return true;
            }
            case falseByte:
            case trueByte:
                *out = *m_at++ == trueByte;
                return true;
            case nullByte:
                *out = std::monostate();
                ++m_at;
                return true;
            default:
                break;
        }
        // Texts need their encoding checked; they are rare enough for the general reader.
        qint64 number = 0;
        if (!integer(&number))
            return false;
        *out = number;
        return true;
    }

private:
    const uchar* m_at;
    const uchar* m_end;
};

bool readUpdate(Cursor& in, qint64* time, Update* update)
{
    quint8 first = 0;
    quint64 id = 0;
    quint64 status = 0;
    qint64 delta = 0;
    if (!in.byte(&first) || first != (Array | updateFields) || !in.unsignedNumber(&id) || id > 0xffffffff ||
        !in.integer(&delta) || __builtin_add_overflow(*time, delta, time) || !in.unsignedNumber(&status))
        return false;
    if (status != quint64(ValueStatus::Usable) && status != quint64(ValueStatus::NotAvailable))
        return false;
    update->id = quint32(id);
    update->time = *time;
    update->status = ValueStatus(status);
    return in.content(&update->content);
}

}  // namespace

BatchWriter::BatchWriter(quint64 epoch, quint64 sequence, quint64 skipped, quint64 lost)
{
    m_out.reserve(Limits::chunkBytes + 4096);
    uchar head[64];
    uchar* at = head;
    at += putHead(at, Map, 6);
    const auto entry = [&at](int key, quint64 number) {
        at += putHead(at, Unsigned, quint64(key));
        at += putHead(at, Unsigned, number);
    };
    entry(Keys::type, quint64(MessageType::Batch));
    entry(Keys::batchEpoch, epoch);
    entry(Keys::batchSequence, sequence);
    entry(Keys::batchSkipped, skipped);
    entry(Keys::batchLost, lost);
    at += putHead(at, Unsigned, Keys::batchUpdates);
    *at++ = fixedArray;
    m_countAt = at - head;
    at += 4;
    m_out.append(reinterpret_cast<const char*>(head), at - head);
}

void BatchWriter::add(quint32 id, qint64 time, ValueStatus status, const Content& content)
{
    uchar head[64];
    uchar* at = head;
    *at++ = Array | updateFields;
    at += putHead(at, Unsigned, id);
    at += putInteger(at, qint64(quint64(time) - quint64(m_time)));
    at += putHead(at, Unsigned, quint64(status));
    m_time = time;
    ++m_count;

    QByteArray tail;
    if (const double* number = std::get_if<double>(&content)) {
        *at++ = doubleByte;
        quint64 bits = 0;
        std::memcpy(&bits, number, sizeof bits);
        qToBigEndian(bits, at);
        at += 8;
    } else if (const bool* flag = std::get_if<bool>(&content)) {
        *at++ = *flag ? trueByte : falseByte;
    } else if (const qint64* integer = std::get_if<qint64>(&content)) {
        at += putInteger(at, *integer);
    } else if (const QString* text = std::get_if<QString>(&content)) {
        tail = text->toUtf8();
        at += putHead(at, Text, quint64(tail.size()));
    } else if (const QByteArray* bytes = std::get_if<QByteArray>(&content)) {
        tail = *bytes;
        at += putHead(at, Bytes, quint64(tail.size()));
    } else {
        *at++ = nullByte;
    }
    m_out.append(reinterpret_cast<const char*>(head), at - head);
    if (!tail.isEmpty())
        m_out.append(tail);
}

QByteArray BatchWriter::finish()
{
    qToBigEndian(quint32(m_count), reinterpret_cast<uchar*>(m_out.data()) + m_countAt);
    return std::move(m_out);
}

bool decodeBatchFast(const QByteArray& payload, Batch* batch)
{
    Cursor in(payload);
    quint8 first = 0;
    quint64 type = 0;
    if (!in.byte(&first) || first != (Map | 6) || !in.key(Keys::type) || !in.unsignedNumber(&type) ||
        type != quint64(MessageType::Batch))
        return false;
    if (!in.key(Keys::batchEpoch) || !in.unsignedNumber(&batch->epoch) || !in.key(Keys::batchSequence) ||
        !in.unsignedNumber(&batch->sequence) || !in.key(Keys::batchSkipped) ||
        !in.unsignedNumber(&batch->skipped) || !in.key(Keys::batchLost) || !in.unsignedNumber(&batch->lost) ||
        !in.key(Keys::batchUpdates))
        return false;

    quint8 major = 0;
    quint64 count = 0;
    // An update takes at least five bytes: more of them cannot be in the rest.
    if (!in.head(&major, &count) || major != Array || count > Limits::arrayItems ||
        count * 5 > quint64(in.left()))
        return false;
    batch->updates.resize(qsizetype(count));
    Update* update = batch->updates.data();
    qint64 time = 0;
    for (quint64 i = 0; i < count; ++i, ++update) {
        if (!readUpdate(in, &time, update))
            return false;
    }
    return in.atEnd();
}

}  // namespace Link
