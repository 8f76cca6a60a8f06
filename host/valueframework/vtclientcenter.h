#ifndef HOST_VTCLIENTCENTER_H
#define HOST_VTCLIENTCENTER_H

#include <QtCore/QString>

#include "valueframework/ivtclient.h"

class VtClientCenterPrivate;

// The clients of this process by name. Clients are owned by the host.
class VALUEFRAMEWORK_EXPORT VtClientCenter
{
public:
    static VtClientCenter* Instance();

    // Null when there is no client of that name.
    IVtClient* GetVtClient(const QString& name);

private:
    Q_DISABLE_COPY(VtClientCenter)
    friend class VtClientCenterPrivate;
    VtClientCenter();
    ~VtClientCenter();
    VtClientCenterPrivate* d;
};

#endif
