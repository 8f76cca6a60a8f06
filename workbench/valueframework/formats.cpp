#include <QLocale>
#include <cmath>
#include <limits>

#include "valueframework/quantity.h"
#include "valueframework/value.h"

namespace {

// Beyond these a plain number is mostly zeros.
constexpr double largestPlain = 1e15;
constexpr double smallestPlain = 1e-5;

bool ReadNumber(const QString& text, double* value)
{
    QString unit;
    double number = 0;
    if (!Quantity::Read(text, &number, &unit) || !(unit.isEmpty() || Quantity::IsKnownUnit(unit))) {
        return false;
    }
    *value = number;
    return true;
}

}  // namespace

QString FormatBoolText::ToText(bool value)
{
    return value ? QStringLiteral("On") : QStringLiteral("Off");
}

bool FormatBoolText::FromText(const QString& text, bool* value)
{
    static const struct
    {
        const char* word;
        bool value;
    } words[] = {{"on", true}, {"off", false}, {"true", true}, {"false", false},
                 {"1", true},  {"0", false},   {"yes", true},  {"no", false}};
    const QString trimmed = text.trimmed();
    for (const auto& entry : words) {
        if (trimmed.compare(QLatin1String(entry.word), Qt::CaseInsensitive) == 0) {
            *value = entry.value;
            return true;
        }
    }
    return false;
}

QString FormatString<QString>::ToText(const QString& value)
{
    return value;
}

bool FormatString<QString>::FromText(const QString& text, QString* value)
{
    *value = text;
    return true;
}

QString FormatFloat<double>::ToText(double value)
{
    const double magnitude = std::fabs(value);
    if (magnitude == 0) {
        return QStringLiteral("0");
    }
    const bool plain = magnitude >= smallestPlain && magnitude < largestPlain;
    return QString::number(value, plain ? 'f' : 'g', QLocale::FloatingPointShortest);
}

bool FormatFloat<double>::FromText(const QString& text, double* value)
{
    return ReadNumber(text, value);
}

QString FormatInt<int>::ToText(int value)
{
    return QString::number(value);
}

bool FormatInt<int>::FromText(const QString& text, int* value)
{
    double number = 0;
    if (!ReadNumber(text, &number) || number != std::floor(number) ||
        number < std::numeric_limits<int>::min() || number > std::numeric_limits<int>::max()) {
        return false;
    }
    *value = int(number);
    return true;
}
