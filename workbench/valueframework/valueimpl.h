#pragma once

#include <cmath>
#include <type_traits>

#include "valueframework/quantity.h"
#include "valueframework/value.h"
#include "valueframework/valuebase_p.h"

// The bodies of the value templates, for the libraries that instantiate them.

namespace ValueImpl {

template <class T>
constexpr ValueType typeOf = ValueType::Other;
template <>
inline constexpr ValueType typeOf<bool> = ValueType::Bool;
template <>
inline constexpr ValueType typeOf<double> = ValueType::Float;
template <>
inline constexpr ValueType typeOf<int> = ValueType::Integer;
template <>
inline constexpr ValueType typeOf<QString> = ValueType::Text;

// No number stands for "none", and it would spoil every computation that it comes into.
template <class T>
bool IsStorable(const T& value)
{
    if constexpr (std::is_floating_point_v<T>) {
        return std::isfinite(value);
    } else {
        Q_UNUSED(value);
        return true;
    }
}

// What the number becomes within the limits; `reason` says which one it met, for the operator.
double Clamp(const ValueDescription& description, double number, QString* reason);
int Clamp(const ValueDescription& description, int number, QString* reason);

// Text into a number for a value with a unit of its own.
bool Read(const ValueBasePrivate& d, const QString& text, double* number);
bool Read(const ValueBasePrivate& d, const QString& text, int* number);

}  // namespace ValueImpl

template <class T, class Format, class Stream>
Value<T, Format, Stream>::Value() : m_Value()
{
    ValueBasePrivate& d = ValueBasePrivate::Of(*this);
    d.type = ValueImpl::typeOf<T>;
    d.description.type = d.type;
}

template <class T, class Format, class Stream>
Value<T, Format, Stream>::~Value()
{
    // Here and not only in the base: observers may still read the content.
    this->AnnounceDeletion();
}

template <class T, class Format, class Stream>
bool Value<T, Format, Stream>::SetValue(const T& value, IObserver* originator)
{
    if (!ValueImpl::IsStorable(value)) {
        return false;
    }
    ValueBasePrivate& d = ValueBasePrivate::Of(*this);
    if (!d.description.event && m_Value == value) {
        return true;
    }
    m_Value = value;
    d.Changed(*this, originator);
    return true;
}

template <class T, class Format, class Stream>
QString Value<T, Format, Stream>::GetText() const
{
    return Format::ToText(GetValue());
}

template <class T, class Format, class Stream>
bool Value<T, Format, Stream>::SetText(const QString& text, IObserver* originator)
{
    T value = T();
    if constexpr (std::is_same_v<T, double> || std::is_same_v<T, int>) {
        if (!ValueImpl::Read(ValueBasePrivate::Of(*this), text, &value)) {
            return false;
        }
    } else if (!Format::FromText(text, &value)) {
        return false;
    }
    return SetValue(value, originator);
}

template <class T, class Format, class Stream>
ValueNumeric<T, Format, Stream>::ValueNumeric() = default;

template <class T, class Format, class Stream>
ValueNumeric<T, Format, Stream>::~ValueNumeric()
{
    this->AnnounceDeletion();
}

template <class T, class Format, class Stream>
bool ValueNumeric<T, Format, Stream>::SetValue(const T& value, IObserver* originator)
{
    using Plain = Value<T, Format, Stream>;
    ValueBasePrivate& d = ValueBasePrivate::Of(*this);
    if (Q_LIKELY(!d.KeepsLimits())) {
        return Plain::SetValue(value, originator);
    }
    if (!ValueImpl::IsStorable(value)) {
        return false;
    }
    QString reason;
    const T within = ValueImpl::Clamp(d.description, value, &reason);
    if (!d.NoteLimit(reason)) {
        return Plain::SetValue(within, originator);
    }
    // The note first, so that whoever hears of the content finds it; the writer hears of it too.
    const LifeWatch watch(*this);
    Plain::SetValue(within, originator);
    if (watch.IsAlive()) {
        d.Notify(*this, CC_DESCRIPTION, nullptr);
    }
    return true;
}
