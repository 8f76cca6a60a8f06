#include "valuecontrols/numbertext.h"

#include <QCoreApplication>
#include <QRegularExpression>
#include <cmath>

namespace NumberText {

namespace {

const int maximumEntryLength = 200;       // characters; a number with groups and unit needs 40
const int maximumDecimals = 6;            // digits after the point where nothing else is told
const double maximumGroupedValue = 1e15;  // beyond, doubles have no exact units: exponent form

QString Text(const char* text)
{
    return QCoreApplication::translate("ValueControls", text);
}

// Micro sign and Greek mu look alike and are both typed; "u" stands for them on a plain keyboard.
QString PlainMicro(QString text)
{
    return text.replace(QChar(0x00B5), QLatin1Char('u')).replace(QChar(0x03BC), QLatin1Char('u'));
}

QString WithoutGroups(const QString& entry)
{
    QString plain;
    for (const QChar character : entry) {
        if (character.isSpace() || character == QLatin1Char('\'') || character == QLatin1Char('_'))
            continue;
        plain += character == QChar(0x2212) ? QChar(QLatin1Char('-')) : character;
    }
    return PlainMicro(plain);
}

// Takes the unit off the end; a lone unit is left for the complaint.
void TakeUnit(QString* text, const QString& unit)
{
    const QString plain = WithoutGroups(unit);
    if (!plain.isEmpty() && text->size() > plain.size() && text->endsWith(plain, Qt::CaseInsensitive))
        text->chop(plain.size());
}

// Takes a unit prefix off the end; returns its power of ten. For hertz the small letters are taken as
// well: nobody tunes by millihertz.
int TakePrefix(QString* text, const QString& unit)
{
    if (text->size() < 2)
        return 0;
    const bool hertz = unit == QLatin1String("Hz");
    int power = 0;
    switch (text->back().unicode()) {
        case 'k':
        case 'K':
            power = 3;
            break;
        case 'M':
            power = 6;
            break;
        case 'm':
            power = hertz ? 6 : 0;
            break;
        case 'G':
            power = 9;
            break;
        case 'g':
            power = hertz ? 9 : 0;
            break;
        default:
            break;
    }
    if (power)
        text->chop(1);
    return power;
}

// Leaves a plain point as the only separator, or the text as it is when that cannot be said.
void SettleSeparators(QString* text)
{
    static const QRegularExpression commaGroups(QStringLiteral("^[+-]?\\d{1,3}(,\\d{3}){2,}(\\.\\d*)?$"));
    static const QRegularExpression mixedGroups(QStringLiteral("^[+-]?\\d{1,3}(,\\d{3})+\\.\\d*$"));
    static const QRegularExpression pointGroups(QStringLiteral("^[+-]?\\d{1,3}(\\.\\d{3}){2,}(,\\d*)?$"));
    if (commaGroups.match(*text).hasMatch() || mixedGroups.match(*text).hasMatch()) {
        text->remove(QLatin1Char(','));
    } else if (pointGroups.match(*text).hasMatch()) {
        text->remove(QLatin1Char('.')).replace(QLatin1Char(','), QLatin1Char('.'));
    } else if (text->count(QLatin1Char(',')) == 1 && !text->contains(QLatin1Char('.'))) {
        text->replace(QLatin1Char(','), QLatin1Char('.'));
    }
}

Reading Problem(const QString& problem)
{
    Reading reading;
    reading.problem = problem;
    return reading;
}

QString Example(const QString& unit)
{
    return unit == QLatin1String("Hz") ? QStringLiteral("98.5M") : QStringLiteral("12.5");
}

}  // namespace

QString Quoted(const QString& entry)
{
    const int shown = 24;
    const QString plain = entry.simplified();
    return plain.size() <= shown ? plain : plain.left(shown - 1) + QChar(0x2026);
}

Reading Read(const QString& entry, const QString& unit)
{
    if (entry.size() > maximumEntryLength)
        return Problem(Text("The entry is too long (%1 characters). Enter a number, for example %2.")
                           .arg(entry.size())
                           .arg(Example(unit)));
    QString text = WithoutGroups(entry);
    if (text.isEmpty())
        return Problem(Text("The entry is empty. Enter a number, for example %1.").arg(Example(unit)));
    TakeUnit(&text, unit);
    const int power = TakePrefix(&text, unit);
    static const QRegularExpression fractionOrGroup(QStringLiteral("^[+-]?[0-9]{1,3},[0-9]{3}$"));
    if (fractionOrGroup.match(text).hasMatch())
        return Problem(
            Text("\"%1\" can be read in two ways. Write a point before the decimals, and blanks or "
                 "nothing between groups.")
                .arg(Quoted(entry)));
    SettleSeparators(&text);

    static const QRegularExpression number(
        QStringLiteral("^([+-]?(?:[0-9]+\\.?[0-9]*|\\.[0-9]+))(?:[eE]([+-]?[0-9]+))?$"));
    const QRegularExpressionMatch match = number.match(text);
    if (!match.hasMatch())
        return Problem(
            Text("\"%1\" is not a number. Enter for example %2.").arg(Quoted(entry), Example(unit)));

    bool exponentFits = true;
    const int exponent = match.captured(2).isEmpty() ? 0 : match.captured(2).toInt(&exponentFits);
    Reading reading;
    reading.power = power;
    if (exponentFits && std::abs(exponent) < 1000000) {
        // The prefix goes into the exponent, so that 433.9205M is the nearest double to 433920500.
        const QString exact = match.captured(1) + QLatin1Char('e') + QString::number(exponent + power);
        reading.value = exact.toLatin1().toDouble(&reading.ok);
        if (!reading.ok && exponent + power < 0) {  // smaller than any double
            reading.value = 0;
            reading.ok = true;
        }
    }
    if (!reading.ok || !std::isfinite(reading.value))
        return Problem(Text("\"%1\" is beyond any number that can be set. Enter for example %2.")
                           .arg(Quoted(entry), Example(unit)));
    return reading;
}

int Decimals(double value, int precision)
{
    if (precision >= 0)
        return qMin(precision, 12);
    for (int decimals = 0; decimals < maximumDecimals; ++decimals) {
        if (QString::number(value, 'f', decimals).toDouble() == value)
            return decimals;
    }
    return maximumDecimals;
}

QString Show(double value, int precision, const QString& unit)
{
    const QString tail = unit.isEmpty() ? QString() : QLatin1Char(' ') + unit;
    if (!std::isfinite(value))
        return QStringLiteral("---") + tail;
    if (std::fabs(value) >= maximumGroupedValue)
        return QString::number(value, 'g', 6) + tail;
    QString text = QString::number(value, 'f', Decimals(value, precision));
    if (text.startsWith(QLatin1Char('-')) && text.toDouble() == 0)
        text.remove(0, 1);  // no "-0.0"
    int point = text.indexOf(QLatin1Char('.'));
    if (point < 0)
        point = text.size();
    const int first = text.startsWith(QLatin1Char('-')) ? 1 : 0;
    for (int position = point - 3; position > first; position -= 3)
        text.insert(position, QLatin1Char(' '));
    return text + tail;
}

double AddDecimal(double value, double step, int decimals)
{
    const double scale = std::pow(10.0, decimals);
    const double sum = (value + step) * scale;
    return std::fabs(sum) < 9e15 ? std::round(sum) / scale : value + step;
}

}  // namespace NumberText
