#ifndef HOST_CONNECTIONSTATE_H
#define HOST_CONNECTIONSTATE_H

#include <QtCore/QObject>

#include "receivercommon/receivercommon_global.h"

class ConnectionStatePrivate;

// Watches whether the receiver's driver is there. Timed out means: not connected for the
// configured time (60 s unless told otherwise) since Connect2Tree or since the connection was lost.
class RECEIVERCOMMON_EXPORT ConnectionState : public QObject
{
    Q_OBJECT
public:
    explicit ConnectionState(QObject* parent = 0);
    ~ConnectionState();

    void Connect2Tree();  // begins to watch the client "VTConnectToDRV"; twice is once
    void DisconnectFromTree();

    bool GetConnected() const;
    bool GetConnectionTimedout() const;

Q_SIGNALS:
    void StateChanged();

private:
    Q_DISABLE_COPY(ConnectionState)
    friend class ConnectionStatePrivate;
    ConnectionStatePrivate* d;
};

#endif
