#pragma once

#include <QMap>
#include <deque>
#include <vector>

#include "link/messages.h"
#include "receiver/values/valuestore.h"

namespace Receiver {

// What one reader has still to be told. Its size is bounded by the number of values, however slow
// the reader is: of a value only the newest content waits, the ones before are counted as skipped;
// event values wait one by one in a bounded queue, what falls out of it is counted as lost.
//
// The value /ADMINISTRATION/SERVERVALUESHOOKED of this reader lives here too (id 0): false until
// all hooks asked for are served, then true; a further hook takes it through false to true.
class Outbox
{
public:
    static constexpr ValueId hookedFlagId = 0;
    static QString hookedFlagPath();

    Outbox(const ValueStore& store, quint64 epoch);

    // --- what the reader asked for. False: that number is taken, or there are too many hooks.
    bool addHook(quint32 number, const QString& path, QString* reason);
    void releaseHook(quint32 number);
    void resync();  // everything hooked again

    // --- what happened in the store
    void changed(ValueId id);
    void described(ValueId id);
    void removed(ValueId id);

    // Whether the reader was told of this value.
    bool isTold(ValueId id) const;

    bool isEmpty() const;
    bool hasSnapshots() const { return !m_pendingHooks.empty(); }
    int updatesWaiting() const
    {
        return int(m_dirty.size() - m_dirtyNext + m_events.size() + m_flagUpdates.size());
    }

    // The payload of the next frame, of a size that suits a socket; empty when there is nothing.
    QByteArray takePayload();

private:
    struct Entry
    {
        bool told = false;      // the reader has its description
        bool event = false;     // never merged
        bool dirty = false;     // stands in m_dirty
        bool describe = false;  // stands in m_describe
    };

    struct PendingHook
    {
        quint32 number = 0;
        bool started = false;
        std::vector<ValueId> ids;
        std::size_t next = 0;
    };

    Entry& entry(ValueId id);
    bool isCovered(const QString& path) const;
    void setFlag(bool hooked);
    void describeFlag(Link::Snapshot* snapshot) const;
    void markDescribe(ValueId id);
    void begin(PendingHook& hook);
    QByteArray takeSnapshot();
    QByteArray takeDescribe();
    QByteArray takeBatch();

    const ValueStore& m_store;
    const quint64 m_epoch;
    quint64 m_sequence = 0;
    quint64 m_skipped = 0;
    quint64 m_lost = 0;
    bool m_flag = false;

    QMap<quint32, QString> m_hooks;
    std::deque<PendingHook> m_pendingHooks;
    std::vector<Entry> m_entries;  // by id
    std::vector<ValueId> m_dirty;
    std::size_t m_dirtyNext = 0;
    std::deque<ValueId> m_describe;
    std::vector<ValueId> m_removed;
    std::deque<Link::Update> m_events;
    std::deque<Link::Update> m_flagUpdates;
};

}  // namespace Receiver
