#pragma once

#include <QHash>
#include <QString>

#include "receiver/values/valuestore.h"

namespace Receiver {

// Who uses which channel. A claim is a text that a client writes into the channel's ConnectedClient
// value; it belongs to the link connection that wrote it and ends with it.
class Claims
{
public:
    // The answer to `client` writing `text` into the ConnectedClient value of `channel`, where
    // `standing` is the text that stands there. Empty texts free. Notes the claim where it is
    // accepted.
    WriteResult decide(const QString& channel, ClientId client, const QString& text, const QString& standing);

    // Ends all claims of a client; the channels that it held.
    QStringList release(ClientId client);

    bool isClaimed(const QString& channel) const { return m_holders.contains(channel); }

private:
    QHash<QString, ClientId> m_holders;  // by channel name
};

}  // namespace Receiver
