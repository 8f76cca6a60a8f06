#pragma once

#include <toml++/toml.h>
#include <QByteArray>
#include <QHash>
#include <QSet>
#include <QString>
#include <QStringList>
#include <memory>
#include <optional>
#include <vector>

#include "startup/configschema.h"
#include "startup/icfg.h"

class ConfigDocument;

// A table of the configuration, or an array of tables. Owned by its document.
class ConfigNode : public ICfg
{
public:
    ConfigNode(ConfigDocument& document, const toml::node& node, const QString& path, const QString& scope);
    ~ConfigNode() override;

    QString GetString(const QString& key, const QString& defaultValue, const char* section) override;
    bool GetBool(const QString& key, bool defaultValue, const char* section) override;
    bool HasGroup(const QString& name) override;
    ICfg* GetGroup(const QString& name) override;
    ICfg* GetChild(int index) override;

    std::optional<qint64> Integer(const QString& key);
    std::optional<double> Number(const QString& key);

    // The group below this one; a value of that name that is no group is reported. Null when there is none.
    ConfigNode* Group(const QString& name);

    // All groups in the order of the file; the elements of an array.
    std::vector<ConfigNode*> Children();

    QString Name() const;  // the last part of the path; of an element, its array's name
    QString Path() const { return m_Path; }

    // Walks what is below and reports known keys of a wrong type or beyond their limits.
    void CheckKnown();

    // Walks what is below and reports keys that neither the schema nor any reader knows.
    void CheckUnknown();

private:
    struct Entry
    {
        const toml::key* key;
        const toml::node* value;
    };

    std::vector<Entry> Entries() const;  // in the order of the file; none of an array
    const toml::node* Read(const QString& key, const char* section, ConfigSchema::Kind kind);
    const toml::node* Expect(const toml::node* value, const QString& name, ConfigSchema::Kind kind);
    ConfigNode* Section(const char* section);
    ConfigNode* ChildNode(const toml::node& node, const QString& name);
    QString ChildScope(const QString& name) const;
    void ReportUnknown(const Entry& entry, const QString& name);

    ConfigDocument& m_Document;
    const toml::node& m_Node;
    const QString m_Path;
    const QString m_Scope;  // see ConfigSchema
    QHash<const toml::node*, ConfigNode*> m_Children;
};

// One parsed configuration. Everything that was handed out of it lives as long as it does.
class ConfigDocument
{
public:
    // Null with "FILE:LINE:COLUMN: what; what to do" when the text is not a configuration.
    static std::unique_ptr<ConfigDocument> Parse(const QByteArray& content, const QString& origin,
                                                 QString* error);
    ~ConfigDocument();

    QString AppName() const { return m_AppName; }
    ConfigNode& Root() { return *m_Root; }
    QStringList Warnings() const { return m_Warnings; }

    // "APP\NAME\NAME"; null when there is no such node.
    ConfigNode* Find(const QString& path);

private:
    friend class ConfigNode;

    ConfigDocument(toml::table&& table, const QString& origin);
    bool TakeName(QString* error);
    void Report(const toml::source_region& where, const QString& what);
    bool ReportOnce(const toml::node* node, const QString& what);

    toml::table m_Table;
    QString m_Origin;
    QString m_AppName;
    ConfigNode* m_Root = nullptr;
    std::vector<std::unique_ptr<ConfigNode>> m_Nodes;
    QSet<const toml::node*> m_Known;     // asked for by somebody
    QSet<const toml::node*> m_Reported;  // each is reported once
    QStringList m_Warnings;
};
