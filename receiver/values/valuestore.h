#pragma once

#include <QHash>
#include <QObject>
#include <QString>
#include <QVector>
#include <functional>

#include "link/messages.h"

namespace Receiver {

using ValueId = quint32;
using ClientId = quint64;  // one link connection; 0: the driver itself

struct WriteResult
{
    Link::AnswerKind kind = Link::AnswerKind::Accepted;
    QString reason;
};

// Hears of every change of a store, in the order of the changes. Called on the store's thread.
class StoreListener
{
public:
    virtual ~StoreListener() = default;
    virtual void valueChanged(ValueId id) = 0;        // content, status or time
    virtual void descriptionChanged(ValueId id) = 0;  // limits, items, access; also a new value
    virtual void valueRemoved(ValueId id) = 0;
};

// The driver's values: flat, by path and by number. The store checks types and limits of what
// clients write and asks the value's authority; whoever owns a value sets it directly. Lives on
// the driver's main thread.
class ValueStore
{
public:
    // Decides about a write that fits type, access and limits. `content` may be changed (then say
    // Clamped and why). Returning Refused leaves the value as it is. The store itself sets the
    // content afterwards when it was not refused.
    using Authority = std::function<WriteResult(ClientId client, Link::Content& content)>;

    ValueStore();
    ~ValueStore();

    // Adds a value; the path must be new. Ids count from 1 and are never used again.
    ValueId define(Link::Description description, Link::Content content, Authority authority = {});
    void remove(ValueId id);

    ValueId find(const QString& path) const;            // 0: none
    QVector<ValueId> below(const QString& path) const;  // at and below, in the order of definition

    const Link::Description& description(ValueId id) const;
    void describe(ValueId id, const Link::Description& description);  // path and kind stay

    const Link::Content& content(ValueId id) const;
    Link::ValueStatus status(ValueId id) const;
    qint64 time(ValueId id) const;  // microseconds since 1970

    // By the driver. Listeners hear of it where it differs, of event values always. `time` 0: now.
    void set(ValueId id, Link::Content content, qint64 time = 0);
    void setStatus(ValueId id, Link::ValueStatus status);

    // By a client: type, access, limits, then the authority, then set().
    WriteResult write(ValueId id, Link::Content content, ClientId client);

    // Conveniences; 0, empty and false when the value has another kind.
    double number(ValueId id) const;  // float, integer, or the number of a selection's item
    qint64 key(ValueId id) const;     // of a selection
    QString text(ValueId id) const;   // of a text, or a selection's item text
    bool flag(ValueId id) const;

    void addListener(StoreListener* listener);  // not owned
    void removeListener(StoreListener* listener);

    // A client's connection ended: what it claimed is freed by these.
    void onClientGone(std::function<void(ClientId client)> handler);
    void clientGone(ClientId client);

    // What a client calls itself (host name), set by the server at the handshake.
    void setClientName(ClientId client, const QString& name);
    QString clientName(ClientId client) const;

private:
    struct Private;
    Private* d;
};

}  // namespace Receiver
