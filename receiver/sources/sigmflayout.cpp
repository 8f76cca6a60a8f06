#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include "receiver/sources/recordinglayout.h"

namespace Receiver {

namespace {

constexpr qint64 metaBytesMaximum = 64 * 1024 * 1024;  // annotations make some of them long

QString key(const char* name)
{
    return QLatin1String("core:") + QLatin1String(name);
}

std::optional<SampleFormat> formatOfDatatype(const QString& datatype)
{
    static const struct
    {
        const char* datatype;
        SampleFormat format;
    } rows[] = {{"cu8", SampleFormat::U8},      {"ci8", SampleFormat::S8},
                {"ci16_le", SampleFormat::S16}, {"ci16", SampleFormat::S16},
                {"ci32_le", SampleFormat::S32}, {"ci32", SampleFormat::S32},
                {"cf32_le", SampleFormat::F32}, {"cf32", SampleFormat::F32}};
    for (const auto& row : rows)
        if (datatype == QLatin1String(row.datatype))
            return row.format;
    return {};
}

QString readJson(const QString& metaName, QJsonObject* root)
{
    QFile file(metaName);
    if (!file.open(QIODevice::ReadOnly))
        return QStringLiteral(
                   "cannot be read: %1; both files, .sigmf-meta and .sigmf-data, must lie together")
            .arg(file.errorString().toLower());
    if (file.size() > metaBytesMaximum)
        return QStringLiteral("is %1 bytes long, more than a SigMF description may have; name the right file")
            .arg(file.size());
    QJsonParseError problem;
    const QJsonDocument document = QJsonDocument::fromJson(file.readAll(), &problem);
    if (problem.error != QJsonParseError::NoError || !document.isObject())
        return QStringLiteral("is no SigMF description: %1 at byte %2; correct it or export it again")
            .arg(document.isNull() ? problem.errorString() : QStringLiteral("no object"))
            .arg(problem.offset);
    *root = document.object();
    return {};
}

QString readGlobal(const QJsonObject& global, RecordingLayout* layout)
{
    const QString datatype = global.value(key("datatype")).toString();
    const auto format = formatOfDatatype(datatype);
    if (!format)
        return datatype.isEmpty()
                   ? QStringLiteral("has no core:datatype in \"global\"; add it, for example \"ci16_le\"")
                   : QStringLiteral(
                         "core:datatype \"%1\" is not read; convert it to cu8, ci8, ci16_le, "
                         "ci32_le or cf32_le")
                         .arg(datatype);
    const int channels = global.value(key("num_channels")).toInt(1);
    if (channels != 1)
        return QStringLiteral("core:num_channels is %1; only recordings of one channel are read")
            .arg(channels);
    layout->format = *format;
    const QJsonValue rate = global.value(key("sample_rate"));
    if (rate.isDouble())
        layout->rate = rate.toDouble();
    else if (!rate.isUndefined())
        return QStringLiteral("core:sample_rate is no number; correct it");
    return {};
}

// Takes the first capture: its frequency, and how many bytes lie ahead of the first sample.
QString readCaptures(const QJsonArray& captures, RecordingLayout* layout, qint64* headerBytes)
{
    for (int i = 0; i < captures.size(); ++i) {
        const QJsonObject capture = captures[i].toObject();
        const double header = capture.value(key("header_bytes")).toDouble(0);
        if (header < 0 || (i > 0 && header > 0) || header > 1e15)
            return QStringLiteral("core:header_bytes of capture %1 is not read; take the headers out").arg(i);
        const QJsonValue frequency = capture.value(key("frequency"));
        if (i == 0) {
            *headerBytes = qint64(header);
            if (frequency.isDouble())
                layout->center = frequency.toDouble();
        } else if (frequency.isDouble() && layout->center != frequency.toDouble()) {
            return QStringLiteral(
                       "capture %1 is at another frequency (%2 Hz) than the first; split the recording")
                .arg(i)
                .arg(frequency.toDouble(), 0, 'f', 0);
        }
    }
    return {};
}

QString dataName(const QString& metaName, const QJsonObject& global)
{
    const QString given = global.value(key("dataset")).toString();
    if (!given.isEmpty())
        return QFileInfo(metaName).path() + QLatin1Char('/') + QFileInfo(given).fileName();
    return metaName.left(metaName.size() - 4) + QLatin1String("data");
}

}  // namespace

QString readSigmfLayout(const QString& metaName, RecordingLayout* layout)
{
    QJsonObject root;
    QString wrong = readJson(metaName, &root);
    if (!wrong.isEmpty())
        return wrong;
    const QJsonObject global = root.value(QLatin1String("global")).toObject();
    qint64 headerBytes = 0;
    wrong = readGlobal(global, layout);
    if (wrong.isEmpty())
        wrong = readCaptures(root.value(QLatin1String("captures")).toArray(), layout, &headerBytes);
    if (!wrong.isEmpty())
        return wrong;
    layout->fileName = dataName(metaName, global);
    const QFileInfo data(layout->fileName);
    if (!data.isFile())
        return QStringLiteral("its samples are missing: no file %1; put it beside the description")
            .arg(layout->fileName);
    const qint64 trailing = qint64(global.value(key("trailing_bytes")).toDouble(0));
    return wholeFilePiece(headerBytes, data.size() - std::max<qint64>(trailing, 0), layout);
}

}  // namespace Receiver
