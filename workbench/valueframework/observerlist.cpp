#include "valueframework/observerlist.h"

#include <algorithm>
#include <cstdlib>
#include <new>

namespace {

// Up to here a scan of the entries is quicker than a hash.
constexpr quint32 longestScan = 16;
constexpr quint32 firstCapacity = 2;
constexpr int newcomerRounds = 4;

}  // namespace

// --- block --------------------------------------------------------------------------------------

ObservablePrivate::Block* ObservablePrivate::Block::Make(quint32 capacity)
{
    const std::size_t bytes = sizeof(Block) + (capacity - 1) * sizeof(Entry);
    Block* block = static_cast<Block*>(std::malloc(bytes));
    if (!block) {
        throw std::bad_alloc();
    }
    block->used = 0;
    block->capacity = capacity;
    return block;
}

void ObservablePrivate::Block::Free(Block* block)
{
    std::free(block);
}

// --- frame --------------------------------------------------------------------------------------

bool ObservablePrivate::Frame::Walks(const Frame* frame, const Block* block)
{
    for (; frame; frame = frame->outer) {
        if (frame->block == block) {
            return true;
        }
    }
    return false;
}

// The subject is gone and left its blocks to those who walk them.
void ObservablePrivate::Frame::LeaveDead()
{
    if (!Walks(outer, block)) {
        Block::Free(block);
    }
}

// --- list ---------------------------------------------------------------------------------------

ObservablePrivate& ObservablePrivate::Needed(Observable& subject)
{
    if (!subject.d) {
        subject.d = new ObservablePrivate;
    }
    return *subject.d;
}

void ObservablePrivate::Destroy(Observable& subject)
{
    delete subject.d;
    subject.d = nullptr;
}

ObservablePrivate::~ObservablePrivate()
{
    RemoveAll();
    for (Frame* frame = m_frames; frame; frame = frame->outer) {
        frame->list = nullptr;
    }
    if (m_block && !IsPinned()) {
        Block::Free(m_block);
    }
}

bool ObservablePrivate::IsPinned() const
{
    return Frame::Walks(m_frames, m_block);
}

// After a notification that left something behind: frees the block that it walked when the list has
// a newer one, and closes the gaps of those who left.
void ObservablePrivate::Tidy(Block* walked)
{
    if (walked != m_block && !Frame::Walks(m_frames, walked)) {
        Block::Free(walked);
    }
    if (!m_frames) {
        m_untidy = false;
        if (m_block->used != m_count && !m_index) {
            Compact();
        }
    }
}

int ObservablePrivate::Find(const IObserver* observer) const
{
    if (m_index) {
        const auto found = m_index->constFind(observer);
        return found == m_index->cend() ? -1 : int(*found);
    }
    if (m_block) {
        for (quint32 i = 0; i < m_block->used; ++i) {
            if (m_block->entries[i].observer == observer) {
                return int(i);
            }
        }
    }
    return -1;
}

void ObservablePrivate::Add(IObserver* observer)
{
    if (observer && Find(observer) < 0) {
        Append(observer);
    }
}

void ObservablePrivate::Append(IObserver* observer)
{
    if (!m_block) {
        m_block = Block::Make(firstCapacity);
    } else if (m_block->used == m_block->capacity) {
        Reseat(std::max(firstCapacity, m_count * 2));
    }
    const quint32 slot = ObserverPrivate::Link(*observer, this);
    m_block->entries[m_block->used] = Entry{observer, slot, m_serial++};
    ++m_count;
    if (m_index) {
        m_index->insert(observer, m_block->used);
    }
    ++m_block->used;
    if (!m_index && m_block->used > longestScan) {
        RebuildIndex();
    }
}

void ObservablePrivate::MakeFirst(IObserver* observer)
{
    if (!observer) {
        return;
    }
    if (Find(observer) < 0) {
        Append(observer);
    }
    if (IsPinned()) {
        Reseat(m_block->capacity);
    }
    const quint32 position = quint32(Find(observer));
    Entry* entries = m_block->entries;
    std::rotate(entries, entries + position, entries + position + 1);
    if (m_index) {
        RebuildIndex();
    }
}

void ObservablePrivate::Remove(IObserver* observer)
{
    const int position = observer ? Find(observer) : -1;
    if (position >= 0) {
        ObserverPrivate::Unlink(*observer, m_block->entries[position].slot);
        EraseAt(quint32(position));
    }
}

void ObservablePrivate::EraseAt(quint32 position)
{
    Entry& entry = m_block->entries[position];
    BlankInOlderBlocks(entry.observer, position);
    --m_count;
    if (m_index) {
        m_index->remove(entry.observer);
    }
    const bool pinned = IsPinned();
    if (pinned || m_index) {
        entry.observer = nullptr;
        m_untidy = m_untidy || pinned;
        if (!pinned && m_count < m_block->used / 2) {
            Compact();
        }
        return;
    }
    std::copy(&entry + 1, m_block->entries + m_block->used, &entry);
    --m_block->used;
}

// Notifications that started before the entries moved walk an older block; they must not call one
// who left since.
void ObservablePrivate::BlankInOlderBlocks(const IObserver* observer, quint32 likelyPosition)
{
    const Block* done = m_block;
    for (Frame* frame = m_frames; frame; frame = frame->outer) {
        Block* block = frame->block;
        if (block == done) {
            continue;
        }
        done = block;
        if (likelyPosition < block->used && block->entries[likelyPosition].observer == observer) {
            block->entries[likelyPosition].observer = nullptr;
            continue;
        }
        for (quint32 i = 0; i < block->used; ++i) {
            if (block->entries[i].observer == observer) {
                block->entries[i].observer = nullptr;
                break;
            }
        }
    }
}

void ObservablePrivate::RemoveAll()
{
    if (!m_block) {
        return;
    }
    for (quint32 i = 0; i < m_block->used; ++i) {
        const Entry& entry = m_block->entries[i];
        if (entry.observer) {
            ObserverPrivate::Unlink(*entry.observer, entry.slot);
            m_block->entries[i].observer = nullptr;
        }
    }
    for (Frame* frame = m_frames; frame; frame = frame->outer) {
        for (quint32 i = 0; i < frame->block->used; ++i) {
            frame->block->entries[i].observer = nullptr;
        }
    }
    m_count = 0;
    m_index.reset();
    if (IsPinned()) {
        m_untidy = true;
    } else {
        m_block->used = 0;
    }
}

// Moves the registered entries into a new block. Notifications in progress keep the old one.
void ObservablePrivate::Reseat(quint32 capacity)
{
    Block* fresh = Block::Make(std::max(capacity, m_count + 1));
    for (quint32 i = 0; i < m_block->used; ++i) {
        if (m_block->entries[i].observer) {
            fresh->entries[fresh->used++] = m_block->entries[i];
        }
    }
    if (IsPinned()) {
        m_untidy = true;
    } else {
        Block::Free(m_block);
    }
    m_block = fresh;
    if (m_index) {
        RebuildIndex();
    }
}

// Closes the gaps of a block that nobody walks.
void ObservablePrivate::Compact()
{
    Entry* entries = m_block->entries;
    Entry* end = std::remove_if(entries, entries + m_block->used,
                                [](const Entry& entry) { return entry.observer == nullptr; });
    m_block->used = quint32(end - entries);
    if (m_index) {
        RebuildIndex();
    }
}

void ObservablePrivate::RebuildIndex()
{
    m_index.reset();
    if (m_block->used <= longestScan) {
        if (!IsPinned() && m_block->used != m_count) {
            Compact();
        }
        return;
    }
    m_index = std::make_unique<QHash<const IObserver*, quint32>>();
    m_index->reserve(m_count);
    for (quint32 i = 0; i < m_block->used; ++i) {
        if (m_block->entries[i].observer) {
            m_index->insert(m_block->entries[i].observer, i);
        }
    }
}

bool ObservablePrivate::NotifySince(quint32 serial, Observable* subject, TChangeCode code, IObserver* except)
{
    const Frame frame(this);
    const quint32 end = frame.block->used;
    for (quint32 i = 0; i < end; ++i) {
        const Entry& entry = frame.block->entries[i];
        if (entry.observer && entry.observer != except && entry.serial >= serial) {
            entry.observer->Update(subject, code);
            if (!frame.list) {
                return false;
            }
        }
    }
    return true;
}

bool ObservablePrivate::NotifyWithNewcomers(Observable* subject, TChangeCode code)
{
    quint32 told = m_serial;
    if (!Notify(subject, code, nullptr)) {
        return false;
    }
    for (int round = 0; round < newcomerRounds && told != m_serial && m_count > 0; ++round) {
        const quint32 since = told;
        told = m_serial;
        if (!NotifySince(since, subject, code, nullptr)) {
            return false;
        }
    }
    return true;
}

// --- observer -----------------------------------------------------------------------------------

quint32 ObserverPrivate::Link(IObserver& observer, ObservablePrivate* list)
{
    if (!observer.d) {
        observer.d = new ObserverPrivate;
    }
    observer.d->m_subjects.append(list);
    return quint32(observer.d->m_subjects.size() - 1);
}

// The last subject takes the free place and is told so.
void ObserverPrivate::Unlink(IObserver& observer, quint32 slot)
{
    auto& subjects = observer.d->m_subjects;
    ObservablePrivate* last = subjects.last();
    subjects.removeLast();
    if (slot != quint32(subjects.size())) {
        subjects[slot] = last;
        last->m_block->entries[last->Find(&observer)].slot = slot;
    }
}

void ObserverPrivate::LeaveAll(IObserver& observer)
{
    if (!observer.d) {
        return;
    }
    for (ObservablePrivate* list : std::as_const(observer.d->m_subjects)) {
        list->EraseAt(quint32(list->Find(&observer)));
    }
    delete observer.d;
    observer.d = nullptr;
}

// --- interface ----------------------------------------------------------------------------------

IObserver::IObserver() : d(nullptr) {}

IObserver::~IObserver()
{
    ObserverPrivate::LeaveAll(*this);
}

Observable::Observable() : d(nullptr) {}

Observable::~Observable()
{
    ObservablePrivate::Destroy(*this);
}

void Observable::AddObserver(IObserver* observer)
{
    ObservablePrivate::Needed(*this).Add(observer);
}

void Observable::DeleteObserver(IObserver* observer)
{
    if (d) {
        d->Remove(observer);
    }
}

void Observable::DeleteObservers()
{
    if (d) {
        d->RemoveAll();
    }
}

int Observable::CountObservers() const
{
    return d ? d->Count() : 0;
}

void Observable::NotifyObservers(TChangeCode code, IObserver* except)
{
    if (d) {
        d->Notify(this, code, except);
    }
}

void Observable::MakeFirstObserver(IObserver* observer)
{
    ObservablePrivate::Needed(*this).MakeFirst(observer);
}
