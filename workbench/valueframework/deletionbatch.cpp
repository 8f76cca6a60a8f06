#include "valueframework/deletionbatch.h"

#include <algorithm>

#include "valueframework/tree_p.h"
#include "valueframework/valuebase_p.h"

void DeletionBatch::Add(ValueBase& value)
{
    ValueBasePrivate& d = ValueBasePrivate::Of(value);
    d.batch = this;
    m_values.append(&value);
}

void DeletionBatch::Add(Node* node)
{
    m_nodes.append(node);
}

void DeletionBatch::Forget(const ValueBase& value)
{
    m_values[ValueBasePrivate::Of(value).batchSlot] = nullptr;
}

DeletionBatch::~DeletionBatch()
{
    std::sort(m_values.begin(), m_values.end(), [](const ValueBase* a, const ValueBase* b) {
        return ValueBasePrivate::Of(*a).serial < ValueBasePrivate::Of(*b).serial;
    });
    for (int i = 0; i < m_values.size(); ++i) {
        ValueBasePrivate::Of(*m_values.at(i)).batchSlot = i;
    }
    for (int i = 0; i < m_values.size(); ++i) {
        if (ValueBase* value = m_values.at(i)) {
            ValueBasePrivate::Announce(*value);
        }
    }
    for (int i = 0; i < m_values.size(); ++i) {
        if (ValueBase* value = m_values.at(i)) {
            ValueBasePrivate::Of(*value).batch = nullptr;
            delete value;
        }
    }
    for (Node* node : std::as_const(m_nodes)) {
        NodePrivate::Destroy(node);
    }
}
