#include "valueframework/quantity.h"

#include <QRegularExpression>
#include <QStringList>
#include <cmath>

namespace Quantity {
namespace {

const int longestText = 200;

bool IsSpace(QChar character)
{
    return character.isSpace();  // the no-break and thin spaces as well
}

// The digits with single spaces between groups taken out; empty when the groups are not of three.
QString WithoutGroups(const QString& digits)
{
    if (std::none_of(digits.cbegin(), digits.cend(), IsSpace)) {
        return digits;
    }
    static const QRegularExpression grouped(QStringLiteral("^[+-]?[0-9]{1,3}(\\s[0-9]{3})+(\\.[0-9]*)?$"),
                                            QRegularExpression::UseUnicodePropertiesOption);
    if (!grouped.match(digits).hasMatch()) {
        return QString();
    }
    QString joined = digits;
    joined.removeIf(IsSpace);
    return joined;
}

double Factor(QChar prefix)
{
    switch (prefix.unicode()) {
        case 'k':
        case 'K':
            return 1e3;
        case 'M':
            return 1e6;
        case 'G':
            return 1e9;
        default:
            return 1;
    }
}

// Splits "kHz" into its factor and "Hz". A lower case "m" is no prefix here, except where somebody
// wrote the whole unit in small letters: nobody tunes in thousandths of a hertz.
double SplitPrefix(const QString& suffix, QString* unit)
{
    if (suffix == QLatin1String("mhz")) {
        *unit = suffix.mid(1);
        return 1e6;
    }
    if (suffix == QLatin1String("ghz")) {
        *unit = suffix.mid(1);
        return 1e9;
    }
    const double factor = suffix.isEmpty() ? 1 : Factor(suffix.at(0));
    *unit = factor == 1 ? suffix : suffix.mid(1).trimmed();
    return factor;
}

QString Comparable(const QString& unit)
{
    QString text = unit.trimmed().toLower();
    text.replace(QChar(0x03bc), QChar('u'));  // Greek letter
    text.replace(QChar(0x00b5), QChar('u'));  // micro sign
    return text;
}

}  // namespace

bool Read(const QString& text, double* number, QString* unit)
{
    if (text.size() > longestText) {
        return false;
    }
    static const QRegularExpression form(
        QStringLiteral(
            "^\\s*([+-]?(?:[0-9](?:[0-9]|\\s(?=[0-9]))*(?:\\.[0-9]*)?|\\.[0-9]+)(?:[eE][+-]?[0-9]+)?)"
            "\\s*([^\\s0-9.,+-]\\S*)?\\s*$"),
        QRegularExpression::UseUnicodePropertiesOption);
    const QRegularExpressionMatch match = form.match(text);
    if (!match.hasMatch()) {
        return false;
    }
    const QString digits = WithoutGroups(match.captured(1));
    bool ok = !digits.isEmpty();
    const double plain = ok ? digits.toDouble(&ok) : 0;
    QString foundUnit;
    const double value = plain * SplitPrefix(match.captured(2), &foundUnit);
    if (!ok || !std::isfinite(value)) {
        return false;
    }
    *number = value;
    *unit = foundUnit;
    return true;
}

bool IsKnownUnit(const QString& unit)
{
    static const QStringList known = {
        QStringLiteral("hz"),   QStringLiteral("db"), QStringLiteral("dbm"),    QStringLiteral("dbuv"),
        QStringLiteral("dbfs"), QStringLiteral("%"),  QStringLiteral("dbuv/m"), QStringLiteral("\u00b0"),
        QStringLiteral("deg"),  QStringLiteral("s"),  QStringLiteral("ms"),     QStringLiteral("samples/s"),
        QStringLiteral("s/s")};
    return known.contains(Comparable(unit));
}

bool SameUnit(const QString& first, const QString& second)
{
    return Comparable(first) == Comparable(second);
}

}  // namespace Quantity
