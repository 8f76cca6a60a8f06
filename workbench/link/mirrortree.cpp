#include "link/mirrortree.h"

#include <QElapsedTimer>
#include <QLoggingCategory>
#include <algorithm>

#include "link/wirecontent.h"
#include "valueframework/tree.h"

Q_LOGGING_CATEGORY(mirrorLog, "workbench.link")

namespace {

// After this long the event loop gets its turn: input and painting do not wait for a flood.
constexpr qint64 sliceMs = 30;

bool covers(const QString& root, const QString& path)
{
    return path.startsWith(root) && (path.size() == root.size() || path.at(root.size()) == QLatin1Char('/'));
}

QString hookedFlagPath()
{
    return QStringLiteral("/ADMINISTRATION/SERVERVALUESHOOKED");
}

TValueState stateOf(Link::ValueStatus status)
{
    return status == Link::ValueStatus::Usable ? VS_USABLE : VS_NOT_AVAILABLE;
}

}  // namespace

MirrorTree::MirrorTree(Owner* owner) : m_owner(owner) {}

MirrorTree::~MirrorTree() = default;

void MirrorTree::leave()
{
    m_owner = nullptr;
    m_connected = false;
    m_jobs.clear();
    m_queuedWrites.clear();
    m_pendingWrites.clear();
    for (int i = 0; i < m_mirrors.count(); ++i) {
        if (ValueBase* value = m_mirrors.get(i)->value)
            value->DeleteObserver(this);
        m_mirrors.setValue(m_mirrors.get(i), nullptr);
    }
}

// --- the queue --------------------------------------------------------------------------------------

void MirrorTree::enqueue(Job&& job)
{
    if (!m_owner)
        return;
    m_jobs.push_back(std::make_shared<Job>(std::move(job)));
    m_owner->wake();
}

void MirrorTree::connected(quint64 connection)
{
    enqueue({Connected{connection}});
}

void MirrorTree::lost(const QString& reason)
{
    enqueue({Lost{reason}});
}

void MirrorTree::snapshot(Link::Snapshot&& snapshot)
{
    enqueue({std::move(snapshot)});
}

void MirrorTree::describe(Link::Describe&& describe)
{
    enqueue({std::move(describe)});
}

void MirrorTree::batch(Link::Batch&& batch)
{
    m_updatesWaiting += batch.updates.size();
    enqueue({std::move(batch)});
}

void MirrorTree::answer(const Link::Answer& answer)
{
    enqueue({answer});
}

void MirrorTree::unanswered(quint32 number, const QString& reason)
{
    enqueue({Unanswered{number, reason}});
}

void MirrorTree::run()
{
    if (!m_owner || m_jobs.empty())
        return;
    // Whatever an observer does, this object lives to the end of the function.
    const std::shared_ptr<MirrorTree> self = shared_from_this();
    // An event loop that an observer starts finds this and comes back here.
    m_owner->wake();
    QElapsedTimer sinceStart;
    sinceStart.start();
    while (m_owner && !m_jobs.empty()) {
        const std::shared_ptr<Job> job = m_jobs.front();
        std::visit([&](auto& what) { work(*job, what); }, job->what);
        // A run inside this one may have finished the job already.
        if (!m_jobs.empty() && m_jobs.front() == job)
            m_jobs.pop_front();
        if (sinceStart.elapsed() >= sliceMs)
            break;
    }
    if (m_owner && !m_jobs.empty())
        m_owner->wakeLater();
}

// --- connection -------------------------------------------------------------------------------------

void MirrorTree::work(Job& job, const Connected& connected)
{
    if (job.begun)
        return;
    job.begun = true;
    m_connected = true;
    m_connection = connected.connection;
    m_owner->announce(CC_CONNECTED);
}

void MirrorTree::work(Job& job, const Lost& lost)
{
    if (!job.begun) {
        job.begun = true;
        m_connected = false;
        m_lostReason = lost.reason;
        for (Hook& hook : m_hooks) {
            hook.served = false;
            hook.underWay = false;
        }
    }
    while (m_owner && job.next < m_mirrors.count())
        loseOne(m_mirrors.get(int(job.next++)));
    if (m_owner && job.next == m_mirrors.count()) {
        ++job.next;
        m_owner->announce(CC_DISCONNECTED);
    }
}

void MirrorTree::loseOne(Mirror* mirror)
{
    m_mirrors.clearId(mirror);
    if (mirror->hooks.isEmpty())
        return;
    // Nothing is hooked without a driver; the next one takes the flag from false to true.
    if (mirror->source == hookedFlagPath()) {
        mirror->driver = false;
        if (mirror->value)
            WireContent::apply(*mirror->value, mirror->type, mirror->driver, mirror->time, this);
    }
    if (m_owner)
        setState(mirror, VS_STALE);
}

// --- hooks ------------------------------------------------------------------------------------------

void MirrorTree::addHook(quint32 number, const QString& source, const QString& target)
{
    Hook hook;
    hook.number = number;
    hook.source = source;
    hook.target = target;
    m_hooks.push_back(hook);
}

void MirrorTree::releaseHook(quint32 number)
{
    m_hooks.erase(std::remove_if(m_hooks.begin(), m_hooks.end(),
                                 [number](const Hook& hook) { return hook.number == number; }),
                  m_hooks.end());
    enqueue({Released{number}});
}

void MirrorTree::announceServed(quint32 number)
{
    enqueue({Served{number}});
}

MirrorTree::Hook* MirrorTree::findHook(quint32 number)
{
    const auto found = std::find_if(m_hooks.begin(), m_hooks.end(),
                                    [number](const Hook& hook) { return hook.number == number; });
    return found == m_hooks.end() ? nullptr : &*found;
}

bool MirrorTree::isServed(const QString& target) const
{
    return m_connected && std::any_of(m_hooks.begin(), m_hooks.end(), [&](const Hook& hook) {
               return hook.served && covers(hook.target, target);
           });
}

void MirrorTree::work(Job& job, const Released& released)
{
    while (m_owner && job.next < m_mirrors.count())
        releaseOne(m_mirrors.get(int(job.next++)), released.number);
}

void MirrorTree::releaseOne(Mirror* mirror, quint32 hook)
{
    if (mirror->hooks.removeAll(hook) == 0 || !mirror->hooks.isEmpty())
        return;
    m_mirrors.clearId(mirror);
    dropWrites(mirror);
    ValueBase* value = mirror->value;
    if (!value)
        return;
    value->DeleteObserver(this);
    m_mirrors.setValue(mirror, nullptr);
    ValueHost::SetMirrored(*value, false);
    ValueHost::SetState(*value, VS_STALE);
}

void MirrorTree::work(Job& job, const Served& served)
{
    if (job.begun)
        return;
    job.begun = true;
    const Hook* hook = findHook(served.number);
    if (!hook || !hook->served)
        return;
    m_lastServedValues = hook->values > 0;
    m_owner->announce(CC_HOOKS_SERVED);
}

// --- snapshots and descriptions ---------------------------------------------------------------------

void MirrorTree::beginSnapshot(Hook* hook)
{
    if (hook->underWay)
        return;
    hook->underWay = true;
    hook->round = ++m_round;
    hook->values = 0;
}

// First the descriptions with their contents, then, after the last part, the values that the driver
// does not have any more, then the notice.
void MirrorTree::work(Job& job, Link::Snapshot& snapshot)
{
    Hook* hook = findHook(snapshot.hook);
    if (!hook)
        return;
    if (!job.begun) {
        job.begun = true;
        beginSnapshot(hook);
    }
    const qsizetype count = snapshot.descriptions.size();
    while (m_owner && job.next < count && (hook = findHook(snapshot.hook))) {
        const qsizetype index = job.next++;
        const Link::Description& description = snapshot.descriptions.at(index);
        const bool sameOrder =
            index < snapshot.contents.size() && snapshot.contents.at(index).id == description.id;
        ++hook->values;
        describeValue(Hook(*hook), description, sameOrder ? &snapshot.contents.at(index) : nullptr);
    }
    // Contents that do not stand beside their description.
    const qsizetype contents = snapshot.contents.size();
    while (m_owner && job.next < count + contents) {
        const qsizetype index = job.next++ - count;
        const Link::Update& update = snapshot.contents.at(index);
        if (index >= count || snapshot.descriptions.at(index).id != update.id)
            applyUpdate(update);
    }
    if (!snapshot.last)
        return;
    const qsizetype before = count + contents;
    while (m_owner && job.next < before + m_mirrors.count() && (hook = findHook(snapshot.hook))) {
        Mirror* mirror = m_mirrors.get(int(job.next++ - before));
        if (mirror->round < hook->round && mirror->hooks.contains(hook->number))
            makeUnavailable(mirror);
    }
    hook = findHook(snapshot.hook);
    if (m_owner && hook && hook->underWay)
        endSnapshot(hook);
}

void MirrorTree::endSnapshot(Hook* hook)
{
    hook->underWay = false;
    hook->served = true;
    m_lastServedValues = hook->values > 0;
    m_owner->announce(CC_HOOKS_SERVED);
}

void MirrorTree::work(Job& job, Link::Describe& describe)
{
    const qsizetype removed = describe.removed.size();
    while (m_owner && job.next < removed) {
        Mirror* mirror = m_mirrors.byId(describe.removed.at(job.next++));
        while (mirror) {
            Mirror* next = mirror->next;
            makeUnavailable(mirror);
            mirror = next;
        }
    }
    while (m_owner && job.next < removed + describe.descriptions.size()) {
        const Link::Description& description = describe.descriptions.at(job.next++ - removed);
        const std::vector<Hook> hooks = m_hooks;
        for (const Hook& hook : hooks) {
            if (m_owner && covers(hook.source, description.path))
                describeValue(hook, description, nullptr);
        }
    }
}

void MirrorTree::describeValue(const Hook& hook, const Link::Description& description,
                               const Link::Update* update)
{
    if (WireContent::typeOf(description.kind) == ValueType::Other || !covers(hook.source, description.path) ||
        !Tree::Instance())
        return;
    Mirror* mirror = m_mirrors.at(hook.target + description.path.mid(hook.source.size()));
    if (!mirror->hooks.isEmpty() && mirror->source != description.path) {
        qCWarning(mirrorLog).noquote()
            << mirror->target << "mirrors" << mirror->source << "already; not" << description.path;
        return;
    }
    mirror->source = description.path;
    mirror->round = qMax(mirror->round, hook.round);
    if (!mirror->hooks.contains(hook.number))
        mirror->hooks.append(hook.number);
    m_mirrors.setId(mirror, description.id);
    if (place(mirror, description) && update)
        applyTo(mirror, *update);
    else if (mirror->value && mirror->state == VS_STALE)
        setState(mirror, VS_USABLE);
}

// Has the value in the tree, with the description. False when there is none, or an observer took it.
bool MirrorTree::place(Mirror* mirror, const Link::Description& description)
{
    const ValueDescription wanted = WireContent::described(description);
    ValueBase* value = Tree::Instance()->FindValue(mirror->target);
    if (value && ValueHost::TypeOf(*value) == wanted.type) {
        attach(mirror, value);
        m_describing = wanted.type == ValueType::Selection ? mirror : nullptr;
        ValueHost::SetDescription(*value, wanted);
        m_describing = nullptr;
    } else {
        value = ValueHost::Create(mirror->target, wanted, QVariant());
        if (value)
            attach(mirror, value);
    }
    mirror->type = wanted.type;
    return m_owner && mirror->value;
}

void MirrorTree::attach(Mirror* mirror, ValueBase* value)
{
    ValueHost::SetMirrored(*value, true);
    if (mirror->value == value)
        return;
    if (mirror->value)
        mirror->value->DeleteObserver(this);
    m_mirrors.setValue(mirror, value);
    mirror->driver = {};
    mirror->state = value->GetState();
    value->AddObserver(this);
}

// The value goes away.
void MirrorTree::forget(Mirror* mirror)
{
    m_mirrors.setValue(mirror, nullptr);
    dropWrites(mirror);
}

void MirrorTree::makeUnavailable(Mirror* mirror)
{
    m_mirrors.clearId(mirror);
    setState(mirror, VS_NOT_AVAILABLE);
}

// --- contents ---------------------------------------------------------------------------------------

void MirrorTree::work(Job& job, Link::Batch& batch)
{
    if (!job.begun) {
        job.begun = true;
        m_updatesWaiting -= batch.updates.size();
        m_skipped += batch.skipped;
        m_lostEvents += batch.lost;
        if (batch.lost > 0)
            qCWarning(mirrorLog) << batch.lost << "events were lost on the way from the driver";
    }
    const qsizetype count = batch.updates.size();
    while (m_owner && job.next < count)
        applyUpdate(batch.updates.at(job.next++));
}

void MirrorTree::applyUpdate(const Link::Update& update)
{
    Mirror* mirror = m_mirrors.byId(update.id);
    while (mirror && m_owner) {
        Mirror* next = mirror->next;
        applyTo(mirror, update);
        mirror = next;
    }
}

// Usable comes after its content and unavailable before, so that whoever sees a usable value sees
// what belongs to it.
void MirrorTree::applyTo(Mirror* mirror, const Link::Update& update)
{
    if (!std::holds_alternative<std::monostate>(update.content)) {
        mirror->driver = update.content;
        mirror->time = update.time;
    }
    const TValueState state = stateOf(update.status);
    if (state != VS_USABLE)
        setState(mirror, state);
    // What an operator wrote stands until the driver has answered it.
    if (mirror->value && !mirror->pending && !mirror->queued &&
        !WireContent::apply(*mirror->value, mirror->type, update.content, update.time, this))
        qCDebug(mirrorLog).noquote() << mirror->target << "got a content that does not fit its type";
    if (state == VS_USABLE && m_owner)
        setState(mirror, state);
}

void MirrorTree::setState(Mirror* mirror, TValueState state)
{
    if (mirror->state == state)
        return;
    mirror->state = state;
    if (mirror->value)
        ValueHost::SetState(*mirror->value, state);
}
