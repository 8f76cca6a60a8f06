#pragma once

#include <QHash>
#include <QVector>
#include <memory>
#include <vector>

#include "link/messages.h"
#include "valueframework/valuehost.h"

// One value of the driver and its place in the tree.
struct Mirror
{
    QString source;              // path at the driver
    QString target;              // path in the tree
    ValueBase* value = nullptr;  // null: deleted, or released
    ValueType type = ValueType::Text;

    bool hasId = false;  // the driver serves it on this connection
    quint32 id = 0;
    Mirror* next = nullptr;  // a further place of the same driver's value

    Link::Content driver;  // what the driver told last; monostate: nothing yet
    qint64 time = 0;       // of that, microseconds since 1970
    TValueState state = VS_USABLE;

    QVector<quint32> hooks;  // numbers of those that cover it; empty: not mirrored any more
    quint64 round = 0;       // the snapshot that brought it last

    bool queued = false;  // a local write waits to be sent
    quint32 pending = 0;  // number of the last write sent that has no answer yet; 0: none
    Link::Content sent;   // with that write
};

// All mirrors, found by the driver's id, by path and by value. Mirrors are never destroyed before
// the table: a pointer stays good whatever an observer does.
class MirrorTable
{
public:
    Mirror* byId(quint32 id) const
    {
        return id < m_direct.size() ? m_direct[id] : m_sparse.value(id, nullptr);
    }
    Mirror* byValue(const Observable* value) const { return m_values.value(value, nullptr); }
    Mirror* at(const QString& target);  // made where missing

    int count() const { return int(m_all.size()); }
    Mirror* get(int index) const { return m_all[std::size_t(index)].get(); }

    void setId(Mirror* mirror, quint32 id);
    void clearId(Mirror* mirror);

    void setValue(Mirror* mirror, ValueBase* value);  // null: none

private:
    std::vector<std::unique_ptr<Mirror>> m_all;
    std::vector<Mirror*> m_direct;  // by id, as long as ids are small
    QHash<quint32, Mirror*> m_sparse;
    QHash<QString, Mirror*> m_targets;
    QHash<const Observable*, Mirror*> m_values;
};
