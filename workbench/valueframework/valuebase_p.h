#pragma once

#include <QByteArray>
#include <memory>

#include "valueframework/observerlist.h"
#include "valueframework/valuehost.h"

class DeletionBatch;
class LifeWatch;
class Node;

// What every value knows beside its content.
class ValueBasePrivate
{
public:
    static ValueBasePrivate& Of(const ValueBase& value) { return *value.d; }

    static void Announce(ValueBase& value) { value.AnnounceDeletion(); }

    // Notifies all but `except`, or keeps that for the end of the transaction. False when the value
    // was destroyed meanwhile: the caller must not touch it any more.
    bool Notify(ValueBase& value, TChangeCode code, IObserver* except);

    // The same for the content, inlined into every write.
    bool Changed(ValueBase& value, IObserver* except)
    {
        if (Q_UNLIKELY(transactionDepth > 0)) {
            contentHeld = true;
            return true;
        }
        Observable& subject = value;
        ObservablePrivate* list = ObservablePrivate::Of(subject);
        return !list || list->Notify(&subject, CC_VALUE, except);
    }

    // Leaves the note that a write went beyond a limit, or takes it back. Notifies nobody; true
    // when observers should hear of it.
    bool NoteLimit(const QString& reason);

    const WriteStatus& Status() const;
    bool SetStatus(const WriteStatus& status);  // true when it differs

    bool KeepsLimits() const { return description.hasLimits && !mirrored; }

    // Whether text that names a unit may be written into this value.
    bool FitsUnit(const QString& unit) const;

    bool IsInTree() const { return parent != nullptr; }

    // --- place
    QString path;  // the bare name while the value is not in the tree
    int nameLength = 0;
    quint32 childSlot = 0;  // in the parent's children
    Node* parent = nullptr;
    quint64 serial = 0;  // order of making among all values of the tree
    DeletionBatch* batch = nullptr;
    int batchSlot = 0;

    // --- condition
    ValueType type = ValueType::Other;
    TValueState state = VS_USABLE;
    bool mirrored = false;
    bool named = false;        // was in the tree: its path is final
    bool goingAway = false;    // announced
    bool contentHeld = false;  // transaction: what is to be told at its end
    bool stateHeld = false;
    bool descriptionHeld = false;
    int transactionDepth = 0;
    qint64 timeStamp = 0;  // microseconds since 1970, UTC; 0: never told

    ValueDescription description;

    // Of the few values that have any of it.
    struct Rare
    {
        WriteStatus status;
        QByteArray translationContext;
    };
    Rare& NeededRare();
    std::unique_ptr<Rare> rare;
    LifeWatch* watches = nullptr;
};

// Tells, after a notification, whether the value is still there. On the stack, innermost last.
class LifeWatch
{
public:
    explicit LifeWatch(ValueBase& value) : m_d(&ValueBasePrivate::Of(value)), m_outer(m_d->watches)
    {
        m_d->watches = this;
    }
    ~LifeWatch()
    {
        if (m_d) {
            m_d->watches = m_outer;
        }
    }
    Q_DISABLE_COPY(LifeWatch)

    bool IsAlive() const { return m_d != nullptr; }

private:
    friend class ValueBase;
    ValueBasePrivate* m_d;  // null: destroyed
    LifeWatch* m_outer;
};
