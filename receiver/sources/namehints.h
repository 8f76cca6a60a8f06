#pragma once

#include <QString>
#include <optional>

namespace Receiver {

// What a recording's name tells about it: "band_98.5MHz_2.4Msps.cu8" has its centre and its rate.
// A number counts only with its unit: Hz (centre), sps or SPS (rate), with k, M or G before it,
// and only as a part of its own between '_', '-', blank or dot. The first one of a kind counts.
struct NameHints
{
    std::optional<double> rate;    // samples/s
    std::optional<double> center;  // Hz
};

NameHints hintsOfName(const QString& fileName);

}  // namespace Receiver
