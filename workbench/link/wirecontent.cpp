#include "link/wirecontent.h"

#include <algorithm>
#include <limits>

#include "valueframework/value.h"
#include "valueframework/valueapply.h"

namespace WireContent {
namespace {

bool fitsInt(qint64 number)
{
    return number >= std::numeric_limits<int>::min() && number <= std::numeric_limits<int>::max();
}

int saturated(qint64 number)
{
    return int(std::clamp<qint64>(number, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()));
}

bool applyInteger(ValueBase& value, ValueType type, qint64 number, qint64 time, IObserver* originator)
{
    switch (type) {
        case ValueType::Integer:
            return ValueHost::ApplyInteger(value, saturated(number), time, originator);
        case ValueType::Selection:
            return fitsInt(number) && ValueHost::ApplyKey(value, int(number), time, originator);
        case ValueType::Float:
            return ValueHost::ApplyFloat(value, double(number), time, originator);
        default:
            return false;
    }
}

}  // namespace

ValueType typeOf(Link::ValueKind kind)
{
    switch (kind) {
        case Link::ValueKind::Bool:
            return ValueType::Bool;
        case Link::ValueKind::Float:
            return ValueType::Float;
        case Link::ValueKind::Integer:
            return ValueType::Integer;
        case Link::ValueKind::Text:
            return ValueType::Text;
        case Link::ValueKind::Selection:
            return ValueType::Selection;
        case Link::ValueKind::Bearing:
            break;
    }
    return ValueType::Other;
}

ValueDescription described(const Link::Description& description)
{
    ValueDescription result;
    result.type = typeOf(description.kind);
    result.unit = description.unit;
    result.minimum = description.minimum;
    result.maximum = description.maximum;
    result.hasLimits = description.hasLimits;
    result.step = description.step;
    result.precision = description.precision;
    result.writable = description.writable;
    result.event = description.event;
    result.items.reserve(description.items.size());
    for (const Link::Item& item : description.items) {
        if (fitsInt(item.key))
            result.items.append(SelectionItem(int(item.key), item.text, item.number));
    }
    return result;
}

Link::Content of(const ValueBase& value)
{
    const QVariant content = ValueHost::Content(value);
    switch (ValueHost::TypeOf(value)) {
        case ValueType::Bool:
            return content.toBool();
        case ValueType::Float:
            return content.toDouble();
        case ValueType::Integer:
        case ValueType::Selection:
            return content.toLongLong();
        case ValueType::Text:
            return content.toString();
        case ValueType::Other:
            break;
    }
    return {};
}

bool apply(ValueBase& value, ValueType type, const Link::Content& content, qint64 time, IObserver* originator)
{
    if (const double* number = std::get_if<double>(&content))
        return type == ValueType::Float && ValueHost::ApplyFloat(value, *number, time, originator);
    if (const bool* flag = std::get_if<bool>(&content))
        return type == ValueType::Bool && ValueHost::ApplyBool(value, *flag, time, originator);
    if (const qint64* number = std::get_if<qint64>(&content))
        return applyInteger(value, type, *number, time, originator);
    if (const QString* text = std::get_if<QString>(&content))
        return type == ValueType::Text && ValueHost::ApplyText(value, *text, time, originator);
    return std::holds_alternative<std::monostate>(content);
}

}  // namespace WireContent
