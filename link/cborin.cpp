#include "link/cborin.h"

#include <cmath>
#include <limits>

namespace Link {

CborIn::CborIn(const QByteArray& payload) : m_reader(payload), m_size(payload.size())
{
    if (m_reader.lastError())
        fail(m_reader.lastError().toString());
}

void CborIn::fail(const QString& what)
{
    if (m_error.isEmpty())
        m_error = QStringLiteral("%1 at byte %2 of %3").arg(what).arg(m_reader.currentOffset()).arg(m_size);
}

bool CborIn::expect(bool right, const char* what)
{
    if (failed())
        return false;
    if (m_reader.lastError())
        fail(m_reader.lastError().toString());
    else if (!right)
        fail(QStringLiteral("%1 expected").arg(QLatin1String(what)));
    return !failed();
}

void CborIn::advance()
{
    if (!m_reader.next() && m_reader.lastError())
        fail(m_reader.lastError().toString());
}

bool CborIn::enter(QCborStreamReader::Type type)
{
    if (!expect(m_reader.type() == type, type == QCborStreamReader::Map ? "a map" : "an array"))
        return false;
    if (m_depth >= Limits::nesting) {
        fail(QStringLiteral("more than %1 levels of nesting").arg(Limits::nesting));
        return false;
    }
    if (m_reader.isLengthKnown() && m_reader.length() > quint64(Limits::arrayItems)) {
        fail(QStringLiteral("%1 elements announced, %2 allowed")
                 .arg(m_reader.length())
                 .arg(Limits::arrayItems));
        return false;
    }
    if (!m_reader.enterContainer()) {
        fail(m_reader.lastError().toString());
        return false;
    }
    ++m_depth;
    return true;
}

bool CborIn::more()
{
    if (failed())
        return false;
    if (!m_reader.hasNext()) {
        if (m_reader.lastError())
            fail(m_reader.lastError().toString());
        return false;
    }
    if (++m_items > Limits::frameItems) {
        fail(QStringLiteral("more than %1 elements in a frame").arg(Limits::frameItems));
        return false;
    }
    return true;
}

void CborIn::leave()
{
    if (failed())
        return;
    --m_depth;
    if (!m_reader.leaveContainer())
        fail(m_reader.lastError().toString());
}

int CborIn::readKey(quint32& seen)
{
    const qint64 key = integer();
    if (failed() || key < 0 || key >= 32)
        return -1;
    const quint32 bit = 1u << key;
    if (seen & bit)
        fail(QStringLiteral("key %1 given twice").arg(key));
    seen |= bit;
    return int(key);
}

void CborIn::checkRequired(quint32 required, quint32 seen)
{
    for (int key = 0; key < 32; ++key) {
        if ((required & ~seen) & (1u << key))
            fail(QStringLiteral("key %1 is missing").arg(key));
    }
}

bool CborIn::boolean()
{
    if (!expect(m_reader.isBool(), "a boolean"))
        return false;
    const bool result = m_reader.toBool();
    advance();
    return result;
}

qint64 CborIn::integer()
{
    if (!expect(m_reader.isInteger(), "an integer"))
        return 0;
    qint64 result = 0;
    if (m_reader.isUnsignedInteger()) {
        const quint64 raw = m_reader.toUnsignedInteger();
        if (raw > quint64(std::numeric_limits<qint64>::max()))
            fail(QStringLiteral("integer out of range"));
        result = qint64(raw);
    } else {
        // The absolute value; 0 stands for 2^64.
        const quint64 raw = quint64(m_reader.toNegativeInteger());
        if (raw == 0 || raw > quint64(std::numeric_limits<qint64>::max()) + 1)
            fail(QStringLiteral("integer out of range"));
        else
            result = -qint64(raw - 1) - 1;
    }
    advance();
    return failed() ? 0 : result;
}

quint64 CborIn::unsignedInteger(quint64 maximum)
{
    if (!expect(m_reader.isUnsignedInteger(), "an integer that is not negative"))
        return 0;
    const quint64 result = m_reader.toUnsignedInteger();
    if (result > maximum) {
        fail(QStringLiteral("%1 is more than %2").arg(result).arg(maximum));
        return 0;
    }
    advance();
    return result;
}

double CborIn::number()
{
    if (m_reader.isInteger())
        return double(integer());
    const bool fits = m_reader.isDouble() || m_reader.isFloat() || m_reader.isFloat16();
    if (!expect(fits, "a number"))
        return 0;
    const double result = m_reader.isDouble()  ? m_reader.toDouble()
                          : m_reader.isFloat() ? double(m_reader.toFloat())
                                               : double(m_reader.toFloat16());
    advance();
    return result;
}

bool CborIn::checkString(qint64 maximumBytes)
{
    if (!m_reader.isLengthKnown()) {
        fail(QStringLiteral("a string without a length"));
        return false;
    }
    if (m_reader.length() > quint64(maximumBytes)) {
        fail(QStringLiteral("a string of %1 bytes, %2 allowed").arg(m_reader.length()).arg(maximumBytes));
        return false;
    }
    if (qint64(m_reader.length()) > m_size - m_reader.currentOffset()) {
        fail(QStringLiteral("a string longer than the frame"));
        return false;
    }
    return true;
}

QString CborIn::text(qint64 maximumBytes)
{
    if (!expect(m_reader.isString(), "a text") || !checkString(maximumBytes))
        return {};
    QString result;
    auto part = m_reader.readString();
    while (part.status == QCborStreamReader::Ok) {
        result += part.data;
        part = m_reader.readString();
    }
    if (part.status == QCborStreamReader::Error)
        fail(m_reader.lastError().toString());
    return result;
}

QByteArray CborIn::bytes(qint64 maximumBytes)
{
    if (!expect(m_reader.isByteArray(), "a byte string") || !checkString(maximumBytes))
        return {};
    QByteArray result;
    auto part = m_reader.readByteArray();
    while (part.status == QCborStreamReader::Ok) {
        result += part.data;
        part = m_reader.readByteArray();
    }
    if (part.status == QCborStreamReader::Error)
        fail(m_reader.lastError().toString());
    return result;
}

Content CborIn::content()
{
    switch (m_reader.type()) {
        case QCborStreamReader::UnsignedInteger:
        case QCborStreamReader::NegativeInteger:
            return integer();
        case QCborStreamReader::String:
            return text();
        case QCborStreamReader::ByteArray:
            return bytes();
        case QCborStreamReader::Float16:
        case QCborStreamReader::Float:
        case QCborStreamReader::Double:
            return number();
        default:
            break;
    }
    if (m_reader.isBool())
        return boolean();
    if (expect(m_reader.isNull(), "the content of a value"))
        advance();
    return std::monostate();
}

void CborIn::skip()
{
    while (!failed() && m_reader.isTag())
        advance();
    if (failed())
        return;
    if (m_reader.isContainer()) {
        const bool isMap = m_reader.isMap();
        if (!enter(m_reader.type()))
            return;
        while (more()) {
            skip();
            if (isMap)
                skip();
        }
        leave();
    } else if (m_reader.isString()) {
        text();
    } else if (m_reader.isByteArray()) {
        bytes();
    } else if (expect(m_reader.isValid(), "something")) {
        advance();
    }
}

void CborIn::finish()
{
    if (!failed() && m_reader.currentOffset() != m_size)
        fail(QStringLiteral("something behind the message"));
}

}  // namespace Link
