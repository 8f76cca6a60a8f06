// A plug-in for tests only: lets a test drive the real workbench from outside. Loaded through
// AdditionalDlls like any other; its Config names the socket:
//   [AdditionalDlls.Pilot]
//   FileName = "libtestpilot"
//   [AdditionalDlls.Pilot.Config]
//   Socket = "/path/of/a/socket"

#include <QString>
#include <memory>

#include "pilotserver.h"
#include "startup/cfgcenter.h"
#include "startup/icfg.h"
#include "startup/idllinstance.h"

namespace {

class Pilot : public IDllInstance
{
public:
    explicit Pilot(const QString& key) : IDllInstance(key)
    {
        const std::unique_ptr<ICfg> configuration(CfgCenter::Instance()->CreateCfg(key, 2, QString()));
        if (configuration) {
            m_server = std::make_unique<PilotServer>(configuration->GetString("Socket"));
        }
    }

    bool InstanceQuery() override { return m_server != nullptr; }

private:
    std::unique_ptr<PilotServer> m_server;
};

}  // namespace

extern "C" Q_DECL_EXPORT IDllInstance* ARCreate(const wchar_t* name)
{
    return new Pilot(QString::fromWCharArray(name));
}

extern "C" Q_DECL_EXPORT void ARDestroy(IDllInstance* instance)
{
    delete instance;
}
