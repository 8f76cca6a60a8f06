#include "startup/cfgcenter.h"

#include "startup/configcenter.h"
#include "startup/pluginregistry.h"

namespace {

const CfgCenter::View mergedView = 2;

// What a caller may delete; the node itself stays with its document.
class CfgHandle : public ICfg
{
public:
    explicit CfgHandle(ConfigNode& node) : m_Node(node) {}

    QString GetString(const QString& key, const QString& defaultValue, const char* section) override
    {
        return m_Node.GetString(key, defaultValue, section);
    }
    bool GetBool(const QString& key, bool defaultValue, const char* section) override
    {
        return m_Node.GetBool(key, defaultValue, section);
    }
    bool HasGroup(const QString& name) override { return m_Node.HasGroup(name); }
    ICfg* GetGroup(const QString& name) override { return m_Node.GetGroup(name); }
    ICfg* GetChild(int index) override { return m_Node.GetChild(index); }

private:
    ConfigNode& m_Node;
};

}  // namespace

class CfgCenterPrivate
{
public:
    static CfgCenter* Create() { return new CfgCenter; }
};

ICfg::~ICfg() {}

CfgCenter::CfgCenter() : d(new CfgCenterPrivate) {}

CfgCenter::~CfgCenter()
{
    delete d;
}

CfgCenter* CfgCenter::Instance()
{
    static CfgCenter* const instance = CfgCenterPrivate::Create();
    return instance;
}

QString CfgCenter::GetAppName()
{
    ConfigDocument* document = ConfigCenter::Instance().Current();
    return document ? document->AppName() : QString();
}

ICfg* CfgCenter::CreateCfg(const QString& name, View view, const QString&)
{
    ConfigDocument* document = ConfigCenter::Instance().Current();
    ConfigNode* node = document && view == mergedView ? document->Find(name) : nullptr;
    return node ? new CfgHandle(*node) : nullptr;
}

ICfg* CfgCenter::GetAppCfg(View view)
{
    ConfigDocument* document = ConfigCenter::Instance().Current();
    return document && view == mergedView ? &document->Root() : nullptr;
}

IDllInstance* CfgCenter::CreateDllInstanceByFileName(const QString& fileName, const QString& argument, bool,
                                                     bool)
{
    return PluginRegistry::Instance().CreateByFileName(fileName, argument);
}
