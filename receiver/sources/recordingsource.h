#pragma once

#include <QByteArray>
#include <QFile>

#include "receiver/sources/iqsource.h"
#include "receiver/sources/recordinglayout.h"

namespace Receiver {

// Plays a recording's samples in order, read from the file as they are needed. A file that becomes
// shorter meanwhile ends the source with an error.
class RecordingSource : public IqSource
{
public:
    // `rate` and `center` are checked already and win over the layout's.
    RecordingSource(RecordingLayout layout, double rate, double center);

    bool open();  // false: error() says why

    QString name() const override;
    double sampleRate() const override { return m_rate; }
    double center() const override { return m_center; }
    std::size_t read(Sample* samples, std::size_t count) override;
    bool rewind() override;
    QString error() const override { return m_error; }

private:
    std::size_t readPiece(Sample* samples, std::size_t count);

    RecordingLayout m_layout;
    double m_rate;
    double m_center;
    QFile m_file;
    QByteArray m_bytes;  // of one read
    int m_piece = 0;     // the piece that is read
    qint64 m_done = 0;   // bytes of it that were read
    QString m_error;
};

}  // namespace Receiver
