#include "mshsender.h"

#include <QHostAddress>
#include <memory>

#include "hostplugins.h"
#include "startup/cfgcenter.h"
#include "startup/imshclientdll.h"

namespace {

// The entries of the receiver window's "MshClientCfg", one for each station; null without them. They
// live in the configuration centre, longer than the node that they are asked of.
ICfg* StationEntries()
{
    const QString path = CfgCenter::GetAppName() + QLatin1String("\\AdditionalDlls\\") +
                         QLatin1String(HostPlugins::receiverGuiEntry) + QLatin1String("\\Config");
    const std::unique_ptr<ICfg> configuration(
        CfgCenter::Instance()->CreateCfg(path, HostPlugins::mergedConfiguration, QString()));
    const QString group = QLatin1String("MshClientCfg");
    return configuration && configuration->HasGroup(group) ? configuration->GetGroup(group) : nullptr;
}

// Of the first station that is not a receiver, with what separates it from the channel's name.
QString GroupPrefix()
{
    ICfg* stations = StationEntries();
    if (!stations)
        return QString();
    int index = 0;
    while (ICfg* station = stations->GetChild(index)) {
        if (!station->GetBool(QLatin1String("IsReceiver"), false))
            return station->GetString(QLatin1String("SubGroup"), QString()) + QLatin1Char('_');
        ++index;
    }
    return QString();
}

}  // namespace

QString MshServer::LoopbackAddress()
{
    return QHostAddress(QHostAddress::LocalHost).toString();
}

void ConfigureMshSender(IMshClientDll* client, const QString& name, bool forDf)
{
    const QString group = GroupPrefix() + name;
    client->SetName(forDf ? QLatin1String("DF_") + name : name);
    client->SetServer(MshServer::LoopbackAddress(), MshServer::port);
    client->SetApplication(QLatin1String("PELTA_Receiver"));
    client->SetGroup(group);
    client->SetFlag1(false);
    client->SetFlag6(true);
    client->SetFlag2(true);
    client->SetFlag4(true);
    client->SetFlag5(false);
    client->SetFlag3(true);
}
