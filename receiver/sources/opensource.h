#pragma once

#include <QString>
#include <memory>
#include <optional>

#include "receiver/sources/iqsource.h"

namespace Receiver {

// What the command line says about a recording beyond its name; what is not given is taken from
// the file or guessed from its name.
struct RecordingOptions
{
    std::optional<double> rate;    // samples/s
    std::optional<double> center;  // Hz
    QString format;                // u8, s8, s16, f32; empty: from the file
};

// Opens a recording (raw u8, s8, s16, f32; WAV with two channels; SigMF). Null with one line in
// `error` that says what, where and what to do: unreadable, empty, truncated, nonsensical.
std::unique_ptr<IqSource> openRecording(const QString& fileName, const RecordingOptions& options,
                                        QString* error);

// The built-in scene: emitters of many kinds around 98 MHz at 5 MS/s, everything from the seed.
std::unique_ptr<IqSource> openScene(quint64 seed);

}  // namespace Receiver
