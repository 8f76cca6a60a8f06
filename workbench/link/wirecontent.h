#pragma once

#include "link/messages.h"
#include "valueframework/valuehost.h"

class IObserver;

// Between what travels and what stands in the tree.
namespace WireContent {

// ValueType::Other for kinds that this tree has no value for.
ValueType typeOf(Link::ValueKind kind);

ValueDescription described(const Link::Description& description);

// What stands in a value; monostate for a type that does not travel.
Link::Content of(const ValueBase& value);

// Writes what the driver told, notifying all but `originator` where it differs. False when the
// content does not fit the value's type. Monostate is no content and fits always.
bool apply(ValueBase& value, ValueType type, const Link::Content& content, qint64 time,
           IObserver* originator);

}  // namespace WireContent
