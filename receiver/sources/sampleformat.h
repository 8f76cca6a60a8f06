#pragma once

#include <QString>
#include <QStringList>
#include <cstddef>
#include <optional>

#include "receiver/sources/iqsource.h"

namespace Receiver {

// How one sample lies in a file: I, then Q, little endian, without a gap. S24 and S32 occur in WAV
// and SigMF only; `u8` has its zero between 127 and 128.
enum class SampleFormat
{
    U8,
    S8,
    S16,
    S24,
    S32,
    F32
};

// Of I and Q together: 2, 4, 6 or 8.
int bytesPerSample(SampleFormat format);

// The name that people write: "u8", "s16" ...
QString formatName(SampleFormat format);

// What --format may say. Empty: no such format.
std::optional<SampleFormat> formatByName(const QString& name);
QStringList formatNames();

// By the file's ending (.cu8, .cs16, .cf32, .cfile ...), as the common recorders write it. Empty:
// the ending tells nothing.
std::optional<SampleFormat> formatBySuffix(const QString& suffix);

// Converts `count` samples to full scale 1.0. `bytes` need not be aligned.
void convertSamples(SampleFormat format, const char* bytes, Sample* samples, std::size_t count);

}  // namespace Receiver
