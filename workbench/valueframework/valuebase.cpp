#include "valueframework/valuebase.h"

#include "valueframework/deletionbatch.h"
#include "valueframework/quantity.h"
#include "valueframework/tree_p.h"
#include "valueframework/valuebase_p.h"

// --- private ------------------------------------------------------------------------------------

bool ValueBasePrivate::Notify(ValueBase& value, TChangeCode code, IObserver* except)
{
    if (transactionDepth > 0) {
        if (code == CC_STATE) {
            stateHeld = true;
        } else if (code == CC_DESCRIPTION) {
            descriptionHeld = true;
        } else {
            contentHeld = true;
        }
        return true;
    }
    Observable& subject = value;
    ObservablePrivate* list = ObservablePrivate::Of(subject);
    return !list || list->Notify(&subject, code, except);
}

ValueBasePrivate::Rare& ValueBasePrivate::NeededRare()
{
    if (!rare) {
        rare = std::make_unique<Rare>();
    }
    return *rare;
}

const WriteStatus& ValueBasePrivate::Status() const
{
    static const WriteStatus nothingWritten;
    return rare ? rare->status : nothingWritten;
}

bool ValueBasePrivate::SetStatus(const WriteStatus& status)
{
    const WriteStatus& old = Status();
    if (old.pending == status.pending && old.answer == status.answer && old.reason == status.reason) {
        return false;
    }
    NeededRare().status = status;
    return true;
}

bool ValueBasePrivate::NoteLimit(const QString& reason)
{
    WriteStatus status;
    if (!reason.isEmpty()) {
        status.answer = WriteStatus::Clamped;
        status.reason = reason;
        SetStatus(status);
        return true;  // also the same once more: the writer has to take its text back again
    }
    if (Status().answer != WriteStatus::Clamped) {
        return false;
    }
    status.answer = WriteStatus::Accepted;
    return SetStatus(status);
}

bool ValueBasePrivate::FitsUnit(const QString& unit) const
{
    if (unit.isEmpty()) {
        return true;
    }
    return description.unit.isEmpty() ? Quantity::IsKnownUnit(unit)
                                      : Quantity::SameUnit(unit, description.unit);
}

// --- interface ----------------------------------------------------------------------------------

ValueBase::ValueBase() : d(new ValueBasePrivate) {}

ValueBase::~ValueBase()
{
    ValueBase::AnnounceDeletion();
    if (d->batch) {
        d->batch->Forget(*this);
    }
    for (LifeWatch* watch = d->watches; watch; watch = watch->m_outer) {
        watch->m_d = nullptr;
    }
    delete d;
}

QString ValueBase::GetName() const
{
    return d->path.right(d->nameLength);
}

QString ValueBase::GetPathName() const
{
    return d->path;
}

TValueState ValueBase::GetState() const
{
    return d->state;
}

void ValueBase::SetName(const QString& name, IObserver*)
{
    if (!d->named) {
        d->path = name;
        d->nameLength = int(name.size());
    }
}

void ValueBase::SetTranslationNamespace(const char* context, IObserver* originator)
{
    const QByteArray wanted(context);
    if (wanted == (d->rare ? d->rare->translationContext : QByteArray())) {
        return;
    }
    d->NeededRare().translationContext = wanted;
    d->Notify(*this, CC_DESCRIPTION, originator);
}

void ValueBase::StartTransaction(IObserver*)
{
    ++d->transactionDepth;
}

void ValueBase::EndTransaction(TChangeCode code, IObserver* originator)
{
    if (d->transactionDepth == 0 || --d->transactionDepth > 0) {
        return;
    }
    const bool content = std::exchange(d->contentHeld, false);
    const bool state = std::exchange(d->stateHeld, false);
    const bool description = std::exchange(d->descriptionHeld, false);
    if (!content && !state && !description) {
        return;
    }
    // One notification for all. A new state or description is something else than what most ends
    // tell, and whoever looks for it would never hear of it.
    if (!d->Notify(*this, code, originator)) {
        return;
    }
    if (state && code != CC_STATE && !d->Notify(*this, CC_STATE, nullptr)) {
        return;
    }
    if (description && code != CC_DESCRIPTION) {
        d->Notify(*this, CC_DESCRIPTION, nullptr);
    }
}

bool ValueBase::IsTransactionActive()
{
    return d->transactionDepth > 0;
}

void ValueBase::NotifyObservers(TChangeCode code, IObserver* except)
{
    d->Notify(*this, code, except);
}

void ValueBase::AnnounceDeletion()
{
    if (d->goingAway) {
        return;
    }
    d->goingAway = true;
    TreePrivate::TakeOut(*this);
    d->state = VS_DELETING;
    Observable& subject = *this;
    if (ObservablePrivate* list = ObservablePrivate::Of(subject)) {
        list->NotifyWithNewcomers(&subject, CC_STATE);
    }
}
