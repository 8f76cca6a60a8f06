// What a recording brings, in bytes per second.
//
// A plain channel delivers its IF and its audio:
//   IF     1.25 x bandwidth complex samples a second (the channel filter's slopes need a quarter
//          more than the bandwidth), each 16 bit I and 16 bit Q: 4 bytes
//   audio  48,000 samples a second of 16 bit: 2 bytes
//   content = 5 x bandwidth + 96,000
//
// Pulse analysis delivers no samples, but a pulse descriptor word of 32 bytes for each pulse. A
// channel resolves pulses of about the inverse of its bandwidth; the recorder reckons with one
// pulse in a hundred of these times, and with no more than a million a second:
//   content = 32 x min(bandwidth / 100, 1,000,000)
//
// Over the LAN both come in packets: 1,440 bytes of content carry 60 bytes of headers:
//   rate = content x 1500 / 1440
#include "receivercommon/rxdatarateconverter.h"

#include <algorithm>
#include <cmath>

namespace {

const double samplesPerBandwidth = 1.25;
const double bytesPerIfSample = 4;
const double audioBytesPerSecond = 48000.0 * 2;
const double bytesPerPulse = 32;
const double pulseTimesPerPulse = 100;
const double maximumPulsesPerSecond = 1e6;
const double lanOverhead = (1440.0 + 60.0) / 1440.0;

}  // namespace

namespace VordaCommon {

IDataRateConverter::~IDataRateConverter() {}

}  // namespace VordaCommon

namespace RxCommon {

RxDataRateConverter::RxDataRateConverter(RECEIVERTYPE receiverType, enInterfaceType interfaceType)
    : m_ReceiverType(receiverType), m_InterfaceType(interfaceType)
{}

RxDataRateConverter::~RxDataRateConverter() {}

double RxDataRateConverter::BytesPerSecond(double bandwidth) const
{
    if (!(bandwidth > 0) || !std::isfinite(bandwidth))
        return 0;
    const double content =
        m_ReceiverType == RECEIVERTYPE_PULSE_ANALYSIS
            ? bytesPerPulse * std::min(bandwidth / pulseTimesPerPulse, maximumPulsesPerSecond)
            : samplesPerBandwidth * bytesPerIfSample * bandwidth + audioBytesPerSecond;
    return m_InterfaceType == INTERFACE_LAN ? content * lanOverhead : content;
}

}  // namespace RxCommon
