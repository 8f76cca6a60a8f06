#pragma once

#include <QVector>

#include "valueframework/valuebase.h"

class Node;

// Values and nodes that have left the tree and wait to be destroyed, on the stack of the one who
// deletes. All are announced before the first is destroyed, so that an observer may look at one
// while it is told of another. A value that somebody destroys meanwhile leaves the batch.
class DeletionBatch
{
public:
    DeletionBatch() = default;
    ~DeletionBatch();  // announces and destroys
    Q_DISABLE_COPY(DeletionBatch)

    void Add(ValueBase& value);
    void Add(Node* node);
    void Forget(const ValueBase& value);

private:
    QVector<ValueBase*> m_values;
    QVector<Node*> m_nodes;
};
