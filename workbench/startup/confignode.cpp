#include <QCoreApplication>
#include <algorithm>

#include "startup/configdocument.h"

using ConfigSchema::Kind;

namespace {

QString ToQString(std::string_view text)
{
    return QString::fromUtf8(text.data(), qsizetype(text.size()));
}

bool IsArrayOfTables(const toml::node& node)
{
    const toml::array* array = node.as_array();
    return array && (array->empty() || array->is_homogeneous(toml::node_type::table));
}

bool Is(const toml::node& node, Kind kind)
{
    switch (kind) {
        case Kind::Text:
            return node.is_string();
        case Kind::Bool:
            return node.is_boolean();
        case Kind::Integer:
            return node.is_integer();
        case Kind::Number:
            return node.is_number();
        case Kind::Group:
            return node.is_table() || IsArrayOfTables(node);
    }
    return false;
}

QString DescribeFound(const toml::node& node)
{
    switch (node.type()) {
        case toml::node_type::none:
            return QStringLiteral("nothing");
        case toml::node_type::table:
            return QStringLiteral("a table");
        case toml::node_type::array:
            return QStringLiteral("an array");
        case toml::node_type::string:
            return QStringLiteral("a text");
        case toml::node_type::integer:
            return QStringLiteral("an integer");
        case toml::node_type::floating_point:
            return QStringLiteral("a number");
        case toml::node_type::boolean:
            return QStringLiteral("true or false");
        case toml::node_type::date:
        case toml::node_type::time:
        case toml::node_type::date_time:
            return QStringLiteral("a date or time");
    }
    return QString();
}

// Plug-ins whose keys are known, by their files; an entry may have any name.
QString KnownPlugin(const QString& fileName)
{
    if (fileName == QLatin1String("libddcgui"))
        return QStringLiteral("DDCGUI");
    if (fileName == QLatin1String("libreceivergui"))
        return QStringLiteral("ReceiverGui");
    return QString();
}

}  // namespace

ConfigNode::ConfigNode(ConfigDocument& document, const toml::node& node, const QString& path,
                       const QString& scope)
    : m_Document(document), m_Node(node), m_Path(path), m_Scope(scope)
{}

ConfigNode::~ConfigNode() {}

QString ConfigNode::Name() const
{
    return m_Path.mid(m_Path.lastIndexOf(QLatin1Char('\\')) + 1);
}

// The parser sorts tables by name; where a key stands in the file tells their order there.
std::vector<ConfigNode::Entry> ConfigNode::Entries() const
{
    std::vector<Entry> entries;
    const toml::table* table = m_Node.as_table();
    if (!table)
        return entries;
    for (auto&& [key, value] : *table)
        entries.push_back({&key, &value});
    std::stable_sort(entries.begin(), entries.end(), [](const Entry& a, const Entry& b) {
        const toml::source_position left = a.key->source().begin;
        const toml::source_position right = b.key->source().begin;
        return left.line != right.line ? left.line < right.line : left.column < right.column;
    });
    return entries;
}

std::vector<ConfigNode*> ConfigNode::Children()
{
    std::vector<ConfigNode*> children;
    if (const toml::array* array = m_Node.as_array()) {
        for (const toml::node& element : *array)
            children.push_back(ChildNode(element, QString()));
        return children;
    }
    for (const Entry& entry : Entries())
        if (Is(*entry.value, Kind::Group))
            children.push_back(ChildNode(*entry.value, ToQString(entry.key->str())));
    return children;
}

// Elements of an array go by the array's path and scope.
ConfigNode* ConfigNode::ChildNode(const toml::node& node, const QString& name)
{
    ConfigNode*& child = m_Children[&node];
    if (!child) {
        const QString path = name.isEmpty() ? m_Path : m_Path + QLatin1Char('\\') + name;
        const QString scope = name.isEmpty() ? m_Scope : ChildScope(name);
        m_Document.m_Nodes.push_back(std::make_unique<ConfigNode>(m_Document, node, path, scope));
        child = m_Document.m_Nodes.back().get();
    }
    return child;
}

QString ConfigNode::ChildScope(const QString& name) const
{
    if (m_Scope.isEmpty())
        return name;
    if (m_Scope == QLatin1String("AdditionalDlls"))
        return QStringLiteral("Entry");
    if (m_Scope == QLatin1String("Entry") && name == QLatin1String("Config")) {
        QString plugin;
        if (const auto* fileName = m_Node.as_table()->get_as<std::string>("FileName"))
            plugin = KnownPlugin(ToQString(fileName->get()));
        return QStringLiteral("Config:") + (plugin.isEmpty() ? Name() : plugin);
    }
    return m_Scope + QLatin1Char('/') + name;
}

const toml::node* ConfigNode::Expect(const toml::node* value, const QString& name, Kind kind)
{
    if (!value)
        return nullptr;
    if (!Is(*value, kind)) {
        m_Document.ReportOnce(value,
                              QStringLiteral("%1 in %2 is %3, expected %4; the default is used")
                                  .arg(name, m_Path, DescribeFound(*value), ConfigSchema::Describe(kind)));
        return nullptr;
    }
    const ConfigSchema::Key* key = ConfigSchema::Find(m_Scope, name);
    if (key && key->minimum < key->maximum) {
        const double number = value->value<double>().value_or(0);
        // Written so that a number that is none fails, too.
        if (!(number >= key->minimum && number <= key->maximum)) {
            m_Document.ReportOnce(value,
                                  QStringLiteral("%1 in %2 is %3, expected %4 to %5; the default is used")
                                      .arg(name, m_Path)
                                      .arg(number, 0, 'g', 12)
                                      .arg(key->minimum, 0, 'g', 12)
                                      .arg(key->maximum, 0, 'g', 12));
            return nullptr;
        }
    }
    return value;
}

const toml::node* ConfigNode::Read(const QString& key, const char* section, Kind kind)
{
    ConfigNode* node = Section(section);
    const toml::table* table = node ? node->m_Node.as_table() : nullptr;
    const toml::node* value = table ? table->get(key.toStdString()) : nullptr;
    if (value)
        m_Document.m_Known.insert(value);
    return node ? node->Expect(value, key, kind) : nullptr;
}

ConfigNode* ConfigNode::Section(const char* section)
{
    ConfigNode* node = this;
    const QStringList names = QString::fromUtf8(section).split(QLatin1Char('\\'), Qt::SkipEmptyParts);
    for (int i = 0; node && i < names.size(); ++i)
        node = node->Group(names.at(i));
    return node;
}

QString ConfigNode::GetString(const QString& key, const QString& defaultValue, const char* section)
{
    const toml::node* value = Read(key, section, Kind::Text);
    return value ? ToQString(value->as_string()->get()) : defaultValue;
}

bool ConfigNode::GetBool(const QString& key, bool defaultValue, const char* section)
{
    const toml::node* value = Read(key, section, Kind::Bool);
    return value ? value->as_boolean()->get() : defaultValue;
}

std::optional<qint64> ConfigNode::Integer(const QString& key)
{
    const toml::node* value = Read(key, nullptr, Kind::Integer);
    return value ? std::optional<qint64>(value->as_integer()->get()) : std::nullopt;
}

std::optional<double> ConfigNode::Number(const QString& key)
{
    const toml::node* value = Read(key, nullptr, Kind::Number);
    return value ? value->value<double>() : std::nullopt;
}

ConfigNode* ConfigNode::Group(const QString& name)
{
    const toml::node* value = name.isEmpty() ? nullptr : Read(name, nullptr, Kind::Group);
    return value ? ChildNode(*value, name) : nullptr;
}

bool ConfigNode::HasGroup(const QString& name)
{
    return Group(name) != nullptr;
}

ICfg* ConfigNode::GetGroup(const QString& name)
{
    return Group(name);
}

ICfg* ConfigNode::GetChild(int index)
{
    const std::vector<ConfigNode*> children = Children();
    return index >= 0 && std::size_t(index) < children.size() ? children[std::size_t(index)] : nullptr;
}

void ConfigNode::CheckKnown()
{
    for (const Entry& entry : Entries()) {
        const QString name = ToQString(entry.key->str());
        if (const ConfigSchema::Key* key = ConfigSchema::Find(m_Scope, name))
            Expect(entry.value, name, key->kind);
        else if (m_Scope == QLatin1String("AdditionalDlls"))
            Expect(entry.value, name, Kind::Group);
    }
    for (ConfigNode* child : Children())
        child->CheckKnown();
}

void ConfigNode::CheckUnknown()
{
    for (const Entry& entry : Entries()) {
        const QString name = ToQString(entry.key->str());
        const bool known = m_Scope == QLatin1String("AdditionalDlls") || ConfigSchema::Find(m_Scope, name) ||
                           m_Document.m_Known.contains(entry.value);
        if (!known)
            ReportUnknown(entry, name);
        else if (Is(*entry.value, Kind::Group))
            ChildNode(*entry.value, name)->CheckUnknown();
    }
    if (m_Node.is_array())
        for (ConfigNode* child : Children())
            child->CheckUnknown();
}

void ConfigNode::ReportUnknown(const Entry& entry, const QString& name)
{
    if (m_Document.m_Reported.contains(entry.value))
        return;
    m_Document.m_Reported.insert(entry.value);
    const QString nearest = ConfigSchema::Nearest(name, ConfigSchema::Names(m_Scope));
    const QString advice = nearest.isEmpty()
                               ? QStringLiteral("nobody reads it, remove it or correct its name")
                               : QStringLiteral("did you mean %1?").arg(nearest);
    m_Document.Report(entry.key->source(),
                      QStringLiteral("unknown key %1 in %2; %3").arg(name, m_Path, advice));
}
