#ifndef HOST_TREEITEM_H
#define HOST_TREEITEM_H

#include <QtCore/QString>

#include "valueframework/valueframework_global.h"

// Anything that has a place in the tree: a node or a value.
class VALUEFRAMEWORK_EXPORT TreeItem
{
public:
    virtual ~TreeItem();

    // The last part of the path, without a separator. Empty for the root and for a value without a name.
    virtual QString GetName() const = 0;
};

#endif
