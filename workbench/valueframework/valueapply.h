#pragma once

#include "valueframework/value.h"
#include "valueframework/valuebase.h"

// What a driver tells, straight into the values: the way of the link client, which applies a
// million updates a second. Nothing is allocated and no variant is made. GUI thread only.
//
// Each sets the time stamp first (microseconds since 1970, UTC), so that observers see the one that
// belongs to the content, then writes as ValueHost::SetContent does. False, with the time stamp
// left as it was, when the value is of another type or does not take the content.
namespace ValueHost {

VALUEFRAMEWORK_EXPORT bool ApplyBool(ValueBase& value, bool content, qint64 microseconds,
                                     IObserver* originator);
VALUEFRAMEWORK_EXPORT bool ApplyFloat(ValueBase& value, double content, qint64 microseconds,
                                      IObserver* originator);
VALUEFRAMEWORK_EXPORT bool ApplyInteger(ValueBase& value, int content, qint64 microseconds,
                                        IObserver* originator);
VALUEFRAMEWORK_EXPORT bool ApplyText(ValueBase& value, const QString& content, qint64 microseconds,
                                     IObserver* originator);

// The key of a selection's item.
VALUEFRAMEWORK_EXPORT bool ApplyKey(ValueBase& value, int key, qint64 microseconds, IObserver* originator);

}  // namespace ValueHost
