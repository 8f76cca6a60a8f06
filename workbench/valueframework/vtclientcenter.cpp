#include "valueframework/vtclientcenter.h"

#include <QHash>

#include "valueframework/valuehost.h"

class VtClientCenterPrivate
{
public:
    static VtClientCenterPrivate& Of(VtClientCenter& center) { return *center.d; }

    static VtClientCenter& Center()
    {
        static VtClientCenter center;
        return center;
    }

    QHash<QString, IVtClient*> clients;
};

VtClientCenter::VtClientCenter() : d(new VtClientCenterPrivate) {}

VtClientCenter::~VtClientCenter()
{
    delete d;
}

VtClientCenter* VtClientCenter::Instance()
{
    return &VtClientCenterPrivate::Center();
}

IVtClient* VtClientCenter::GetVtClient(const QString& name)
{
    return d->clients.value(name, nullptr);
}

void ValueHost::SetClient(const QString& name, IVtClient* client)
{
    auto& clients = VtClientCenterPrivate::Of(*VtClientCenter::Instance()).clients;
    if (client) {
        clients.insert(name, client);
    } else {
        clients.remove(name);
    }
}
