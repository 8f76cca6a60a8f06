#include "receiver/server/outbox.h"

#include <QDateTime>
#include <algorithm>

#include "link/batchwriter.h"
#include "link/codec.h"
#include "link/limits.h"

namespace Receiver {
namespace {

namespace Limits = Link::Limits;

bool covers(const QString& hook, const QString& path)
{
    return path.startsWith(hook) && (path.size() == hook.size() || path.at(hook.size()) == QLatin1Char('/'));
}

qint64 nowMicroseconds()
{
    return QDateTime::currentMSecsSinceEpoch() * 1000;
}

Link::Update currentUpdate(const ValueStore& store, ValueId id)
{
    Link::Update update{id, store.time(id), store.status(id), store.content(id)};
    Link::cutToLimit(&update.content);
    return update;
}

void addCurrent(Link::BatchWriter& writer, const ValueStore& store, ValueId id)
{
    const Link::Content& content = store.content(id);
    const bool isString =
        std::holds_alternative<QString>(content) || std::holds_alternative<QByteArray>(content);
    if (isString) {
        const Link::Update update = currentUpdate(store, id);
        writer.add(id, update.time, update.status, update.content);
    } else {
        writer.add(id, store.time(id), store.status(id), content);
    }
}

}  // namespace

QString Outbox::hookedFlagPath()
{
    return QStringLiteral("/ADMINISTRATION/SERVERVALUESHOOKED");
}

Outbox::Outbox(const ValueStore& store, quint64 epoch) : m_store(store), m_epoch(epoch) {}

Outbox::Entry& Outbox::entry(ValueId id)
{
    if (id >= m_entries.size())
        m_entries.resize(std::max<std::size_t>(id + 1, m_entries.size() * 2));
    return m_entries[id];
}

bool Outbox::isTold(ValueId id) const
{
    return id < m_entries.size() && m_entries[id].told;
}

bool Outbox::isCovered(const QString& path) const
{
    return std::any_of(m_hooks.cbegin(), m_hooks.cend(),
                       [&](const QString& hook) { return covers(hook, path); });
}

bool Outbox::isEmpty() const
{
    return m_pendingHooks.empty() && m_removed.empty() && m_describe.empty() && updatesWaiting() == 0;
}

bool Outbox::addHook(quint32 number, const QString& path, QString* reason)
{
    if (m_hooks.contains(number)) {
        *reason = QStringLiteral("hook %1 was asked for twice").arg(number);
        return false;
    }
    if (m_hooks.size() >= Limits::hooksPerConnection) {
        *reason = QStringLiteral("more than %1 hooks on one connection; hook a common parent instead")
                      .arg(Limits::hooksPerConnection);
        return false;
    }
    QString root = path;
    while (root.endsWith(QLatin1Char('/')))
        root.chop(1);
    m_hooks.insert(number, root);
    m_pendingHooks.push_back({number, false, {}, 0});
    setFlag(false);
    return true;
}

void Outbox::releaseHook(quint32 number)
{
    if (m_hooks.remove(number) == 0)
        return;
    m_pendingHooks.erase(std::remove_if(m_pendingHooks.begin(), m_pendingHooks.end(),
                                        [number](const PendingHook& hook) { return hook.number == number; }),
                         m_pendingHooks.end());
    for (ValueId id = 0; id < m_entries.size(); ++id) {
        const QString path = id == hookedFlagId ? hookedFlagPath() : m_store.description(id).path;
        if (m_entries[id].told && !isCovered(path))
            m_entries[id].told = false;
    }
    if (m_pendingHooks.empty() && !m_hooks.isEmpty())
        setFlag(true);
}

void Outbox::resync()
{
    m_pendingHooks.clear();
    for (auto hook = m_hooks.cbegin(); hook != m_hooks.cend(); ++hook)
        m_pendingHooks.push_back({hook.key(), false, {}, 0});
    if (!m_hooks.isEmpty())
        setFlag(false);
}

// --- changes --------------------------------------------------------------------------------------

void Outbox::changed(ValueId id)
{
    if (!isTold(id))
        return;
    Entry& entry = m_entries[id];
    if (entry.event) {
        if (m_events.size() >= std::size_t(Limits::pendingEvents)) {
            m_events.pop_front();
            ++m_lost;
        }
        m_events.push_back(currentUpdate(m_store, id));
    } else if (entry.dirty) {
        ++m_skipped;
    } else {
        entry.dirty = true;
        m_dirty.push_back(id);
    }
}

void Outbox::described(ValueId id)
{
    if (m_hooks.isEmpty())
        return;
    if (isTold(id)) {
        markDescribe(id);
        return;
    }
    // A new value. A hook that has not begun yet will find it by itself.
    const QString& path = m_store.description(id).path;
    const auto begun = [this](quint32 number) {
        return std::none_of(m_pendingHooks.begin(), m_pendingHooks.end(), [number](const PendingHook& hook) {
            return hook.number == number && !hook.started;
        });
    };
    for (auto hook = m_hooks.cbegin(); hook != m_hooks.cend(); ++hook) {
        if (covers(hook.value(), path) && begun(hook.key())) {
            markDescribe(id);
            return;
        }
    }
}

void Outbox::markDescribe(ValueId id)
{
    Entry& known = entry(id);
    if (known.describe)
        return;
    known.describe = true;
    m_describe.push_back(id);
}

void Outbox::removed(ValueId id)
{
    if (isTold(id))
        m_removed.push_back(id);
    if (id < m_entries.size())
        m_entries[id] = Entry();
}

// Both ways must be told: whoever waits for the hooks sees them served each time. Two changes are
// all that can wait, older ones say nothing new.
void Outbox::setFlag(bool hooked)
{
    if (m_flag == hooked)
        return;
    m_flag = hooked;
    if (!isTold(hookedFlagId))
        return;
    m_flagUpdates.push_back({hookedFlagId, nowMicroseconds(), Link::ValueStatus::Usable, hooked});
    if (m_flagUpdates.size() > 2)
        m_flagUpdates.pop_front();
}

// --- frames ---------------------------------------------------------------------------------------

QByteArray Outbox::takePayload()
{
    // The flag goes first: what it announces as not served must not be there yet.
    if (!m_flagUpdates.empty())
        return takeBatch();
    if (!m_pendingHooks.empty())
        return takeSnapshot();
    if (!m_removed.empty() || !m_describe.empty()) {
        const QByteArray payload = takeDescribe();
        if (!payload.isEmpty())
            return payload;
    }
    return updatesWaiting() > 0 ? takeBatch() : QByteArray();
}

void Outbox::describeFlag(Link::Snapshot* snapshot) const
{
    Link::Description description;
    description.id = hookedFlagId;
    description.path = hookedFlagPath();
    description.kind = Link::ValueKind::Bool;
    description.writable = false;
    snapshot->descriptions.append(description);
    snapshot->contents.append({hookedFlagId, nowMicroseconds(), Link::ValueStatus::Usable, m_flag});
}

void Outbox::begin(PendingHook& hook)
{
    hook.started = true;
    const QVector<ValueId> ids = m_store.below(m_hooks.value(hook.number));
    hook.ids.assign(ids.cbegin(), ids.cend());
}

QByteArray Outbox::takeSnapshot()
{
    PendingHook& hook = m_pendingHooks.front();
    Link::Snapshot snapshot;
    snapshot.hook = hook.number;
    if (!hook.started) {
        begin(hook);
        if (covers(m_hooks.value(hook.number), hookedFlagPath())) {
            describeFlag(&snapshot);
            entry(hookedFlagId).told = true;
        }
    }
    qint64 bytes = 0;
    for (; hook.next < hook.ids.size() && bytes < Limits::chunkBytes &&
           snapshot.descriptions.size() < Limits::chunkUpdates;
         ++hook.next) {
        const ValueId id = hook.ids[hook.next];
        const Link::Description& description = m_store.description(id);
        if (description.path.isEmpty())
            continue;  // removed meanwhile
        Entry& known = entry(id);
        known.told = true;
        known.event = description.event;
        known.describe = false;
        snapshot.descriptions.append(description);
        snapshot.descriptions.last().id = id;
        snapshot.contents.append(currentUpdate(m_store, id));
        bytes += Link::estimatedBytes(description) + Link::estimatedBytes(snapshot.contents.last());
    }
    snapshot.last = hook.next >= hook.ids.size();
    if (snapshot.last) {
        m_pendingHooks.pop_front();
        if (m_pendingHooks.empty())
            setFlag(true);
    }
    return Link::encode(snapshot);
}

QByteArray Outbox::takeDescribe()
{
    Link::Describe describe;
    const std::size_t removals = std::min<std::size_t>(m_removed.size(), Limits::chunkUpdates);
    describe.removed = QVector<quint32>(m_removed.begin(), m_removed.begin() + std::ptrdiff_t(removals));
    m_removed.erase(m_removed.begin(), m_removed.begin() + std::ptrdiff_t(removals));
    qint64 bytes = 0;
    while (!m_describe.empty() && bytes < Limits::chunkBytes &&
           describe.descriptions.size() < Limits::chunkUpdates) {
        const ValueId id = m_describe.front();
        m_describe.pop_front();
        if (!m_entries[id].describe)
            continue;  // told by a snapshot, or removed
        m_entries[id].describe = false;
        const Link::Description& description = m_store.description(id);
        if (description.path.isEmpty() || !isCovered(description.path))
            continue;
        describe.descriptions.append(description);
        describe.descriptions.last().id = id;
        bytes += Link::estimatedBytes(description);
        m_entries[id].event = description.event;
        if (!m_entries[id].told) {
            m_entries[id].told = true;
            changed(id);  // its content follows
        }
    }
    if (describe.descriptions.isEmpty() && describe.removed.isEmpty())
        return {};
    return Link::encode(describe);
}

QByteArray Outbox::takeBatch()
{
    Link::BatchWriter writer(m_epoch, ++m_sequence, m_skipped, m_lost);
    m_skipped = 0;
    m_lost = 0;
    const auto hasRoom = [&writer] {
        return writer.bytes() < Limits::chunkBytes && writer.count() < Limits::chunkUpdates;
    };
    const bool flagOnly = !m_flagUpdates.empty() && !m_pendingHooks.empty();
    for (const Link::Update& update : m_flagUpdates)
        writer.add(update.id, update.time, update.status, update.content);
    m_flagUpdates.clear();
    if (flagOnly)
        return writer.finish();
    for (; !m_events.empty() && hasRoom(); m_events.pop_front()) {
        const Link::Update& update = m_events.front();
        if (isTold(update.id))
            writer.add(update.id, update.time, update.status, update.content);
    }
    for (; m_dirtyNext < m_dirty.size() && hasRoom(); ++m_dirtyNext) {
        const ValueId id = m_dirty[m_dirtyNext];
        Entry& known = m_entries[id];
        const bool wanted = known.dirty && known.told;
        known.dirty = false;
        if (wanted)
            addCurrent(writer, m_store, id);
    }
    // What was sent leaves the list, also when a slow reader never lets it run empty.
    if (m_dirtyNext * 2 >= m_dirty.size()) {
        m_dirty.erase(m_dirty.begin(), m_dirty.begin() + std::ptrdiff_t(m_dirtyNext));
        m_dirtyNext = 0;
    }
    return writer.finish();
}

}  // namespace Receiver
