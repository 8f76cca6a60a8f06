#pragma once

#include "link/keys.h"
#include "link/messages.h"

namespace Link {

class CborIn;

// The messages of streams as CBOR; codec.h puts them in a row with the others.
QByteArray write(const StreamRequest& request);
QByteArray write(const StreamReady& ready);
QByteArray write(const StreamStart& start);
QByteArray write(const ScanData& data);

// Reads what follows the type of a message from StreamRequest on.
Message readStreamMessage(CborIn& in, MessageType type);

}  // namespace Link
