#ifndef HOST_ISUPPORTTRANSACTION_H
#define HOST_ISUPPORTTRANSACTION_H

#include "valueframework/changecode.h"
#include "valueframework/valueframework_global.h"

class IObserver;

// Several changes, one notification. Transactions nest; the outermost end notifies.
class VALUEFRAMEWORK_EXPORT ISupportTransaction
{
public:
    virtual ~ISupportTransaction();

    virtual void StartTransaction(IObserver* originator) = 0;

    // Notifies all observers but `originator` once with `code`, if anything changed since the
    // outermost start. A new state or description is told with its own code as well, to all, where
    // `code` is another one. An end without a start does nothing.
    virtual void EndTransaction(TChangeCode code, IObserver* originator) = 0;

    virtual bool IsTransactionActive() = 0;
};

#endif
