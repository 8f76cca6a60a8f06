#pragma once

#include <QByteArray>
#include <QString>

#include "link/messages.h"

// Messages as CBOR: one map with integer keys, key 0 (the type) first. Unknown keys are skipped;
// everything else that does not fit is refused with a text that says what and where.
namespace Link {

// For people: "Hello", "Batch".
const char* name(const Message& message);

// The payload of one frame. A message made of contents within Limits always fits a frame, except
// Snapshot, Describe and Batch with many values: their makers split by estimatedBytes().
QByteArray encode(const Message& message);

// False with `error` when the payload is cut, malformed, over a limit, of an unknown type or has a
// wrong type of content somewhere; `message` is unspecified then.
bool decode(const QByteArray& payload, Message* message, QString* error);

// An upper bound of the encoded size.
qint64 estimatedBytes(const Description& description);
qint64 estimatedBytes(const Update& update);

// Cuts a text or byte string to Limits::stringBytes, at a whole character. True when it was cut.
bool cutToLimit(Content* content);

}  // namespace Link
