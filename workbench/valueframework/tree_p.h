#pragma once

#include <QString>
#include <vector>

#include "valueframework/node.h"
#include "valueframework/pathtable.h"
#include "valueframework/tree.h"
#include "valueframework/valuebase.h"

class DeletionBatch;

class NodePrivate
{
public:
    static NodePrivate& Of(const Node& node) { return *node.d; }
    static Node* Make(Node* parent, const QString& path, int nameLength);
    static void Destroy(Node* node) { delete node; }

    struct Child
    {
        ValueBase* value = nullptr;
        Node* node = nullptr;  // both null: a child that left
    };

    void AddChild(const Child& child);
    void RemoveChild(quint32 slot);

    Node* parent = nullptr;
    QString path;
    int nameLength = 0;
    quint32 childSlot = 0;  // in the parent's children

    // In the order in which they were made. One that leaves makes a gap, closed when half are gaps,
    // so that emptying a node of many children does not move the rest each time.
    std::vector<Child> children;
    std::size_t gaps = 0;

private:
    static quint32& SlotOf(const Child& child);
};

class TreePrivate
{
public:
    static Tree* Current() { return s_tree; }
    static TreePrivate& Of(Tree& tree) { return *tree.d; }
    static void Create();
    static void Destroy();

    // Removes a value from its place, if it has one. Its path stays readable.
    static void TakeOut(ValueBase& value);

    // The node at a path, made where missing. Null, with a warning, when the path is malformed or
    // leads through a value.
    Node* NeededNode(const QString& path);

    void Insert(Node& parent, ValueBase& value, const QString& name);
    void TakeOutBelow(Node& top, DeletionBatch* batch);
    void Delete(const QString& path);

    static bool IsWellFormed(const QString& path);

    Node* root = nullptr;
    PathTable<ValueBase> values;
    PathTable<Node> nodes;  // without the root
    quint64 nextSerial = 0;
    bool closing = false;  // everything is being announced and destroyed; nothing may come any more

private:
    friend class Tree;
    TreePrivate();
    ~TreePrivate();
    static Tree* s_tree;
};
