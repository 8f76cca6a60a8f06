#pragma once

#include <QCborStreamReader>
#include <QString>

#include "link/limits.h"
#include "link/messages.h"

namespace Link {

// Reads the CBOR of one frame within Limits. The first thing that does not fit is kept as the
// error, with its byte; after it every read gives an empty result and loops end.
class CborIn
{
public:
    explicit CborIn(const QByteArray& payload);

    bool failed() const { return !m_error.isEmpty(); }
    QString error() const { return m_error; }
    void fail(const QString& what);

    // Reads a map. `entry(key)` reads the content of a known key; it returns false, reading nothing,
    // for others, which are skipped. `required` is the set of keys (bit by bit) that must be there.
    template <class Entry>
    void map(quint32 required, Entry entry)
    {
        quint32 seen = 0;
        if (!enter(QCborStreamReader::Map))
            return;
        while (more())
            readEntry(seen, entry);
        leave();
        checkRequired(required, seen);
    }

    // Reads an array; `element()` reads one of its elements. `limit` bounds their number.
    template <class Element>
    void array(int limit, Element element)
    {
        if (!enter(QCborStreamReader::Array))
            return;
        for (int count = 0; more(); ++count) {
            if (count >= limit) {
                fail(QStringLiteral("more than %1 elements in an array").arg(limit));
                return;
            }
            element();
        }
        leave();
    }

    bool boolean();
    qint64 integer();
    quint64 unsignedInteger(quint64 maximum);
    double number();  // an integer is one too
    QString text(qint64 maximumBytes = Limits::stringBytes);
    QByteArray bytes(qint64 maximumBytes = Limits::stringBytes);
    Content content();
    void skip();

    // Nothing may stand behind the message.
    void finish();

    // For messages, whose first entry must be read before the others: enter, then entries, then leave.
    bool enter(QCborStreamReader::Type type);
    bool more();
    void leave();
    void checkRequired(quint32 required, quint32 seen);

    template <class Entry>
    void readEntry(quint32& seen, Entry entry)
    {
        const int key = readKey(seen);
        if (!failed() && !entry(key))
            skip();
    }
    int readKey(quint32& seen);

private:
    void advance();
    bool expect(bool right, const char* what);
    bool checkString(qint64 maximumBytes);

    QCborStreamReader m_reader;
    qint64 m_size;
    int m_depth = 0;
    int m_items = 0;  // elements and entries read so far
    QString m_error;
};

}  // namespace Link
