#pragma once

#include <QFile>
#include <QString>
#include <QVector>
#include <optional>

#include "receiver/sources/opensource.h"
#include "receiver/sources/sampleformat.h"

namespace Receiver {

// Where the samples of a recording lie and what they are. The readers of the file kinds fill it.
struct RecordingLayout
{
    struct Piece
    {
        qint64 offset = 0;  // bytes from the beginning of the file
        qint64 bytes = 0;   // whole samples, > 0
    };

    QString fileName;  // of the file that holds the samples
    SampleFormat format = SampleFormat::S16;
    std::optional<double> rate;    // samples/s, as the file says; unchecked
    std::optional<double> center;  // Hz, as the file says; unchecked
    QVector<Piece> pieces;         // in the order of time, at least one when the layout is good
};

// Both return an empty text, or one line: what is wrong and what to do. The file's name is not in
// it, the caller puts it ahead.

// `file` is open and stands at its beginning.
QString readWavLayout(QFile& file, RecordingLayout* layout);

// `metaName` is the .sigmf-meta file.
QString readSigmfLayout(const QString& metaName, RecordingLayout* layout);

// One piece from `offset` to `size`; a text when that is empty or ends within a sample.
QString wholeFilePiece(qint64 offset, qint64 size, RecordingLayout* layout);

}  // namespace Receiver
