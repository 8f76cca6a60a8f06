#ifndef HOST_NODE_H
#define HOST_NODE_H

#include <vector>

#include "valueframework/treeitem.h"

class NodePrivate;

// An inner node of the tree. Owned by the tree.
class VALUEFRAMEWORK_EXPORT Node : public TreeItem
{
public:
    ~Node();

    QString GetName() const;

    // "/RX1/DDC"; empty for the root.
    QString GetPathName() const;

    // Nodes and values right below this one, in the order in which they were made. Not owned by the caller.
    std::vector<TreeItem*> GetChildren() const;

private:
    Q_DISABLE_COPY(Node)
    friend class NodePrivate;
    Node();
    NodePrivate* d;
};

#endif
