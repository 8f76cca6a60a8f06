#ifndef HOST_IOBSERVER_H
#define HOST_IOBSERVER_H

#include "valueframework/changecode.h"
#include "valueframework/valueframework_global.h"

class Observable;
class ObserverPrivate;

// Implemented by whoever wants to hear of changes. An observer knows its subjects: when it is
// destroyed, it leaves all of them by itself, so that no subject ever calls a dead observer.
// Lives on the GUI thread. Not copyable.
class VALUEFRAMEWORK_EXPORT IObserver
{
public:
    virtual ~IObserver();

    // Called on the GUI thread, in the order in which the subject's observers were added. Anything
    // may be done inside: add and delete observers, write the subject again, delete it, delete this.
    virtual void Update(Observable* subject, TChangeCode code) = 0;

protected:
    IObserver();

private:
    Q_DISABLE_COPY(IObserver)
    friend class ObserverPrivate;
    ObserverPrivate* d;  // null until the first subject is observed
};

#endif
