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
//
// The kind comes from `format` (then the file is taken as bare samples), else from the content
// (WAV, all its data chunks in a row), else from the ending: .sigmf-meta or .sigmf-data; .u8 .cu8
// .bin .complex16u; .s8 .cs8 .complex16s (8 bits each); .s16 .cs16 .sc16 .complex32s; .f32 .cf32
// .fc32 .cfile .complex. Rate and centre come from the options, else from the file, else from its
// name ("band_98.5MHz_2.4Msps.cu8"). Without any rate it is refused (1 kS/s to 100 MS/s); without
// any centre the centre is 0 Hz.
std::unique_ptr<IqSource> openRecording(const QString& fileName, const RecordingOptions& options,
                                        QString* error);

// The built-in scene: emitters of many kinds around 98 MHz at 5 MS/s, everything from the seed.
std::unique_ptr<IqSource> openScene(quint64 seed);

}  // namespace Receiver
