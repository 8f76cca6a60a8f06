#pragma once

#include <QHash>
#include <QVarLengthArray>
#include <memory>

#include "valueframework/iobserver.h"
#include "valueframework/observable.h"

class ObserverPrivate;

// The observers of one subject, in the order in which they are called. Made with the first
// observer, so that the many values that nobody watches cost one null pointer.
//
// The entries sit in one block of memory. A notification in progress pins the block that it walks:
// as long as it does, entries keep their place, one that leaves is only blanked, and whatever has
// to move entries works on a copy. So a notification needs no copy of its own and no look-up.
class ObservablePrivate
{
public:
    // The list of a subject, null while it never had an observer.
    static ObservablePrivate* Of(const Observable& subject) { return subject.d; }
    static ObservablePrivate& Needed(Observable& subject);
    static void Destroy(Observable& subject);

    int Count() const { return int(m_count); }

    void Add(IObserver* observer);
    void MakeFirst(IObserver* observer);
    void Remove(IObserver* observer);
    void RemoveAll();

    // Calls everybody but `except`. False when the subject was destroyed meanwhile: then neither it
    // nor this list may be touched any more.
    bool Notify(Observable* subject, TChangeCode code, IObserver* except);

    // Calls everybody, then those who joined meanwhile, so that nobody misses that the subject goes
    // away. Gives up on newcomers after a few rounds: an observer that joins again each time it is
    // called must not keep the subject alive. Result as of Notify.
    bool NotifyWithNewcomers(Observable* subject, TChangeCode code);

private:
    friend class ObserverPrivate;

    struct Entry
    {
        IObserver* observer;  // null: left while the block was pinned
        quint32 slot;         // where this subject stands in the observer's own list
        quint32 serial;       // counts the registrations of this subject
    };

    struct Block
    {
        quint32 used;
        quint32 capacity;
        Entry entries[1];

        static Block* Make(quint32 capacity);
        static void Free(Block* block);
    };

    // A notification in progress, on the stack of the one who notifies.
    struct Frame
    {
        explicit Frame(ObservablePrivate* list);
        ~Frame();
        Q_DISABLE_COPY(Frame)

        void LeaveDead();
        static bool Walks(const Frame* frame, const Block* block);  // it or one further out

        ObservablePrivate* list;  // null: the subject was destroyed
        Block* block;
        Frame* outer;
    };

    ObservablePrivate() = default;
    ~ObservablePrivate();
    Q_DISABLE_COPY(ObservablePrivate)

    bool NotifySince(quint32 serial, Observable* subject, TChangeCode code, IObserver* except);
    int Find(const IObserver* observer) const;
    void Append(IObserver* observer);
    void EraseAt(quint32 position);
    void BlankInOlderBlocks(const IObserver* observer, quint32 likelyPosition);
    void Reseat(quint32 capacity);
    void Compact();
    void Tidy(Block* walked);
    bool IsPinned() const;
    void RebuildIndex();

    Block* m_block = nullptr;
    Frame* m_frames = nullptr;  // innermost first
    quint32 m_count = 0;        // registered observers: used entries that are not blank
    quint32 m_serial = 0;
    bool m_untidy = false;  // gaps or older blocks are left for the end of a notification
    std::unique_ptr<QHash<const IObserver*, quint32>> m_index;  // position by observer, of long lists only
};

inline ObservablePrivate::Frame::Frame(ObservablePrivate* owner)
    : list(owner), block(owner->m_block), outer(owner->m_frames)
{
    owner->m_frames = this;
}

inline ObservablePrivate::Frame::~Frame()
{
    if (Q_UNLIKELY(!list)) {
        LeaveDead();
        return;
    }
    list->m_frames = outer;
    if (Q_UNLIKELY(list->m_untidy)) {
        list->Tidy(block);
    }
}

// In the header so that it becomes part of each write: this is the busiest path of the workbench.
inline bool ObservablePrivate::Notify(Observable* subject, TChangeCode code, IObserver* except)
{
    if (m_count == 0) {
        return true;
    }
    const Frame frame(this);
    const Entry* entry = frame.block->entries;
    const Entry* const end = entry + frame.block->used;
#pragma GCC unroll 4
    for (; entry != end; ++entry) {
        IObserver* observer = entry->observer;
        if (observer && observer != except) {
            observer->Update(subject, code);
            if (Q_UNLIKELY(!frame.list)) {
                return false;
            }
        }
    }
    return true;
}

// The subjects of one observer, in no particular order.
class ObserverPrivate
{
public:
    static quint32 Link(IObserver& observer, ObservablePrivate* list);
    static void Unlink(IObserver& observer, quint32 slot);
    static void LeaveAll(IObserver& observer);

private:
    QVarLengthArray<ObservablePrivate*, 2> m_subjects;
};
