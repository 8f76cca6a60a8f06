#ifndef HOST_RXCONFIGURATION_H
#define HOST_RXCONFIGURATION_H

#include <QtCore/QString>

#include "receivercommon/receivercommon_global.h"

namespace RxCommon {

class ConfigurationPrivate;

// Facts of the installation that all receiver plug-ins share.
class RECEIVERCOMMON_EXPORT Configuration
{
public:
    // `text` is reserved and empty.
    static Configuration* Instance(const QString& text = QString());

    // Whether the application runs as the version that is embedded in a device.
    bool GetBoxedVersion() const;

private:
    Q_DISABLE_COPY(Configuration)
    friend class ConfigurationPrivate;
    Configuration();
    ~Configuration();
    ConfigurationPrivate* d;
};

}  // namespace RxCommon

#endif
