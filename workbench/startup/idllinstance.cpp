#include "startup/idllinstance.h"

#include "startup/imshclientdll.h"
#include "startup/pluginregistry.h"

IDllInstance::IDllInstance(const QString& instanceName) : name(instanceName) {}

// An instance that its user destroyed must not be destroyed again at the end of the process.
IDllInstance::~IDllInstance()
{
    PluginRegistry::Instance().Forget(this);
}

bool IDllInstance::InstanceQuery()
{
    return true;
}

void IDllInstance::InstanceNotifyA() {}

void IDllInstance::InstanceNotifyB() {}

IMshClientDll::IMshClientDll(const QString& instanceName) : IDllInstance(instanceName) {}

IMshClientDll::~IMshClientDll() {}
