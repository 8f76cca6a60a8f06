#include <QCoreApplication>
#include <cmath>
#include <limits>

#include "valueframework/valueimpl.h"

namespace ValueImpl {
namespace {

QString LimitReason(const char* what, double limit, const QString& unit)
{
    const QString number = FormatFloat<double>::ToText(limit);
    return QCoreApplication::translate("ValueFramework", what)
        .arg(unit.isEmpty() ? number : number + QLatin1Char(' ') + unit);
}

QString AboveReason(const ValueDescription& description)
{
    return LimitReason(QT_TRANSLATE_NOOP("ValueFramework", "Limited to the maximum of %1"),
                       description.maximum, description.unit);
}

QString BelowReason(const ValueDescription& description)
{
    return LimitReason(QT_TRANSLATE_NOOP("ValueFramework", "Limited to the minimum of %1"),
                       description.minimum, description.unit);
}

}  // namespace

double Clamp(const ValueDescription& description, double number, QString* reason)
{
    if (number > description.maximum) {
        *reason = AboveReason(description);
        return description.maximum;
    }
    if (number < description.minimum) {
        *reason = BelowReason(description);
        return description.minimum;
    }
    return number;
}

int Clamp(const ValueDescription& description, int number, QString* reason)
{
    const double lowest = std::numeric_limits<int>::min();
    const double highest = std::numeric_limits<int>::max();
    const int within = int(std::clamp(Clamp(description, double(number), reason), lowest, highest));
    // A limit between two integers must not be passed by rounding it.
    if (within > description.maximum) {
        return int(std::floor(description.maximum));
    }
    if (within < description.minimum) {
        return int(std::ceil(description.minimum));
    }
    return within;
}

bool Read(const ValueBasePrivate& d, const QString& text, double* number)
{
    QString unit;
    return Quantity::Read(text, number, &unit) && d.FitsUnit(unit);
}

bool Read(const ValueBasePrivate& d, const QString& text, int* number)
{
    QString unit;
    double real = 0;
    if (!Quantity::Read(text, &real, &unit) || !d.FitsUnit(unit) || real != std::floor(real) ||
        real < std::numeric_limits<int>::min() || real > std::numeric_limits<int>::max()) {
        return false;
    }
    *number = int(real);
    return true;
}

}  // namespace ValueImpl

template class Value<bool, FormatBool<bool>, StreamFormat<bool, FormatBool<bool>>>;
template class Value<QString, FormatString<QString>, StreamFormat<QString, FormatString<QString>>>;
template class Value<double, FormatFloat<double>, StreamFormat<double, FormatFloat<double>>>;
template class ValueNumeric<double, FormatFloat<double>, StreamFormat<double, FormatFloat<double>>>;
template class Value<int, FormatInt<int>, StreamFormat<int, FormatInt<int>>>;
template class ValueNumeric<int, FormatInt<int>, StreamFormat<int, FormatInt<int>>>;
