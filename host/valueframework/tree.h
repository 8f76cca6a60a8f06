#ifndef HOST_TREE_H
#define HOST_TREE_H

#include <QtCore/QString>

#include "valueframework/valueframework_global.h"

class Node;
class TreePrivate;
class ValueBase;

// The process-wide tree of values. Paths are plain text with "/" before each part; nothing is
// normalised. GUI thread only.
class VALUEFRAMEWORK_EXPORT Tree
{
public:
    // Null when the application has no tree.
    static Tree* Instance();

    // The value at a path, or null. Two names of one operation.
    ValueBase* FindValue(const QString& path);
    ValueBase* GetValue(const QString& path);

    // The inner node at a path, or null. The empty path is the root.
    Node* FindNode(const QString& path);

    // Announces (state VS_DELETING, CC_STATE), then destroys the value at a path, or the node with
    // all that is below it: all values are announced, in the order in which they were made, before
    // the first is destroyed. From the first announcement on none of the paths is found any more.
    // A path that is not there is ignored.
    void DeleteValue(const QString& path);

    // Takes ownership of a named value and puts it under an existing node; `parentPath` may end
    // with "/". Throws ARException, taking nothing, when there is no such node, the name is empty,
    // taken or contains "/", or the value has its place already.
    void AddValue(const QString& parentPath, ValueBase* value);

private:
    Q_DISABLE_COPY(Tree)
    friend class TreePrivate;
    Tree();
    ~Tree();
    TreePrivate* d;
};

#endif
