#include "receiver/sources/sampleformat.h"

#include <volk/volk.h>

#include <array>
#include <cstring>

namespace Receiver {

namespace {

struct FormatRow
{
    SampleFormat format;
    int bytes;
    const char* name;
    bool offered;          // --format takes it: a bare file may hold it
    const char* suffixes;  // separated by blanks
};

const FormatRow formatRows[] = {
    // A bare .bin is what the common 8 bit receivers write.
    {SampleFormat::U8, 2, "u8", true, "u8 cu8 bin complex16u"},
    {SampleFormat::S8, 2, "s8", true, "s8 cs8 complex16s"},
    {SampleFormat::S16, 4, "s16", true, "s16 cs16 sc16 complex32s"},
    {SampleFormat::S24, 6, "s24", false, ""},
    {SampleFormat::S32, 8, "s32", false, ""},
    {SampleFormat::F32, 8, "f32", true, "f32 cf32 fc32 cfile complex"},
};

const FormatRow& rowOf(SampleFormat format)
{
    for (const FormatRow& row : formatRows)
        if (row.format == format)
            return row;
    return formatRows[0];
}

void convertU8(const char* bytes, float* out, std::size_t numbers)
{
    static const std::array<float, 256> table = [] {
        std::array<float, 256> values{};
        for (int i = 0; i < 256; ++i)
            values[std::size_t(i)] = (float(i) - 127.5F) / 127.5F;
        return values;
    }();
    for (std::size_t i = 0; i < numbers; ++i)
        out[i] = table[static_cast<unsigned char>(bytes[i])];
}

void convertS16(const char* bytes, float* out, std::size_t numbers)
{
    for (std::size_t i = 0; i < numbers; ++i) {
        qint16 value;
        std::memcpy(&value, bytes + i * sizeof value, sizeof value);
        out[i] = float(value) / 32768.0F;
    }
}

void convertS24(const char* bytes, float* out, std::size_t numbers)
{
    const auto* in = reinterpret_cast<const unsigned char*>(bytes);
    for (std::size_t i = 0; i < numbers; ++i, in += 3) {
        // Built in the upper three bytes, so that the sign comes by itself.
        const quint32 raised = quint32(in[0]) << 8 | quint32(in[1]) << 16 | quint32(in[2]) << 24;
        out[i] = float(static_cast<qint32>(raised)) / 2147483648.0F;
    }
}

void convertS32(const char* bytes, float* out, std::size_t numbers)
{
    for (std::size_t i = 0; i < numbers; ++i) {
        qint32 value;
        std::memcpy(&value, bytes + i * sizeof value, sizeof value);
        out[i] = float(value) / 2147483648.0F;
    }
}

}  // namespace

int bytesPerSample(SampleFormat format)
{
    return rowOf(format).bytes;
}

QString formatName(SampleFormat format)
{
    return QString::fromLatin1(rowOf(format).name);
}

std::optional<SampleFormat> formatByName(const QString& name)
{
    for (const FormatRow& row : formatRows)
        if (row.offered && name.compare(QLatin1String(row.name), Qt::CaseInsensitive) == 0)
            return row.format;
    return {};
}

QStringList formatNames()
{
    QStringList names;
    for (const FormatRow& row : formatRows)
        if (row.offered)
            names << QString::fromLatin1(row.name);
    return names;
}

std::optional<SampleFormat> formatBySuffix(const QString& suffix)
{
    for (const FormatRow& row : formatRows)
        if (QString::fromLatin1(row.suffixes)
                .split(QLatin1Char(' '), Qt::SkipEmptyParts)
                .contains(suffix.toLower()))
            return row.format;
    return {};
}

void convertSamples(SampleFormat format, const char* bytes, Sample* samples, std::size_t count)
{
    auto* out = reinterpret_cast<float*>(samples);
    switch (format) {
        case SampleFormat::U8:
            convertU8(bytes, out, 2 * count);
            break;
        case SampleFormat::S8:
            volk_8i_s32f_convert_32f(out, reinterpret_cast<const int8_t*>(bytes), 128.0F,
                                     static_cast<unsigned int>(2 * count));
            break;
        case SampleFormat::S16:
            convertS16(bytes, out, 2 * count);
            break;
        case SampleFormat::S24:
            convertS24(bytes, out, 2 * count);
            break;
        case SampleFormat::S32:
            convertS32(bytes, out, 2 * count);
            break;
        case SampleFormat::F32:
            std::memcpy(static_cast<void*>(samples), bytes, count * sizeof(Sample));
            break;
    }
}

}  // namespace Receiver
