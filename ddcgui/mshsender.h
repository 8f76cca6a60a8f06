#ifndef DDCGUI_MSHSENDER_H
#define DDCGUI_MSHSENDER_H

#include <QString>

class IMshClientDll;

// The set-up of a message-sender client that all channel panels share: names, server and group of
// the channel `name`, the group's prefix from the configuration. `forDf` marks a channel in
// direction-finding mode.
void ConfigureMshSender(IMshClientDll* client, const QString& name, bool forDf);

// Where the message server listens: it runs on the same machine.
namespace MshServer {

enum
{
    port = 4500
};
QString LoopbackAddress();

}  // namespace MshServer

#endif
