#include "receivercommon/rxconfiguration.h"

#include "receivercommon/receivercommonhost.h"

namespace RxCommon {

class ConfigurationPrivate
{
public:
    static Configuration* Create() { return new Configuration; }
    static ConfigurationPrivate& Get() { return *Configuration::Instance()->d; }

    bool m_Boxed = false;
};

Configuration::Configuration() : d(new ConfigurationPrivate) {}

Configuration::~Configuration()
{
    delete d;
}

Configuration* Configuration::Instance(const QString&)
{
    static Configuration* const instance = ConfigurationPrivate::Create();
    return instance;
}

bool Configuration::GetBoxedVersion() const
{
    return d->m_Boxed;
}

}  // namespace RxCommon

void ReceiverCommonHost::SetBoxedVersion(bool boxed)
{
    RxCommon::ConfigurationPrivate::Get().m_Boxed = boxed;
}
