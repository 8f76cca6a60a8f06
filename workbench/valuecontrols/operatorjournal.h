#pragma once

#include <QString>
#include <QVariant>

class ValueBase;
class IObserver;

// Every write of an operator goes through here: it is made, followed until the authority answered,
// and journalled as one line of JSON: {"time","path","old","new","answer","reason"}.
namespace OperatorJournal {

// Where lines go; appended, flushed line by line. An empty name closes it. False with a reason.
bool Open(const QString& fileName, QString* reason);

// Writes content (as ValueHost::SetContent takes it) for the operator. False when the kind does
// not fit or the value is not writable.
bool Write(ValueBase& value, const QVariant& content, IObserver* originator);

// The same from text, with unit prefixes for numbers and item texts for selections.
bool WriteText(ValueBase& value, const QString& text, IObserver* originator);

}  // namespace OperatorJournal
