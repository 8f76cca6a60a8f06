#include "valueframework/tree.h"

#include <QLoggingCategory>

#include "valueframework/arexception.h"
#include "valueframework/deletionbatch.h"
#include "valueframework/tree_p.h"
#include "valueframework/valuebase_p.h"
#include "valueframework/valuedescriptor.h"

Q_LOGGING_CATEGORY(lcTree, "rx.values.tree")

Tree* TreePrivate::s_tree = nullptr;

// --- node ---------------------------------------------------------------------------------------

Node::Node() : d(new NodePrivate) {}

Node::~Node()
{
    delete d;
}

QString Node::GetName() const
{
    return d->path.right(d->nameLength);
}

QString Node::GetPathName() const
{
    return d->path;
}

std::vector<TreeItem*> Node::GetChildren() const
{
    std::vector<TreeItem*> items;
    items.reserve(d->children.size() - d->gaps);
    for (const NodePrivate::Child& child : d->children) {
        if (child.value) {
            items.push_back(child.value);
        } else if (child.node) {
            items.push_back(child.node);
        }
    }
    return items;
}

Node* NodePrivate::Make(Node* parent, const QString& path, int nameLength)
{
    Node* node = new Node;
    node->d->path = path;
    node->d->nameLength = nameLength;
    if (parent) {
        node->d->parent = parent;
        Of(*parent).AddChild(Child{nullptr, node});
    }
    return node;
}

quint32& NodePrivate::SlotOf(const Child& child)
{
    return child.value ? ValueBasePrivate::Of(*child.value).childSlot : Of(*child.node).childSlot;
}

void NodePrivate::AddChild(const Child& child)
{
    SlotOf(child) = quint32(children.size());
    children.push_back(child);
}

void NodePrivate::RemoveChild(quint32 slot)
{
    children[slot] = Child();
    ++gaps;
    if (gaps * 2 <= children.size()) {
        return;
    }
    std::size_t kept = 0;
    for (const Child& child : children) {
        if (child.value || child.node) {
            SlotOf(child) = quint32(kept);
            children[kept++] = child;
        }
    }
    children.resize(kept);
    gaps = 0;
}

// --- private ------------------------------------------------------------------------------------

TreePrivate::TreePrivate() : root(NodePrivate::Make(nullptr, QString(), 0)) {}

TreePrivate::~TreePrivate()
{
    NodePrivate::Destroy(root);
}

void TreePrivate::Create()
{
    if (!s_tree) {
        s_tree = new Tree;
    }
}

void TreePrivate::Destroy()
{
    if (!s_tree || Of(*s_tree).closing) {
        return;
    }
    TreePrivate& own = Of(*s_tree);
    own.closing = true;
    {
        DeletionBatch batch;
        own.TakeOutBelow(*own.root, &batch);
    }
    delete s_tree;
    s_tree = nullptr;
}

bool TreePrivate::IsWellFormed(const QString& path)
{
    return path.startsWith(QLatin1Char('/')) && !path.endsWith(QLatin1Char('/')) &&
           !path.contains(QLatin1String("//"));
}

Node* TreePrivate::NeededNode(const QString& path)
{
    if (path.isEmpty()) {
        return root;
    }
    if (Node* node = nodes.Find(path)) {
        return node;
    }
    if (!IsWellFormed(path)) {
        qCWarning(lcTree, "\"%ls\" is no path of a node: each part needs one \"/\" before it",
                  qUtf16Printable(path));
        return nullptr;
    }
    if (closing) {
        return nullptr;
    }
    Node* node = root;
    for (qsizetype start = 0; start < path.size();) {
        const qsizetype next = path.indexOf(QLatin1Char('/'), start + 1);
        const qsizetype end = next < 0 ? path.size() : next;
        const QString part(path.constData(), end);
        if (values.Find(part)) {
            qCWarning(lcTree, "No node \"%ls\": \"%ls\" is a value", qUtf16Printable(path),
                      qUtf16Printable(part));
            return nullptr;
        }
        Node* below = nodes.Find(part);
        if (!below) {
            below = NodePrivate::Make(node, part, int(end - start - 1));
            nodes.Insert(NodePrivate::Of(*below).path, below);
        }
        node = below;
        start = end;
    }
    return node;
}

void TreePrivate::Insert(Node& parent, ValueBase& value, const QString& name)
{
    ValueBasePrivate& d = ValueBasePrivate::Of(value);
    NodePrivate& place = NodePrivate::Of(parent);
    d.path = place.path + QLatin1Char('/') + name;
    d.nameLength = int(name.size());
    d.named = true;
    d.parent = &parent;
    d.serial = nextSerial++;
    place.AddChild(NodePrivate::Child{&value, nullptr});
    values.Insert(d.path, &value);
}

void TreePrivate::TakeOut(ValueBase& value)
{
    ValueBasePrivate& d = ValueBasePrivate::Of(value);
    if (!d.parent) {
        return;
    }
    NodePrivate::Of(*d.parent).RemoveChild(d.childSlot);
    Of(*s_tree).values.Remove(d.path, &value);
    d.parent = nullptr;
}

// Clears the tree below a node at once, before anybody is told, so that no path leads to what goes.
void TreePrivate::TakeOutBelow(Node& top, DeletionBatch* batch)
{
    std::vector<Node*> open{&top};
    while (!open.empty()) {
        NodePrivate& place = NodePrivate::Of(*open.back());
        open.pop_back();
        for (const NodePrivate::Child& child : place.children) {
            if (child.value) {
                ValueBasePrivate& d = ValueBasePrivate::Of(*child.value);
                values.Remove(d.path, child.value);
                d.parent = nullptr;
                batch->Add(*child.value);
            } else if (child.node) {
                nodes.Remove(NodePrivate::Of(*child.node).path, child.node);
                NodePrivate::Of(*child.node).parent = nullptr;
                batch->Add(child.node);
                open.push_back(child.node);
            }
        }
        place.children.clear();
        place.gaps = 0;
    }
}

void TreePrivate::Delete(const QString& path)
{
    DeletionBatch batch;
    if (ValueBase* value = values.Find(path)) {
        TakeOut(*value);
        batch.Add(*value);
        return;
    }
    Node* node = path.isEmpty() ? root : nodes.Find(path);
    if (!node) {
        return;
    }
    if (node != root) {
        NodePrivate& own = NodePrivate::Of(*node);
        NodePrivate::Of(*own.parent).RemoveChild(own.childSlot);
        nodes.Remove(own.path, node);
        own.parent = nullptr;
        batch.Add(node);
    }
    TakeOutBelow(*node, &batch);
}

// --- interface ----------------------------------------------------------------------------------

Tree::Tree() : d(new TreePrivate) {}

Tree::~Tree()
{
    delete d;
}

Tree* Tree::Instance()
{
    return TreePrivate::Current();
}

ValueBase* Tree::FindValue(const QString& path)
{
    return d->values.Find(path);
}

ValueBase* Tree::GetValue(const QString& path)
{
    return d->values.Find(path);
}

Node* Tree::FindNode(const QString& path)
{
    return path.isEmpty() ? d->root : d->nodes.Find(path);
}

void Tree::DeleteValue(const QString& path)
{
    d->Delete(path);
}

void Tree::AddValue(const QString& parentPath, ValueBase* value)
{
    if (!value) {
        throw ARException(QStringLiteral("No value was given to add at \"%1\".").arg(parentPath));
    }
    QString nodePath = parentPath;
    if (nodePath.endsWith(QLatin1Char('/'))) {
        nodePath.chop(1);
    }
    const ValueBasePrivate& own = ValueBasePrivate::Of(*value);
    const QString name = value->GetName();
    const QString path = nodePath + QLatin1Char('/') + name;
    if (own.named) {
        throw ARException(
            QStringLiteral("The value \"%1\" cannot be added at \"%2\": it already has its place.")
                .arg(own.path, parentPath));
    }
    if (name.isEmpty()) {
        throw ARException(QStringLiteral("A value without a name cannot be added at \"%1\". Name it first.")
                              .arg(parentPath));
    }
    if (name.contains(QLatin1Char('/'))) {
        throw ARException(
            QStringLiteral("\"%1\" cannot be added at \"%2\": a name has no \"/\".").arg(name, parentPath));
    }
    Node* parent = d->closing ? nullptr : FindNode(nodePath);
    if (!parent) {
        throw ARException(QStringLiteral("\"%1\" cannot be added: there is no node \"%2\". Create it first.")
                              .arg(name, nodePath));
    }
    if (d->values.Find(path) || d->nodes.Find(path)) {
        throw ARException(
            QStringLiteral("\"%1\" cannot be added at \"%2\": that name is taken.").arg(name, nodePath));
    }
    d->Insert(*parent, *value, name);
}

Node* ValueDescriptor::CreateNodeAbsolute(QString path, IObserver*)
{
    Tree* tree = Tree::Instance();
    return tree ? TreePrivate::Of(*tree).NeededNode(path) : nullptr;
}
