#ifndef HOST_IFMAPPINGHELPER_H
#define HOST_IFMAPPINGHELPER_H

#include <QtCore/QString>

#include "receivercommon/receivercommon_global.h"

class IFMappingHelperPrivate;

// Keeps the panorama's axis values /GUICOMMON/IFPANHALFWIDTH, IFPANSTARTFREQ and IFPANSTOPFREQ
// (Hz) in step with the receiver's FREQUENCY and IFPANSPAN.
class RECEIVERCOMMON_EXPORT IFMappingHelper
{
public:
    explicit IFMappingHelper(const QString& valuePath);
    ~IFMappingHelper();

    // Makes the axis values where they are missing, and begins to follow. Values that the receiver
    // lacks leave the axis as it is.
    void Init();

private:
    Q_DISABLE_COPY(IFMappingHelper)
    IFMappingHelperPrivate* d;
};

#endif
