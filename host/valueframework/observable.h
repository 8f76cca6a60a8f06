#ifndef HOST_OBSERVABLE_H
#define HOST_OBSERVABLE_H

#include "valueframework/changecode.h"
#include "valueframework/valueframework_global.h"

class IObserver;
class ObservablePrivate;

// Something that can be watched. Observers are not owned; they are called in the order in which
// they were added. GUI thread only.
class VALUEFRAMEWORK_EXPORT Observable
{
public:
    virtual ~Observable();

    // Adds at the end. An observer that is registered already keeps its one place. Null is ignored.
    virtual void AddObserver(IObserver* observer);

    // Removes. Harmless when the observer is not registered.
    virtual void DeleteObserver(IObserver* observer);

    virtual void DeleteObservers();

    virtual int CountObservers() const;

    // Calls Update of all observers but `except` (may be null). An observer that is added
    // meanwhile is not called for this notification; one that left is not called any more.
    virtual void NotifyObservers(TChangeCode code, IObserver* except);

    // Moves a registered observer to the front; one that is not registered is added there.
    void MakeFirstObserver(IObserver* observer);

protected:
    Observable();

private:
    Q_DISABLE_COPY(Observable)
    friend class ObservablePrivate;
    ObservablePrivate* d;
};

#endif
