#include "valueframework/valuehost.h"

#include <QLoggingCategory>
#include <QSet>
#include <algorithm>
#include <cmath>
#include <limits>

#include "valueframework/tree_p.h"
#include "valueframework/valueimpl.h"
#include "valueframework/valueselection_p.h"

Q_LOGGING_CATEGORY(lcValues, "rx.values")

namespace ValueHost {
namespace {

constexpr int mostReplacements = 3;

bool IsWholeNumber(int type)
{
    switch (type) {
        case QMetaType::Int:
        case QMetaType::UInt:
        case QMetaType::LongLong:
        case QMetaType::ULongLong:
        case QMetaType::Short:
        case QMetaType::UShort:
            return true;
        default:
            return false;
    }
}

bool ToDouble(const QVariant& content, double* number)
{
    const int type = content.typeId();
    if (type != QMetaType::Double && type != QMetaType::Float && !IsWholeNumber(type)) {
        return false;
    }
    *number = content.toDouble();
    return true;
}

bool ToInt(const QVariant& content, int* number)
{
    if (!IsWholeNumber(content.typeId())) {
        return false;
    }
    if (content.typeId() == QMetaType::ULongLong &&
        content.toULongLong() > qulonglong(std::numeric_limits<int>::max())) {
        return false;
    }
    const qlonglong wide = content.toLongLong();
    if (wide < std::numeric_limits<int>::min() || wide > std::numeric_limits<int>::max()) {
        return false;
    }
    *number = int(wide);
    return true;
}

bool SameItems(const QVector<SelectionItem>& a, const QVector<SelectionItem>& b)
{
    return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](const auto& x, const auto& y) {
        return x.GetKey() == y.GetKey() && x.GetNumber() == y.GetNumber() && x.GetText() == y.GetText();
    });
}

bool SameDescription(const ValueDescription& a, const ValueDescription& b)
{
    return a.type == b.type && a.hasLimits == b.hasLimits && a.minimum == b.minimum &&
           a.maximum == b.maximum && a.step == b.step && a.precision == b.precision &&
           a.writable == b.writable && a.event == b.event && a.unit == b.unit && SameItems(a.items, b.items);
}

// What of a description can be used: limits that are numbers in order, and items with keys of
// their own.
ValueDescription Usable(const ValueDescription& given, ValueType type)
{
    ValueDescription description = given;
    description.type = type;
    if (!std::isfinite(description.minimum) || !std::isfinite(description.maximum) ||
        description.minimum > description.maximum) {
        description.hasLimits = false;
        description.minimum = description.maximum = 0;
    }
    QSet<int> keys;
    description.items.removeIf([&keys](const SelectionItem& item) {
        const bool again = keys.contains(item.GetKey());
        keys.insert(item.GetKey());
        return again;
    });
    return description;
}

// Takes a description over and tells nobody. `contentChanged`: the current item is another one.
bool Describe(ValueBase& value, const ValueDescription& given, bool* contentChanged)
{
    ValueBasePrivate& d = ValueBasePrivate::Of(value);
    const ValueDescription description = Usable(given, d.type);
    *contentChanged = false;
    if (SameDescription(description, d.description)) {
        return false;
    }
    if (d.type == ValueType::Selection) {
        auto& selection = static_cast<ValueSelection&>(value);
        const int oldKey = selection.GetCurrentKey();
        d.description = description;
        *contentChanged = ValueSelectionPrivate::FollowItems(selection, oldKey);
    } else {
        d.description = description;
    }
    return true;
}

// New limits hold for what stands as well, where the tree itself is the authority.
void KeepWithinLimits(ValueBase& value)
{
    const ValueBasePrivate& d = ValueBasePrivate::Of(value);
    if (!d.KeepsLimits()) {
        return;
    }
    QString reason;
    if (d.type == ValueType::Float) {
        const double number = static_cast<FloatValueBase&>(value).GetValue();
        const double within = ValueImpl::Clamp(d.description, number, &reason);
        if (within != number) {
            SetContent(value, within, nullptr);
        }
    } else if (d.type == ValueType::Integer) {
        const int number = static_cast<IntValueBase&>(value).GetValue();
        const int within = ValueImpl::Clamp(d.description, number, &reason);
        if (within != number) {
            SetContent(value, within, nullptr);
        }
    }
}

ValueBase* Make(ValueType type)
{
    switch (type) {
        case ValueType::Bool:
            return new BoolValue;
        case ValueType::Float:
            return new FloatValue;
        case ValueType::Integer:
            return new IntValue;
        case ValueType::Text:
            return new TextValue;
        case ValueType::Selection:
            return new ValueSelection;
        case ValueType::Other:
            break;
    }
    return nullptr;
}

// An existing value, described anew; null when an observer deleted it meanwhile.
ValueBase* Renew(ValueBase& value, const ValueDescription& description, const QVariant& content)
{
    const LifeWatch watch(value);
    SetDescription(value, description);
    if (watch.IsAlive() && content.isValid()) {
        SetContent(value, content, nullptr);
    }
    return watch.IsAlive() ? &value : nullptr;
}

ValueBase* Refused(const QString& path, const char* reason)
{
    qCWarning(lcValues, "No value can be made at \"%ls\": %s", qUtf16Printable(path), reason);
    return nullptr;
}

// A new value at a path that is free of values.
ValueBase* MakeAt(TreePrivate& tree, const QString& path, const ValueDescription& description,
                  const QVariant& content)
{
    if (tree.closing) {
        return Refused(path, "the tree is being closed");
    }
    if (!TreePrivate::IsWellFormed(path)) {
        return Refused(path, "each part of a path needs one \"/\" before it");
    }
    if (tree.nodes.Find(path)) {
        return Refused(path, "a node has that path");
    }
    if (description.type == ValueType::Other) {
        return Refused(path, "the type is unknown here; make the value and add it");
    }
    const qsizetype separator = path.lastIndexOf(QLatin1Char('/'));
    Node* parent = tree.NeededNode(path.left(separator));
    if (!parent) {
        return nullptr;
    }
    ValueBase* value = Make(description.type);
    bool contentChanged = false;
    Describe(*value, description, &contentChanged);
    if (content.isValid() && !SetContent(*value, content, nullptr)) {
        qCWarning(lcValues, "The content given for \"%ls\" does not fit its type and is left out",
                  qUtf16Printable(path));
    }
    KeepWithinLimits(*value);
    ValueBasePrivate::Of(*value).rare.reset();  // nobody wrote yet
    tree.Insert(*parent, *value, path.mid(separator + 1));
    return value;
}

}  // namespace

void CreateTree()
{
    TreePrivate::Create();
}

void DestroyTree()
{
    TreePrivate::Destroy();
}

ValueBase* Create(const QString& path, const ValueDescription& description, const QVariant& content)
{
    // An observer of a value that is replaced may make another one at once, or end the tree.
    for (int attempt = 0; attempt <= mostReplacements; ++attempt) {
        Tree* tree = Tree::Instance();
        ValueBase* found = tree ? tree->FindValue(path) : nullptr;
        if (!found) {
            return tree ? MakeAt(TreePrivate::Of(*tree), path, description, content) : nullptr;
        }
        if (TypeOf(*found) == description.type) {
            return Renew(*found, description, content);
        }
        tree->DeleteValue(path);
    }
    return Refused(path, "an observer puts one of another type there");
}

int CountValues()
{
    Tree* tree = Tree::Instance();
    return tree ? TreePrivate::Of(*tree).values.Count() : 0;
}

QVector<ValueBase*> ValuesBelow(const QString& path)
{
    QVector<ValueBase*> found;
    Tree* tree = Tree::Instance();
    if (!tree) {
        return found;
    }
    if (ValueBase* value = tree->FindValue(path)) {
        found.append(value);
    }
    std::vector<Node*> open;
    if (Node* top = tree->FindNode(path)) {
        open.push_back(top);
    }
    while (!open.empty()) {
        const NodePrivate& place = NodePrivate::Of(*open.back());
        open.pop_back();
        for (const NodePrivate::Child& child : place.children) {
            if (child.value) {
                found.append(child.value);
            } else if (child.node) {
                open.push_back(child.node);
            }
        }
    }
    std::sort(found.begin(), found.end(), [](const ValueBase* a, const ValueBase* b) {
        return ValueBasePrivate::Of(*a).serial < ValueBasePrivate::Of(*b).serial;
    });
    return found;
}

QVariant Content(const ValueBase& value)
{
    switch (TypeOf(value)) {
        case ValueType::Bool:
            return static_cast<const BoolValue&>(value).GetValue();
        case ValueType::Float:
            return static_cast<const FloatValueBase&>(value).GetValue();
        case ValueType::Integer:
            return static_cast<const IntValueBase&>(value).GetValue();
        case ValueType::Text:
            return static_cast<const TextValue&>(value).GetValue();
        case ValueType::Selection:
            return static_cast<const ValueSelection&>(value).GetCurrentKey();
        case ValueType::Other:
            break;
    }
    return QVariant();
}

bool SetContent(ValueBase& value, const QVariant& content, IObserver* originator)
{
    double real = 0;
    int whole = 0;
    switch (TypeOf(value)) {
        case ValueType::Bool:
            return content.typeId() == QMetaType::Bool &&
                   static_cast<BoolValue&>(value).SetValue(content.toBool(), originator);
        case ValueType::Float:
            return ToDouble(content, &real) && static_cast<FloatValueBase&>(value).SetValue(real, originator);
        case ValueType::Integer:
            return ToInt(content, &whole) && static_cast<IntValueBase&>(value).SetValue(whole, originator);
        case ValueType::Text:
            return content.typeId() == QMetaType::QString &&
                   static_cast<TextValue&>(value).SetValue(content.toString(), originator);
        case ValueType::Selection:
            return ToInt(content, &whole) && static_cast<ValueSelection&>(value).SelectKey(whole, originator);
        case ValueType::Other:
            break;
    }
    return false;
}

ValueType TypeOf(const ValueBase& value)
{
    return ValueBasePrivate::Of(value).type;
}

const ValueDescription& Description(const ValueBase& value)
{
    return ValueBasePrivate::Of(value).description;
}

void SetDescription(ValueBase& value, const ValueDescription& description)
{
    ValueBasePrivate& d = ValueBasePrivate::Of(value);
    bool contentChanged = false;
    if (!Describe(value, description, &contentChanged)) {
        return;
    }
    const LifeWatch watch(value);
    if (d.Notify(value, CC_DESCRIPTION, nullptr) && contentChanged) {
        d.Notify(value, CC_VALUE, nullptr);
    }
    if (watch.IsAlive()) {
        KeepWithinLimits(value);
    }
}

void SetState(ValueBase& value, TValueState state)
{
    ValueBasePrivate& d = ValueBasePrivate::Of(value);
    if (d.goingAway || d.state == state) {
        return;
    }
    d.state = state;
    d.Notify(value, CC_STATE, nullptr);
}

const WriteStatus& Status(const ValueBase& value)
{
    return ValueBasePrivate::Of(value).Status();
}

void SetStatus(ValueBase& value, const WriteStatus& status)
{
    ValueBasePrivate& d = ValueBasePrivate::Of(value);
    if (d.SetStatus(status)) {
        d.Notify(value, CC_DESCRIPTION, nullptr);
    }
}

qint64 TimeStamp(const ValueBase& value)
{
    return ValueBasePrivate::Of(value).timeStamp;
}

void SetTimeStamp(ValueBase& value, qint64 microseconds)
{
    ValueBasePrivate::Of(value).timeStamp = microseconds;
}

bool IsMirrored(const ValueBase& value)
{
    return ValueBasePrivate::Of(value).mirrored;
}

void SetMirrored(ValueBase& value, bool mirrored)
{
    ValueBasePrivate::Of(value).mirrored = mirrored;
}

QByteArray TranslationContext(const ValueBase& value)
{
    const ValueBasePrivate& d = ValueBasePrivate::Of(value);
    return d.rare ? d.rare->translationContext : QByteArray();
}

}  // namespace ValueHost
