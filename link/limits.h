#pragma once

#include <QtGlobal>

// What either end accepts. A frame beyond any of these ends the connection with a reason; nothing
// is allocated for what a frame merely announces.
namespace Link::Limits {

constexpr qint64 frameBytes = 4 << 20;      // of one frame, without its length
constexpr int nesting = 8;                  // containers inside each other, the message's map included
constexpr qint64 stringBytes = 256 << 10;   // of one text (UTF-8) or byte string
constexpr int arrayItems = 65536;           // of one array or map
constexpr int frameItems = 8 * arrayItems;  // of all arrays and maps of a frame together
constexpr int sessionBytes = 16;            // of Hello::session
constexpr int nameBytes = 256;              // what an end calls itself
constexpr qint64 receiveBytes = 1 << 20;    // read from a socket in one go
constexpr qint64 unsentBytes = 512 << 10;   // more than this waiting for a slow reader: write no more
constexpr qint64 chunkBytes = 128 << 10;    // aimed at for one frame of a snapshot or batch
constexpr int chunkUpdates = 8192;          // values in one frame of a snapshot or batch
constexpr int pendingEvents = 1024;         // events waiting for one reader; the oldest are dropped
constexpr int hooksPerConnection = 64;
constexpr int connections = 32;
constexpr int scanPoints = 131072;  // levels in one frame of a spectrum
constexpr int streamConnections = 16;

}  // namespace Link::Limits
