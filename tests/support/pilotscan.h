#pragma once

#include <QJsonObject>

// What the pilot can tell of a live scan: what stands in the picture, not what it looks like.
namespace PilotScan {

// "from", "to": frequencies in Hz between which the strongest bin is sought; both optional.
// Answers what the picture shows: "view", "levels", "trace", "peak", "channel", "places" (pixels of
// the canvas), "stale", "message", "stream", "received", "paints", "accessible".
QJsonObject facts(const QJsonObject& command);

// "how" begin: from now on note for every new frame how long after its last sample it was painted.
// "how" end: stops, and gives "ages", in ms.
QJsonObject paintAges(const QJsonObject& command);

}  // namespace PilotScan
