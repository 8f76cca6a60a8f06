#ifndef HOST_VALUE_H
#define HOST_VALUE_H

#include "valueframework/valuebase.h"

// How a type is written for people, and how it is read back.
template <class T>
struct FormatBool;
struct VALUEFRAMEWORK_EXPORT FormatBoolText
{
    static QString ToText(bool value);                       // "On", "Off"
    static bool FromText(const QString& text, bool* value);  // On/Off, true/false, 1/0, yes/no
};
template <>
struct VALUEFRAMEWORK_EXPORT FormatBool<bool> : FormatBoolText
{
};

template <class T>
struct FormatString;
template <>
struct VALUEFRAMEWORK_EXPORT FormatString<QString>
{
    static QString ToText(const QString& value);
    static bool FromText(const QString& text, QString* value);
};

template <class T>
struct FormatFloat;
template <>
struct VALUEFRAMEWORK_EXPORT FormatFloat<double>
{
    static QString ToText(double value);                       // shortest text that reads back the same
    static bool FromText(const QString& text, double* value);  // finite numbers, unit prefixes k, M, G
};

template <class T>
struct FormatInt;
template <>
struct VALUEFRAMEWORK_EXPORT FormatInt<int>
{
    static QString ToText(int value);
    static bool FromText(const QString& text, int* value);
};

// Tag of the stored form of a value; the framework stores values with it, the module never does.
template <class T, class Format>
struct VALUEFRAMEWORK_EXPORT StreamFormat
{
    typedef T Type;
    typedef Format TextFormat;
};

// Exported as a template, so that its instances have one type identity in every library.
template <class T, class Format, class Stream>
class VALUEFRAMEWORK_EXPORT Value : public ValueBase
{
public:
    Value();
    ~Value();

    virtual T GetValue() const { return m_Value; }

    // Writes; all but `originator` (may be null) hear of it. True when the value was taken.
    virtual bool SetValue(const T& value, IObserver* originator);

    QString GetText() const;
    bool SetText(const QString& text, IObserver* originator);

private:
    T m_Value;
};

// A number with limits, which the driver tells; a write beyond them is clamped by whoever owns the
// value: by the tree itself for a value that lives only here, by the driver for a mirrored one.
template <class T, class Format, class Stream>
class VALUEFRAMEWORK_EXPORT ValueNumeric : public Value<T, Format, Stream>
{
public:
    ValueNumeric();
    ~ValueNumeric();

    // Final, so that an observer's reading of the new number costs no second virtual call.
    T GetValue() const final { return Value<T, Format, Stream>::GetValue(); }

    bool SetValue(const T& value, IObserver* originator);
};

typedef Value<bool, FormatBool<bool>, StreamFormat<bool, FormatBool<bool>>> BoolValue;
typedef Value<QString, FormatString<QString>, StreamFormat<QString, FormatString<QString>>> TextValue;
typedef Value<double, FormatFloat<double>, StreamFormat<double, FormatFloat<double>>> FloatValueBase;
typedef ValueNumeric<double, FormatFloat<double>, StreamFormat<double, FormatFloat<double>>> FloatValue;
typedef Value<int, FormatInt<int>, StreamFormat<int, FormatInt<int>>> IntValueBase;
typedef ValueNumeric<int, FormatInt<int>, StreamFormat<int, FormatInt<int>>> IntValue;

#ifndef VALUEFRAMEWORK_BUILD
extern template class Value<bool, FormatBool<bool>, StreamFormat<bool, FormatBool<bool>>>;
extern template class Value<QString, FormatString<QString>, StreamFormat<QString, FormatString<QString>>>;
extern template class Value<double, FormatFloat<double>, StreamFormat<double, FormatFloat<double>>>;
extern template class ValueNumeric<double, FormatFloat<double>, StreamFormat<double, FormatFloat<double>>>;
extern template class Value<int, FormatInt<int>, StreamFormat<int, FormatInt<int>>>;
extern template class ValueNumeric<int, FormatInt<int>, StreamFormat<int, FormatInt<int>>>;
#endif

#endif
