#include "startup/configdocument.h"

#include <QFileInfo>
#include <QLoggingCategory>
#include <algorithm>

#include "startup/configfile.h"

namespace {

Q_LOGGING_CATEGORY(configurationLog, "rx.configuration", QtInfoMsg)

QString ToQString(std::string_view text)
{
    return QString::fromUtf8(text.data(), qsizetype(text.size()));
}

const char separator = '\\';

}  // namespace

std::unique_ptr<ConfigDocument> ConfigDocument::Parse(const QByteArray& content, const QString& origin,
                                                      QString* error)
{
    if (!ConfigFile::CheckNesting(content, origin, error))
        return nullptr;
    try {
        const std::string_view text(content.constData(), std::size_t(content.size()));
        std::unique_ptr<ConfigDocument> document(new ConfigDocument(toml::parse(text), origin));
        return document->TakeName(error) ? std::move(document) : nullptr;
    } catch (const toml::parse_error& failure) {
        if (error) {
            const toml::source_position where = failure.source().begin;
            *error = ConfigFile::Message(
                origin, where.line, where.column,
                ToQString(failure.description()) + QStringLiteral("; correct the configuration there"));
        }
        return nullptr;
    }
}

ConfigDocument::ConfigDocument(toml::table&& table, const QString& origin)
    : m_Table(std::move(table)), m_Origin(origin)
{}

ConfigDocument::~ConfigDocument() {}

// The name is the first part of every path, so that it is settled before any node is made.
bool ConfigDocument::TakeName(QString* error)
{
    m_AppName = QFileInfo(m_Origin).completeBaseName();
    if (const toml::value<std::string>* name = m_Table["Name"].as_string()) {
        const QString text = ToQString(name->get());
        if (text.contains(QLatin1Char(separator)) || text.trimmed().isEmpty()) {
            if (error) {
                const toml::source_position where = name->source().begin;
                *error = ConfigFile::Message(
                    m_Origin, where.line, where.column,
                    QStringLiteral("Name is \"%1\"; write a name without backslashes that is not empty")
                        .arg(text));
            }
            return false;
        }
        m_AppName = text;
    }
    m_Nodes.push_back(std::make_unique<ConfigNode>(*this, m_Table, m_AppName, QString()));
    m_Root = m_Nodes.back().get();
    m_Root->CheckKnown();
    return true;
}

ConfigNode* ConfigDocument::Find(const QString& path)
{
    const QStringList names = path.split(QLatin1Char(separator));
    if (names.first() != m_AppName)
        return nullptr;
    ConfigNode* node = m_Root;
    for (int i = 1; node && i < names.size(); ++i)
        node = node->Group(names.at(i));
    return node;
}

void ConfigDocument::Report(const toml::source_region& where, const QString& what)
{
    const QString message = ConfigFile::Message(m_Origin, where.begin.line, where.begin.column, what);
    m_Warnings.append(message);
    qCWarning(configurationLog).noquote() << message;
}

bool ConfigDocument::ReportOnce(const toml::node* node, const QString& what)
{
    if (m_Reported.contains(node))
        return false;
    m_Reported.insert(node);
    Report(node->source(), what);
    return true;
}
