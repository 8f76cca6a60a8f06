#ifndef HOST_VALUEDESCRIPTOR_H
#define HOST_VALUEDESCRIPTOR_H

#include <QtCore/QString>

#include "valueframework/valueframework_global.h"

class IObserver;
class Node;

class VALUEFRAMEWORK_EXPORT ValueDescriptor
{
public:
    // The node at an absolute path, made with all nodes above it where missing. The root for an
    // empty path; null without a tree, when a value has that path or one on the way to it, or when
    // the path is malformed ("A", "/A/", "/A//B"). `observer` may be null and is told nothing:
    // nodes do not change.
    static Node* CreateNodeAbsolute(QString path, IObserver* observer);
};

#endif
