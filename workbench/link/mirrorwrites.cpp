#include <QObject>

#include "link/mirrortree.h"
#include "link/wirecontent.h"
#include "valueframework/valuehost.h"

// Local writes: noticed as an observer, sent once per turn of the event loop with the content that
// stands then, pending until the driver has answered.

void MirrorTree::Update(Observable* subject, TChangeCode code)
{
    Mirror* mirror = code == CC_VALUE || code == CC_STATE ? m_mirrors.byValue(subject) : nullptr;
    if (!mirror || !m_owner)
        return;
    if (code == CC_STATE) {
        if (mirror->value->GetState() == VS_DELETING)
            forget(mirror);
        return;
    }
    if (m_describing == mirror)
        m_describing = nullptr;
    else
        localWrite(mirror);
}

void MirrorTree::localWrite(Mirror* mirror)
{
    if (mirror->queued)
        return;  // the content is read when it is sent
    const Link::Content content = WireContent::of(*mirror->value);
    const Link::Content& known = mirror->pending ? mirror->sent : mirror->driver;
    if (content == known)
        return;  // announced again, not written
    if (!m_connected) {
        settle(mirror, WriteStatus::Refused,
               m_lostReason.isEmpty() ? QObject::tr("there is no connection to the driver")
                                      : QObject::tr("the driver is away: %1").arg(m_lostReason));
        return;
    }
    if (!mirror->hasId) {
        settle(mirror, WriteStatus::Refused, QObject::tr("the driver does not serve this value at present"));
        return;
    }
    mirror->queued = true;
    m_queuedWrites.push_back(mirror);
    m_owner->wakeWrites();
    WriteStatus status;
    status.pending = true;
    ValueHost::SetStatus(*mirror->value, status);
}

void MirrorTree::sendWrites()
{
    const std::shared_ptr<MirrorTree> self = shared_from_this();
    while (m_owner && !m_queuedWrites.empty()) {
        Mirror* mirror = m_queuedWrites.front();
        m_queuedWrites.pop_front();
        if (mirror->queued && mirror->value)
            sendOne(mirror);
    }
}

void MirrorTree::sendOne(Mirror* mirror)
{
    mirror->queued = false;
    const Link::Content content = WireContent::of(*mirror->value);
    if (content == (mirror->pending ? mirror->sent : mirror->driver)) {
        // Written there and back within one turn: nothing to ask for.
        if (!mirror->pending)
            ValueHost::SetStatus(*mirror->value, WriteStatus());
        return;
    }
    const quint32 number = mirror->hasId ? m_owner->write(m_connection, mirror->id, content) : 0;
    if (number == 0) {
        settle(mirror, WriteStatus::Refused, QObject::tr("the connection to the driver was lost"));
        return;
    }
    mirror->pending = number;
    mirror->sent = content;
    m_pendingWrites.insert(number, mirror);
}

void MirrorTree::work(Job& job, const Link::Answer& answer)
{
    if (job.begun)
        return;
    job.begun = true;
    Mirror* mirror = m_pendingWrites.take(answer.number);
    if (!mirror)
        return;
    if (!std::holds_alternative<std::monostate>(answer.content))
        mirror->driver = answer.content;
    if (mirror->pending != answer.number)
        return;  // a newer write is under way
    mirror->pending = 0;
    if (mirror->queued)
        return;
    switch (answer.kind) {
        case Link::AnswerKind::Accepted:
            settle(mirror, WriteStatus::Accepted, QString());
            break;
        case Link::AnswerKind::Clamped:
            settle(mirror, WriteStatus::Clamped, answer.reason);
            break;
        case Link::AnswerKind::Refused:
            settle(mirror, WriteStatus::Refused, answer.reason);
            break;
    }
}

void MirrorTree::work(Job& job, const Unanswered& unanswered)
{
    if (job.begun)
        return;
    job.begun = true;
    Mirror* mirror = m_pendingWrites.take(unanswered.number);
    if (!mirror || mirror->pending != unanswered.number)
        return;
    mirror->pending = 0;
    if (!mirror->queued)
        settle(mirror, WriteStatus::Unanswered, unanswered.reason);
}

// The driver's content stands again, then the answer is told.
void MirrorTree::settle(Mirror* mirror, WriteStatus::Answer answer, const QString& reason)
{
    restore(mirror);
    // An observer may have written anew: then that write's fate is what counts.
    if (!m_owner || !mirror->value || mirror->queued)
        return;
    WriteStatus status;
    status.answer = answer;
    status.reason = reason;
    ValueHost::SetStatus(*mirror->value, status);
}

void MirrorTree::restore(Mirror* mirror)
{
    if (mirror->value)
        WireContent::apply(*mirror->value, mirror->type, mirror->driver, mirror->time, this);
}

void MirrorTree::dropWrites(Mirror* mirror)
{
    mirror->queued = false;
    if (mirror->pending)
        m_pendingWrites.remove(mirror->pending);
    mirror->pending = 0;
}
