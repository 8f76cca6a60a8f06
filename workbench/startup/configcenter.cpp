#include "startup/configcenter.h"

#include <utility>

#include "startup/configfile.h"
#include "startup/startuphost.h"

ConfigCenter& ConfigCenter::Instance()
{
    static ConfigCenter* const instance = new ConfigCenter;
    return *instance;
}

void ConfigCenter::Set(std::unique_ptr<ConfigDocument> document)
{
    if (m_Current)
        m_Former.push_back(std::move(m_Current));
    m_Current = std::move(document);
}

bool StartupHost::LoadConfigurationText(const QString& toml, const QString& origin, QString* error)
{
    ClearConfiguration();
    ConfigCenter::Instance().Set(ConfigDocument::Parse(toml.toUtf8(), origin, error));
    return ConfigCenter::Instance().Current() != nullptr;
}

bool StartupHost::LoadConfiguration(const QString& fileName, QString* error)
{
    ClearConfiguration();
    QByteArray content;
    if (!ConfigFile::Read(fileName, &content, error))
        return false;
    ConfigCenter::Instance().Set(ConfigDocument::Parse(content, fileName, error));
    return ConfigCenter::Instance().Current() != nullptr;
}

void StartupHost::ClearConfiguration()
{
    ConfigCenter::Instance().Set(nullptr);
}

QStringList StartupHost::ConfigurationWarnings()
{
    ConfigDocument* document = ConfigCenter::Instance().Current();
    if (!document)
        return QStringList();
    document->Root().CheckUnknown();
    return document->Warnings();
}

qint64 StartupHost::ConfigurationInteger(const QString& key, qint64 defaultValue)
{
    ConfigDocument* document = ConfigCenter::Instance().Current();
    return document ? document->Root().Integer(key).value_or(defaultValue) : defaultValue;
}

double StartupHost::ConfigurationNumber(const QString& key, double defaultValue)
{
    ConfigDocument* document = ConfigCenter::Instance().Current();
    return document ? document->Root().Number(key).value_or(defaultValue) : defaultValue;
}
