#ifndef HOST_RXDATARATECONVERTER_H
#define HOST_RXDATARATECONVERTER_H

#include <QtCore/QtGlobal>

#include "receivercommon/receivercommon_global.h"

// What kind of receiver a data stream comes from. The numbers are part of the recorder's interface.
enum RECEIVERTYPE
{
    RECEIVERTYPE_DDC = 13,             // a plain channel: audio and IF samples
    RECEIVERTYPE_PULSE_ANALYSIS = 30,  // a channel that delivers pulse descriptor words

    RECEIVERTYPE_FORCE_32_BIT = 0x7fffffff
};

namespace VordaCommon {

// Tells a recorder how much data a setting will bring.
class RECEIVERCOMMON_EXPORT IDataRateConverter
{
public:
    virtual ~IDataRateConverter();

    // Bytes per second of a recording at a bandwidth in Hz; 0 for a bandwidth that is not positive.
    virtual double BytesPerSecond(double bandwidth) const = 0;
};

}  // namespace VordaCommon

namespace RxCommon {

class RECEIVERCOMMON_EXPORT RxDataRateConverter : public VordaCommon::IDataRateConverter
{
public:
    enum enInterfaceType
    {
        INTERFACE_LAN = 0
    };

    RxDataRateConverter(RECEIVERTYPE receiverType, enInterfaceType interfaceType);
    ~RxDataRateConverter();

    double BytesPerSecond(double bandwidth) const;

private:
    Q_DISABLE_COPY(RxDataRateConverter)
    RECEIVERTYPE m_ReceiverType;
    enInterfaceType m_InterfaceType;
};

}  // namespace RxCommon

#endif
