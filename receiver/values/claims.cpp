#include "receiver/values/claims.h"

#include <algorithm>

namespace Receiver {

namespace {

constexpr int longestName = 253;  // of a host

bool isName(const QString& text)
{
    return text.size() <= longestName &&
           std::all_of(text.begin(), text.end(), [](QChar c) { return c.isPrint(); });
}

}  // namespace

WriteResult Claims::decide(const QString& channel, ClientId client, const QString& text,
                           const QString& standing)
{
    const auto holder = m_holders.constFind(channel);
    if (holder != m_holders.constEnd() && *holder != client) {
        return {Link::AnswerKind::Refused, QStringLiteral("%1 is in use by \"%2\"").arg(channel, standing)};
    }
    if (text.isEmpty()) {
        m_holders.remove(channel);
        return {};
    }
    if (!isName(text) || text.trimmed().isEmpty()) {
        return {Link::AnswerKind::Refused,
                QStringLiteral("expects a name of printable characters, at most %1").arg(longestName)};
    }
    m_holders.insert(channel, client);
    return {};
}

QStringList Claims::release(ClientId client)
{
    QStringList released = m_holders.keys(client);
    for (const QString& channel : released)
        m_holders.remove(channel);
    released.sort();
    return released;
}

}  // namespace Receiver
