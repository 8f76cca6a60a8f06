#ifndef HOST_IVTCLIENT_H
#define HOST_IVTCLIENT_H

#include <QtCore/QByteArray>
#include <QtCore/QString>

#include "valueframework/valueframework_global.h"

class IObserver;
class Node;

// The tree's connection to a driver. Its notices reach observers as Update(subject, code) with
// codes CC_HOOKS_SERVED, CC_CONNECTED and CC_DISCONNECTED; the subject is the Observable part of
// the same object (compare by dynamic_cast<IVtClient*>(subject)).
class VALUEFRAMEWORK_EXPORT IVtClient
{
public:
    virtual ~IVtClient();

    virtual void AddObserver(IObserver* observer) = 0;
    virtual void DeleteObserver(IObserver* observer) = 0;

    // "HOST:PORT" of the driver's streams; empty while it is not known.
    virtual QString GetServerAddress() = 0;

    // Sends at once what waits to be sent (hooks, writes).
    virtual void Flush() = 0;

    // Mirrors a part of the driver's tree: "source path,target path", both without a trailing "/".
    // The second text is reserved and empty. Kept over a loss: the client hooks again by itself.
    virtual void HookValues(const QByteArray& pathPair, const QByteArray& reserved) = 0;

    // Ends the mirroring of such a pair; the values stay, stale. Unknown pairs are ignored.
    virtual void ReleaseValues(const QByteArray& pathPair) = 0;

    // Whether a hook that covers the node has been answered on this connection.
    virtual bool IsNodeServed(Node* node) = 0;

    // Asked on CC_HOOKS_SERVED: whether the hook just answered brought values.
    virtual bool HasServedValues() = 0;

    virtual bool IsConnected() = 0;
};

#endif
