#ifndef HOST_VALUEBASE_H
#define HOST_VALUEBASE_H

#include <QtCore/QString>

#include "valueframework/isupporttransaction.h"
#include "valueframework/observable.h"
#include "valueframework/treeitem.h"

class ValueBasePrivate;

class VALUEFRAMEWORK_EXPORT IValue : public TreeItem
{
public:
    ~IValue();
    virtual TValueState GetState() const = 0;
    virtual QString GetPathName() const = 0;
};

// The announcement that a subject goes away, made before it is destroyed.
class VALUEFRAMEWORK_EXPORT IDeleteSubject
{
public:
    virtual ~IDeleteSubject();

protected:
    virtual void AnnounceDeletion() = 0;
};

namespace Kest {

class VALUEFRAMEWORK_EXPORT IHasTimerCallback
{
public:
    virtual ~IHasTimerCallback();
};

}  // namespace Kest

class VALUEFRAMEWORK_EXPORT IOptimizeTrigger
{
public:
    virtual ~IOptimizeTrigger();
};

// Base of every value. A value belongs to the tree once it was added to it; before, to its maker.
// A write changes it at once and notifies all observers but the writer with CC_VALUE; writing what
// stands already notifies nobody (event values notify each time). GUI thread only.
class VALUEFRAMEWORK_EXPORT ValueBase : public virtual Observable,
                                        public IValue,
                                        public IDeleteSubject,
                                        public Kest::IHasTimerCallback,
                                        public IOptimizeTrigger,
                                        public virtual ISupportTransaction
{
public:
    // Announces CC_STATE with VS_DELETING to all observers, unless that was done before.
    ~ValueBase();

    QString GetName() const;

    // Full path; the bare name while the value is not in the tree.
    QString GetPathName() const;

    TValueState GetState() const;

    // Names a value that is not in the tree yet. Ignored afterwards: paths never change.
    void SetName(const QString& name, IObserver* originator);

    // The translation context of the texts that the value shows (a selection's items).
    void SetTranslationNamespace(const char* context, IObserver* originator);

    // The content as text, as a person reads it, without unit: "98500000", "FM", "ON".
    virtual QString GetText() const = 0;

    // Writes from text. False when the text does not fit the type; nothing is changed then.
    virtual bool SetText(const QString& text, IObserver* originator) = 0;

    void StartTransaction(IObserver* originator);
    void EndTransaction(TChangeCode code, IObserver* originator);
    bool IsTransactionActive();

    // Holds the notification back while a transaction is active.
    void NotifyObservers(TChangeCode code, IObserver* except);

protected:
    ValueBase();
    void AnnounceDeletion();

private:
    Q_DISABLE_COPY(ValueBase)
    friend class ValueBasePrivate;
    ValueBasePrivate* d;
};

#endif
