#include "tools/valuetext.h"

#include <QDateTime>
#include <QJsonArray>
#include <QRegularExpression>
#include <QStringList>
#include <cmath>
#include <limits>

namespace ValueText {
namespace {

using Link::Content;
using Link::Description;
using Link::Item;
using Link::Update;
using Link::ValueKind;

constexpr double largestExactInteger = 9007199254740992.0;  // 2^53
constexpr int maximumItemsNamed = 12;

QString numberText(double number)
{
    // The shortest text that reads back the same; frequencies without an exponent.
    const bool plain = std::abs(number) < 1e15;
    const QString text = QString::number(number, plain ? 'f' : 'g', QLocale::FloatingPointShortest);
    return text;
}

QString withUnit(const QString& number, const QString& unit)
{
    return unit.isEmpty() ? number : number + QLatin1Char(' ') + unit;
}

const Item* itemOf(const Description& description, qint64 key)
{
    for (const Item& item : description.items) {
        if (item.key == key)
            return &item;
    }
    return nullptr;
}

double prefixFactor(QChar prefix)
{
    switch (prefix.toLatin1()) {
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

// A number with a prefix and a unit. An empty `unit` allows none, except Hz for the items of
// selections, which carry no unit of their own.
bool parseNumber(const QString& text, const QString& unit, double* number)
{
    static const QRegularExpression form(
        QStringLiteral("^\\s*([+-]?(?:\\d+\\.?\\d*|\\.\\d+)(?:[eE][+-]?\\d+)?)\\s*(.*?)\\s*$"));
    const QRegularExpressionMatch match = form.match(text);
    if (!match.hasMatch())
        return false;
    QString rest = match.captured(2);
    double factor = 1;
    if (rest != unit && !rest.isEmpty()) {
        factor = prefixFactor(rest.at(0));
        if (factor == 1)
            return false;
        rest.remove(0, 1);
    }
    if (!rest.isEmpty() && rest != unit)
        return false;
    bool ok = false;
    *number = match.captured(1).toDouble(&ok) * factor;
    return ok && std::isfinite(*number);
}

bool parseBool(const QString& text, Content* content, QString* error)
{
    static const QStringList yes = {QStringLiteral("on"), QStringLiteral("true"), QStringLiteral("yes"),
                                    QStringLiteral("1")};
    static const QStringList no = {QStringLiteral("off"), QStringLiteral("false"), QStringLiteral("no"),
                                   QStringLiteral("0")};
    const QString word = text.trimmed().toLower();
    if (!yes.contains(word) && !no.contains(word)) {
        *error = QStringLiteral("expects on or off");
        return false;
    }
    *content = yes.contains(word);
    return true;
}

bool parseInteger(const Description& description, const QString& text, Content* content, QString* error)
{
    bool ok = false;
    qint64 integer = text.trimmed().toLongLong(&ok);
    double number = 0;
    if (!ok && parseNumber(text, description.unit, &number) && std::floor(number) == number &&
        std::abs(number) <= largestExactInteger) {
        integer = qint64(number);
        ok = true;
    }
    *content = integer;
    if (!ok)
        *error = withUnit(QStringLiteral("expects a whole number"),
                          description.unit.isEmpty() ? QString() : QStringLiteral("in ") + description.unit);
    return ok;
}

QString itemTexts(const Description& description)
{
    QStringList texts;
    for (const Item& item : description.items) {
        if (texts.size() == maximumItemsNamed) {
            texts.append(QStringLiteral("..."));
            break;
        }
        texts.append(QLatin1Char('"') + item.text + QLatin1Char('"'));
    }
    return texts.join(QStringLiteral(", "));
}

// The exact text wins, then the text in another case, then the number, then the key.
const Item* findItem(const Description& description, const QString& text)
{
    for (const Qt::CaseSensitivity sensitivity : {Qt::CaseSensitive, Qt::CaseInsensitive}) {
        for (const Item& item : description.items) {
            if (item.text.compare(text, sensitivity) == 0)
                return &item;
        }
    }
    const QString unit = description.unit.isEmpty() ? QStringLiteral("Hz") : description.unit;
    double number = 0;
    if (parseNumber(text, unit, &number) && number != 0) {
        for (const Item& item : description.items) {
            if (item.number == number)
                return &item;
        }
    }
    bool ok = false;
    const qint64 key = text.toLongLong(&ok);
    return ok ? itemOf(description, key) : nullptr;
}

QJsonValue jsonContent(const Description& description, const Content& content)
{
    if (const bool* flag = std::get_if<bool>(&content))
        return *flag;
    if (const double* number = std::get_if<double>(&content))
        return std::isfinite(*number) ? QJsonValue(*number) : QJsonValue();
    if (const qint64* integer = std::get_if<qint64>(&content))
        return description.kind == ValueKind::Selection ? QJsonValue(text(description, content))
                                                        : QJsonValue(*integer);
    if (std::holds_alternative<std::monostate>(content))
        return {};
    return text(description, content);
}

}  // namespace

QString text(const Description& description, const Content& content)
{
    if (const bool* flag = std::get_if<bool>(&content))
        return *flag ? QStringLiteral("On") : QStringLiteral("Off");
    if (const double* number = std::get_if<double>(&content))
        return withUnit(numberText(*number), description.unit);
    if (const qint64* integer = std::get_if<qint64>(&content)) {
        if (description.kind != ValueKind::Selection)
            return withUnit(QString::number(*integer), description.unit);
        const Item* item = itemOf(description, *integer);
        return item ? item->text : QString::number(*integer);
    }
    if (const QByteArray* bytes = std::get_if<QByteArray>(&content))
        return QString::fromLatin1(bytes->toHex());
    const QString* plain = std::get_if<QString>(&content);
    return plain ? *plain : QString();
}

bool parse(const Description& description, const QString& text, Content* content, QString* error)
{
    switch (description.kind) {
        case ValueKind::Bool:
            return parseBool(text, content, error);
        case ValueKind::Integer:
            return parseInteger(description, text, content, error);
        case ValueKind::Text:
            *content = text;
            return true;
        case ValueKind::Bearing:
            *error = QStringLiteral("a bearing result cannot be written");
            return false;
        case ValueKind::Float: {
            double number = 0;
            if (!parseNumber(text, description.unit, &number)) {
                *error = withUnit(
                    QStringLiteral("expects a number, like 98.5M"),
                    description.unit.isEmpty() ? QString() : QStringLiteral("in ") + description.unit);
                return false;
            }
            *content = number;
            return true;
        }
        case ValueKind::Selection:
            break;
    }
    const Item* item = findItem(description, text.trimmed());
    if (!item) {
        *error = description.items.isEmpty()
                     ? QStringLiteral("has no items to choose from")
                     : QStringLiteral("expects one of %1").arg(itemTexts(description));
        return false;
    }
    *content = item->key;
    return true;
}

QString time(qint64 microseconds)
{
    if (microseconds == 0)
        return {};
    const qint64 rest = ((microseconds % 1000000) + 1000000) % 1000000;
    const QDateTime seconds = QDateTime::fromSecsSinceEpoch((microseconds - rest) / 1000000, Qt::UTC);
    return seconds.toString(QStringLiteral("yyyy-MM-ddTHH:mm:ss")) +
           QStringLiteral(".%1Z").arg(rest, 6, 10, QLatin1Char('0'));
}

QString kindName(ValueKind kind)
{
    static const char* const names[] = {"bool", "float", "integer", "text", "selection", "bearing result"};
    return QLatin1String(names[int(kind)]);
}

QJsonObject json(const Description& description, const Update& update)
{
    QJsonObject object;
    object.insert(QStringLiteral("path"), description.path);
    object.insert(QStringLiteral("kind"), kindName(description.kind));
    object.insert(QStringLiteral("value"), jsonContent(description, update.content));
    if (description.kind == ValueKind::Selection && std::holds_alternative<qint64>(update.content))
        object.insert(QStringLiteral("key"), std::get<qint64>(update.content));
    if (!description.unit.isEmpty())
        object.insert(QStringLiteral("unit"), description.unit);
    object.insert(QStringLiteral("available"), update.status == Link::ValueStatus::Usable);
    object.insert(QStringLiteral("time"), time(update.time));
    return object;
}

QJsonObject infoJson(const Description& description, const Update& update)
{
    QJsonObject object = json(description, update);
    object.insert(QStringLiteral("writable"), description.writable);
    object.insert(QStringLiteral("event"), description.event);
    if (description.hasLimits) {
        object.insert(QStringLiteral("minimum"), description.minimum);
        object.insert(QStringLiteral("maximum"), description.maximum);
    }
    if (description.step != 0)
        object.insert(QStringLiteral("step"), description.step);
    if (description.precision >= 0)
        object.insert(QStringLiteral("precision"), description.precision);
    QJsonArray items;
    for (const Item& item : description.items) {
        QJsonObject entry;
        entry.insert(QStringLiteral("key"), item.key);
        entry.insert(QStringLiteral("text"), item.text);
        if (item.number != 0)
            entry.insert(QStringLiteral("number"), item.number);
        items.append(entry);
    }
    if (!items.isEmpty())
        object.insert(QStringLiteral("items"), items);
    return object;
}

QString infoText(const Description& description, const Update& update)
{
    QStringList lines;
    const auto fact = [&lines](const char* name, const QString& what) {
        lines.append(QStringLiteral("%1 %2").arg(QLatin1String(name), -10).arg(what));
    };
    fact("path", description.path);
    fact("type", kindName(description.kind) + (description.event ? QStringLiteral(", event") : QString()));
    fact("value", text(description, update.content));
    fact("state", update.status == Link::ValueStatus::Usable ? QStringLiteral("usable")
                                                             : QStringLiteral("not available"));
    fact("time", time(update.time));
    fact("access", description.writable ? QStringLiteral("read and write") : QStringLiteral("read only"));
    if (!description.unit.isEmpty())
        fact("unit", description.unit);
    if (description.hasLimits)
        fact("limits", QStringLiteral("%1 to %2")
                           .arg(withUnit(numberText(description.minimum), description.unit),
                                withUnit(numberText(description.maximum), description.unit)));
    if (description.step != 0)
        fact("step", withUnit(numberText(description.step), description.unit));
    for (const Item& item : description.items)
        fact("item", QStringLiteral("%1 %2").arg(item.key).arg(item.text));
    return lines.join(QLatin1Char('\n'));
}

}  // namespace ValueText
