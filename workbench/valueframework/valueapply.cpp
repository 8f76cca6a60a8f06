#include "valueframework/valueapply.h"

#include <cmath>

#include "valueframework/valueimpl.h"
#include "valueframework/valueselection_p.h"

namespace ValueHost {
namespace {

template <class T, class Typed>
bool Apply(ValueBase& value, const T& content, qint64 microseconds, IObserver* originator)
{
    ValueBasePrivate& d = ValueBasePrivate::Of(value);
    if (d.type != ValueImpl::typeOf<T> || !ValueImpl::IsStorable(content)) {
        return false;
    }
    d.timeStamp = microseconds;
    return static_cast<Typed&>(value).SetValue(content, originator);
}

}  // namespace

bool ApplyBool(ValueBase& value, bool content, qint64 microseconds, IObserver* originator)
{
    return Apply<bool, BoolValue>(value, content, microseconds, originator);
}

bool ApplyFloat(ValueBase& value, double content, qint64 microseconds, IObserver* originator)
{
    return Apply<double, FloatValueBase>(value, content, microseconds, originator);
}

bool ApplyInteger(ValueBase& value, int content, qint64 microseconds, IObserver* originator)
{
    return Apply<int, IntValueBase>(value, content, microseconds, originator);
}

bool ApplyText(ValueBase& value, const QString& content, qint64 microseconds, IObserver* originator)
{
    return Apply<QString, TextValue>(value, content, microseconds, originator);
}

bool ApplyKey(ValueBase& value, int key, qint64 microseconds, IObserver* originator)
{
    ValueBasePrivate& d = ValueBasePrivate::Of(value);
    if (d.type != ValueType::Selection) {
        return false;
    }
    const int index = ValueSelectionPrivate::IndexOfKey(d.description.items, key);
    if (index < 0) {
        return false;
    }
    d.timeStamp = microseconds;
    return ValueSelectionPrivate::Select(static_cast<ValueSelection&>(value), index, originator);
}

}  // namespace ValueHost
