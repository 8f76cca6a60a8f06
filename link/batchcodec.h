#pragma once

#include <QByteArray>

#include "link/messages.h"

// The one message that comes thousands of times a second has its own writer and a fast reader.
namespace Link {

// Builds a Batch update by update, so that the driver can stop at a size.
class BatchWriter
{
public:
    BatchWriter(quint64 epoch, quint64 sequence, quint64 skipped, quint64 lost);

    void add(quint32 id, qint64 time, ValueStatus status, const Content& content);

    int count() const { return m_count; }
    qint64 bytes() const { return m_out.size(); }

    // The payload of the frame; the writer is spent then.
    QByteArray finish();

private:
    QByteArray m_out;
    qsizetype m_countAt = 0;  // where the number of updates stands
    qint64 m_time = 0;        // of the update before
    int m_count = 0;
};

// Reads a batch of exactly the form that BatchWriter makes. False when it has any other form, valid
// or not: then the general reader decides. QCborStreamReader needs 0.56 µs for an update, which alone
// would eat three quarters of what the workbench may spend on it.
bool decodeBatchFast(const QByteArray& payload, Batch* batch);

}  // namespace Link
