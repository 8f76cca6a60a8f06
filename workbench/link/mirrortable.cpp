#include "link/mirrortable.h"

#include <algorithm>

namespace {

// Drivers count ids from 1; whoever does not pays with a hash.
constexpr quint32 directIds = 1u << 20;

}  // namespace

Mirror* MirrorTable::at(const QString& target)
{
    Mirror*& found = m_targets[target];
    if (!found) {
        m_all.push_back(std::make_unique<Mirror>());
        found = m_all.back().get();
        found->target = target;
    }
    return found;
}

void MirrorTable::setId(Mirror* mirror, quint32 id)
{
    if (mirror->hasId && mirror->id == id)
        return;
    clearId(mirror);
    mirror->hasId = true;
    mirror->id = id;
    if (id < directIds && id >= m_direct.size())
        m_direct.resize(std::max<std::size_t>(id + 1, m_direct.size() * 2), nullptr);
    Mirror*& first = id < directIds ? m_direct[id] : m_sparse[id];
    mirror->next = first;
    first = mirror;
}

void MirrorTable::clearId(Mirror* mirror)
{
    if (!mirror->hasId)
        return;
    Mirror** link = mirror->id < m_direct.size() ? &m_direct[mirror->id] : &m_sparse[mirror->id];
    while (*link && *link != mirror)
        link = &(*link)->next;
    if (*link)
        *link = mirror->next;
    mirror->next = nullptr;
    mirror->hasId = false;
}

void MirrorTable::setValue(Mirror* mirror, ValueBase* value)
{
    if (mirror->value)
        m_values.remove(mirror->value);
    mirror->value = value;
    if (value)
        m_values.insert(value, mirror);
}
