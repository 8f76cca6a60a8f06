#include "receiver/values/valuestore.h"

#include <QtDebug>
#include <algorithm>
#include <chrono>
#include <cmath>
#include <deque>
#include <memory>
#include <vector>

#include "receiver/values/quantity.h"

namespace Receiver {

namespace {

using Link::Content;
using Link::Description;
using Link::ValueKind;
using Link::ValueStatus;

constexpr double largestExactInteger = 9007199254740992.0;  // 2^53

qint64 now()
{
    using namespace std::chrono;
    return duration_cast<microseconds>(system_clock::now().time_since_epoch()).count();
}

// Brings the content into the form that the kind is kept in: a float may come as an integer and the
// other way round where nothing is lost. False: it does not fit.
bool fit(ValueKind kind, Content& content)
{
    switch (kind) {
        case ValueKind::Bool:
            return std::holds_alternative<bool>(content);
        case ValueKind::Float:
            if (const auto* integer = std::get_if<qint64>(&content))
                content = double(*integer);
            return std::holds_alternative<double>(content);
        case ValueKind::Integer:
        case ValueKind::Selection:
            if (const auto* number = std::get_if<double>(&content)) {
                if (std::abs(*number) <= largestExactInteger && std::floor(*number) == *number)
                    content = qint64(*number);
            }
            return std::holds_alternative<qint64>(content);
        case ValueKind::Text:
            return std::holds_alternative<QString>(content);
        case ValueKind::Bearing:
            return std::holds_alternative<QByteArray>(content);
    }
    return false;
}

Content emptyContent(ValueKind kind)
{
    switch (kind) {
        case ValueKind::Bool:
            return false;
        case ValueKind::Float:
            return 0.0;
        case ValueKind::Integer:
        case ValueKind::Selection:
            return qint64(0);
        case ValueKind::Text:
            return QString();
        case ValueKind::Bearing:
            return QByteArray();
    }
    return {};
}

// Two not-a-numbers are the same content.
bool sameContent(const Content& a, const Content& b)
{
    const auto* x = std::get_if<double>(&a);
    const auto* y = std::get_if<double>(&b);
    if (x && y && std::isnan(*x) && std::isnan(*y))
        return true;
    return a == b;
}

QString expectation(ValueKind kind)
{
    switch (kind) {
        case ValueKind::Bool:
            return QStringLiteral("expects true or false");
        case ValueKind::Float:
            return QStringLiteral("expects a number");
        case ValueKind::Integer:
            return QStringLiteral("expects a whole number");
        case ValueKind::Selection:
            return QStringLiteral("expects the key of an item");
        case ValueKind::Text:
            return QStringLiteral("expects a text");
        case ValueKind::Bearing:
            return QStringLiteral("expects a bearing result");
    }
    return {};
}

const Link::Item* itemWithKey(const Description& description, qint64 key)
{
    for (const Link::Item& item : description.items) {
        if (item.key == key)
            return &item;
    }
    return nullptr;
}

WriteResult refused(const QString& reason)
{
    return {Link::AnswerKind::Refused, reason};
}

// Selections: the key must be one of the items. Numbers: moved to the nearer limit.
WriteResult checkRange(const Description& description, Content& content)
{
    if (description.kind == ValueKind::Selection) {
        const qint64 key = std::get<qint64>(content);
        if (!itemWithKey(description, key))
            return refused(QStringLiteral("%1 is not the key of one of its items").arg(key));
        return {};
    }
    const bool isFloat = description.kind == ValueKind::Float;
    if (!isFloat && description.kind != ValueKind::Integer)
        return {};

    const double number = isFloat ? std::get<double>(content) : double(std::get<qint64>(content));
    if (!std::isfinite(number))
        return refused(QStringLiteral("expects a finite number"));
    if (!description.hasLimits)
        return {};
    const double limited = std::min(std::max(number, description.minimum), description.maximum);
    if (limited == number)
        return {};
    if (isFloat)
        content = limited;
    else
        content = qint64(limited);
    return {Link::AnswerKind::Clamped, clampedText(limited, description.unit)};
}

}  // namespace

struct ValueStore::Private
{
    struct Entry
    {
        Description description;
        Content content;
        ValueStatus status = ValueStatus::Usable;
        qint64 time = 0;
        Authority authority;
    };

    enum class Change
    {
        Value,
        Description,
        Removal
    };

    struct Notice
    {
        Change change;
        ValueId id;
    };

    std::vector<std::unique_ptr<Entry>> entries;  // by id - 1; null: removed
    QHash<QString, ValueId> ids;
    std::vector<StoreListener*> listeners;  // null: left during a notification
    std::deque<Notice> notices;
    bool notifying = false;
    std::vector<std::function<void(ClientId)>> goneHandlers;
    QHash<ClientId, QString> clientNames;

    Entry* entry(ValueId id) const
    {
        return id > 0 && id <= entries.size() ? entries[id - 1].get() : nullptr;
    }

    void notify(Change change, ValueId id);
    void tell(const Notice& notice, StoreListener* listener);
};

// A change made by a listener is told after the one that is being told, so that every listener
// hears the changes in the order in which they happened.
void ValueStore::Private::notify(Change change, ValueId id)
{
    if (listeners.empty())
        return;
    notices.push_back({change, id});
    if (notifying)
        return;
    notifying = true;
    while (!notices.empty()) {
        const Notice notice = notices.front();
        notices.pop_front();
        for (std::size_t i = 0; i < listeners.size(); ++i)
            tell(notice, listeners[i]);
    }
    notifying = false;
    listeners.erase(std::remove(listeners.begin(), listeners.end(), nullptr), listeners.end());
}

void ValueStore::Private::tell(const Notice& notice, StoreListener* listener)
{
    if (!listener)
        return;
    if (notice.change == Change::Removal) {
        listener->valueRemoved(notice.id);
        return;
    }
    if (!entry(notice.id))
        return;  // removed meanwhile; its removal is told next
    if (notice.change == Change::Value)
        listener->valueChanged(notice.id);
    else
        listener->descriptionChanged(notice.id);
}

ValueStore::ValueStore() : d(new Private) {}

ValueStore::~ValueStore()
{
    delete d;
}

ValueId ValueStore::define(Link::Description description, Link::Content content, Authority authority)
{
    const bool wellFormed = description.path.startsWith(QLatin1Char('/')) && description.path.size() > 1 &&
                            !description.path.endsWith(QLatin1Char('/'));
    if (!wellFormed || d->ids.contains(description.path)) {
        qWarning().noquote() << "value store: path is malformed or taken:" << description.path;
        return 0;
    }
    auto entry = std::make_unique<Private::Entry>();
    description.id = ValueId(d->entries.size() + 1);
    entry->content = fit(description.kind, content) ? std::move(content) : emptyContent(description.kind);
    entry->time = now();
    entry->authority = std::move(authority);
    entry->description = std::move(description);
    const ValueId id = entry->description.id;
    d->ids.insert(entry->description.path, id);
    d->entries.push_back(std::move(entry));
    d->notify(Private::Change::Description, id);
    return id;
}

void ValueStore::remove(ValueId id)
{
    const Private::Entry* entry = d->entry(id);
    if (!entry)
        return;
    d->ids.remove(entry->description.path);
    d->entries[id - 1].reset();
    d->notify(Private::Change::Removal, id);
}

ValueId ValueStore::find(const QString& path) const
{
    return d->ids.value(path, 0);
}

QVector<ValueId> ValueStore::below(const QString& path) const
{
    QString root = path;
    while (root.endsWith(QLatin1Char('/')))
        root.chop(1);
    QVector<ValueId> found;
    for (const auto& entry : d->entries) {
        if (!entry || !entry->description.path.startsWith(root))
            continue;
        const QString& candidate = entry->description.path;
        if (candidate.size() == root.size() || candidate.at(root.size()) == QLatin1Char('/'))
            found.append(entry->description.id);
    }
    return found;
}

const Link::Description& ValueStore::description(ValueId id) const
{
    static const Link::Description none;
    const Private::Entry* entry = d->entry(id);
    return entry ? entry->description : none;
}

void ValueStore::describe(ValueId id, const Link::Description& description)
{
    Private::Entry* entry = d->entry(id);
    if (!entry)
        return;
    Link::Description next = description;
    next.id = id;
    next.path = entry->description.path;
    next.kind = entry->description.kind;
    entry->description = std::move(next);
    d->notify(Private::Change::Description, id);
}

const Link::Content& ValueStore::content(ValueId id) const
{
    static const Link::Content none;
    const Private::Entry* entry = d->entry(id);
    return entry ? entry->content : none;
}

Link::ValueStatus ValueStore::status(ValueId id) const
{
    const Private::Entry* entry = d->entry(id);
    return entry ? entry->status : ValueStatus::NotAvailable;
}

qint64 ValueStore::time(ValueId id) const
{
    const Private::Entry* entry = d->entry(id);
    return entry ? entry->time : 0;
}

// A measurement brings its own time: the same number measured later is news. Without one only
// another content is.
void ValueStore::set(ValueId id, Link::Content content, qint64 time)
{
    Private::Entry* entry = d->entry(id);
    if (!entry)
        return;
    if (!fit(entry->description.kind, content)) {
        qWarning().noquote() << "value store:" << entry->description.path
                             << expectation(entry->description.kind);
        return;
    }
    const bool laterMeasurement = time != 0 && time != entry->time;
    const bool differs = !sameContent(entry->content, content) || laterMeasurement;
    if (!differs && !entry->description.event)
        return;
    entry->content = std::move(content);
    entry->time = time != 0 ? time : now();
    d->notify(Private::Change::Value, id);
}

void ValueStore::setStatus(ValueId id, Link::ValueStatus status)
{
    Private::Entry* entry = d->entry(id);
    if (!entry || entry->status == status)
        return;
    entry->status = status;
    d->notify(Private::Change::Value, id);
}

WriteResult ValueStore::write(ValueId id, Link::Content content, ClientId client)
{
    Private::Entry* entry = d->entry(id);
    if (!entry)
        return refused(QStringLiteral("there is no such value"));
    if (!fit(entry->description.kind, content))
        return refused(expectation(entry->description.kind));
    if (!entry->description.writable)
        return refused(QStringLiteral("can be read only"));

    const WriteResult range = checkRange(entry->description, content);
    if (range.kind == Link::AnswerKind::Refused)
        return range;
    WriteResult result;
    if (entry->authority) {
        const Authority authority = entry->authority;  // may remove the value
        result = authority(client, content);
    }
    if (result.kind == Link::AnswerKind::Refused)
        return result;
    if (result.kind == Link::AnswerKind::Accepted && range.kind == Link::AnswerKind::Clamped)
        result = range;
    set(id, std::move(content));
    return result;
}

double ValueStore::number(ValueId id) const
{
    const Private::Entry* entry = d->entry(id);
    if (!entry)
        return 0;
    switch (entry->description.kind) {
        case ValueKind::Float:
            return std::get<double>(entry->content);
        case ValueKind::Integer:
            return double(std::get<qint64>(entry->content));
        case ValueKind::Selection: {
            const Link::Item* item = itemWithKey(entry->description, std::get<qint64>(entry->content));
            return item ? item->number : 0;
        }
        default:
            return 0;
    }
}

qint64 ValueStore::key(ValueId id) const
{
    const Private::Entry* entry = d->entry(id);
    if (!entry || entry->description.kind != ValueKind::Selection)
        return 0;
    return std::get<qint64>(entry->content);
}

QString ValueStore::text(ValueId id) const
{
    const Private::Entry* entry = d->entry(id);
    if (!entry)
        return {};
    if (entry->description.kind == ValueKind::Text)
        return std::get<QString>(entry->content);
    if (entry->description.kind != ValueKind::Selection)
        return {};
    const Link::Item* item = itemWithKey(entry->description, std::get<qint64>(entry->content));
    return item ? item->text : QString();
}

bool ValueStore::flag(ValueId id) const
{
    const Private::Entry* entry = d->entry(id);
    return entry && entry->description.kind == ValueKind::Bool && std::get<bool>(entry->content);
}

void ValueStore::addListener(StoreListener* listener)
{
    const bool known = std::find(d->listeners.begin(), d->listeners.end(), listener) != d->listeners.end();
    if (listener && !known)
        d->listeners.push_back(listener);
}

void ValueStore::removeListener(StoreListener* listener)
{
    const auto place = std::find(d->listeners.begin(), d->listeners.end(), listener);
    if (!listener || place == d->listeners.end())
        return;
    if (d->notifying)
        *place = nullptr;
    else
        d->listeners.erase(place);
}

void ValueStore::onClientGone(std::function<void(ClientId client)> handler)
{
    d->goneHandlers.push_back(std::move(handler));
}

void ValueStore::clientGone(ClientId client)
{
    for (std::size_t i = 0; i < d->goneHandlers.size(); ++i) {
        const auto handler = d->goneHandlers[i];
        handler(client);
    }
    d->clientNames.remove(client);
}

void ValueStore::setClientName(ClientId client, const QString& name)
{
    d->clientNames.insert(client, name);
}

QString ValueStore::clientName(ClientId client) const
{
    return d->clientNames.value(client);
}

}  // namespace Receiver
