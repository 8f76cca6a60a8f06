#pragma once

#include <QByteArray>
#include <QCborStreamWriter>

#include "link/messages.h"

namespace Link {

// Builds a Batch update by update, so that the driver can stop at a size. Times travel as
// differences to the update before: values of one moment then take one byte for it.
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
    Q_DISABLE_COPY(BatchWriter)
    QByteArray m_out;
    QCborStreamWriter m_writer;
    qint64 m_time = 0;  // of the update before
    int m_count = 0;
};

}  // namespace Link
