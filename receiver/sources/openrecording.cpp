#include <QFileInfo>
#include <cmath>
#include <utility>

#include "receiver/sources/namehints.h"
#include "receiver/sources/recordinglayout.h"
#include "receiver/sources/recordingsource.h"

namespace Receiver {

namespace {

// What the transforms can make something of: below it a report would hold no resolution, above it
// no machine keeps up.
constexpr double rateMinimum = 1e3;     // samples/s
constexpr double rateMaximum = 100e6;   // samples/s
constexpr double centerMaximum = 1e12;  // Hz

QString checkFile(const QString& fileName)
{
    const QFileInfo info(fileName);
    if (!info.exists())
        return QStringLiteral("there is no such file; check the name");
    if (info.isDir())
        return QStringLiteral("is a folder; name a recording in it");
    if (!info.isFile())  // opening a pipe would wait for its writer
        return QStringLiteral("is no file that can be read again; save the stream to a file first");
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly))
        return QStringLiteral("cannot be read: %1; check its permissions").arg(file.errorString().toLower());
    if (file.size() == 0)
        return QStringLiteral("is empty; copy or record it again");
    return {};
}

QString readRawLayout(const QString& fileName, const RecordingOptions& options, RecordingLayout* layout)
{
    const auto format = options.format.isEmpty() ? formatBySuffix(QFileInfo(fileName).suffix())
                                                 : formatByName(options.format);
    if (!format)
        return QStringLiteral("its name does not tell how its samples are stored; say so with --format %1")
            .arg(formatNames().join(QLatin1Char('|')));
    layout->format = *format;
    layout->fileName = fileName;
    return wholeFilePiece(0, QFileInfo(fileName).size(), layout);
}

QString readLayout(const QString& fileName, const RecordingOptions& options, RecordingLayout* layout)
{
    if (!options.format.isEmpty() && !formatByName(options.format))
        return QStringLiteral("there is no format \"%1\"; --format takes %2")
            .arg(options.format, formatNames().join(QStringLiteral(", ")));
    const QString suffix = QFileInfo(fileName).suffix().toLower();
    if (options.format.isEmpty() && suffix.startsWith(QLatin1String("sigmf-")))
        return readSigmfLayout(
            fileName.left(fileName.lastIndexOf(QLatin1Char('.'))) + QLatin1String(".sigmf-meta"), layout);
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly))
        return QStringLiteral("cannot be read: %1").arg(file.errorString().toLower());
    const QByteArray magic = file.peek(4);
    const bool wav = suffix == QLatin1String("wav") || magic == "RIFF" || magic == "RF64";
    if (!options.format.isEmpty() || !wav)
        return readRawLayout(fileName, options, layout);
    layout->fileName = fileName;
    return readWavLayout(file, layout);
}

QString checkNumbers(const std::optional<double>& rate, double center)
{
    if (!rate)
        return QStringLiteral("its sample rate is not known; say it with --rate, in samples per second");
    if (!std::isfinite(*rate) || *rate < rateMinimum || *rate > rateMaximum)
        return QStringLiteral(
                   "a sample rate of %1 S/s makes no sense; say the right one with --rate, %2 to %3")
            .arg(*rate, 0, 'g', 10)
            .arg(rateMinimum, 0, 'f', 0)
            .arg(rateMaximum, 0, 'f', 0);
    if (!std::isfinite(center) || center < 0 || center > centerMaximum)
        return QStringLiteral(
                   "a centre frequency of %1 Hz makes no sense; say the right one with --center, 0 to %2")
            .arg(center, 0, 'g', 10)
            .arg(centerMaximum, 0, 'f', 0);
    return {};
}

template <typename T>
std::optional<T> firstOf(const std::optional<T>& a, const std::optional<T>& b, const std::optional<T>& c)
{
    return a ? a : b ? b : c;
}

}  // namespace

QString wholeFilePiece(qint64 offset, qint64 size, RecordingLayout* layout)
{
    const int step = bytesPerSample(layout->format);
    const qint64 bytes = size - offset;
    if (bytes <= 0)
        return QStringLiteral("holds no samples; copy or record it again");
    if (bytes % step != 0)
        return QStringLiteral(
                   "truncated, or not %1: %2 bytes are no whole number of samples of %3 bytes, %4 "
                   "left over; copy it again or correct --format")
            .arg(formatName(layout->format))
            .arg(bytes)
            .arg(step)
            .arg(bytes % step);
    layout->pieces = {{offset, bytes}};
    return {};
}

std::unique_ptr<IqSource> openRecording(const QString& fileName, const RecordingOptions& options,
                                        QString* error)
{
    RecordingLayout layout;
    const NameHints hints = hintsOfName(fileName);
    QString wrong = checkFile(fileName);
    if (wrong.isEmpty())
        wrong = readLayout(fileName, options, &layout);
    const auto rate = firstOf(options.rate, layout.rate, hints.rate);
    const double center = firstOf(options.center, layout.center, hints.center).value_or(0.0);
    if (wrong.isEmpty())
        wrong = checkNumbers(rate, center);
    if (!wrong.isEmpty()) {
        if (error)
            *error = fileName + QStringLiteral(": ") + wrong;
        return nullptr;
    }
    auto source = std::make_unique<RecordingSource>(layout, *rate, center);
    if (source->open())
        return source;
    if (error)
        *error = source->error();
    return nullptr;
}

}  // namespace Receiver
