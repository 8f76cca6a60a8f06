#ifndef DDCGUI_VALUEPATHS_H
#define DDCGUI_VALUEPATHS_H

#include <QString>

// The words of which value paths are made. A path is plain text put together of a root, node names
// and keys; nothing is normalised, so every "/" stands in one of the pieces. A key of the receiver's
// shared vocabulary is joined with "/" before it (KeyPath); a literal suffix brings its own. Both
// forms occur side by side: P/Frequency and P/FREQUENCY are different values.
namespace ValueKeys {

static const QString AUDIOMODE = QLatin1String("AUDIOMODE");
static const QString AUDRECORDVALID = QLatin1String("AUDRECORDVALID");
static const QString AudioRecording = QLatin1String("AudioRecording");
static const QString BEARINGRESULT = QLatin1String("BEARINGRESULT");
static const QString CHANNELMUTE = QLatin1String("CHANNELMUTE");
static const QString COMPASS = QLatin1String("COMPASS");
static const QString ChannelRecording = QLatin1String("ChannelRecording");
static const QString DDF = QLatin1String("DDF");
static const QString DFFIELDSTRENGTHAVAILABLE = QLatin1String("DFFIELDSTRENGTHAVAILABLE");
static const QString DRVCOMMANDS = QLatin1String("DRVCOMMANDS");
static const QString FREQUENCY = QLatin1String("FREQUENCY");
static const QString GUICOMMON = QLatin1String("/GUICOMMON");  // a root, the same for every device
static const QString IFMAPPING = QLatin1String("IFMAPPING");
static const QString IFPANHALFWIDTH = QLatin1String("IFPANHALFWIDTH");
static const QString IFPANSPAN = QLatin1String("IFPANSPAN");
static const QString IFPANSTARTFREQ = QLatin1String("IFPANSTARTFREQ");
static const QString IFPANSTOPFREQ = QLatin1String("IFPANSTOPFREQ");
static const QString IF_LEVELMAXIMUM = QLatin1String("IF_LEVELMAXIMUM");
static const QString IF_LEVELMINIMUM = QLatin1String("IF_LEVELMINIMUM");
static const QString IfRecording = QLatin1String("IfRecording");
static const QString MODE = QLatin1String("MODE");
static const QString QUALITYTHRESHOLD = QLatin1String("QUALITYTHRESHOLD");
static const QString RECORDREPLAY = QLatin1String("RECORDREPLAY");
static const QString SOURCE = QLatin1String("SOURCE");

}  // namespace ValueKeys

namespace ValuePaths {

// Absolute.
static const char* const serverValuesHooked = "/ADMINISTRATION/SERVERVALUESHOOKED";
static const char* const administrationHook = "/ADMINISTRATION,/ADMINISTRATION";

// The tree's client that mirrors the driver.
static const char* const driverClient = "VTConnectToDRV";

// After a device path.
static const char* const deviceCaption = "/DEVICE_CAPTION";
static const char* const dfEnabled = "/DDF/DF_ENABLED";
static const char* const audio = "/AUDIO/";  // a key follows without another separator
static const char* const ddcNode = "/DDC";   // its children are the channels

// After a channel's path.
static const char* const frequency = "/Frequency";
static const char* const frequencyCoupled = "/FrequencyCoupled";
static const char* const demodulationCoupled = "/DemodulationCoupled";
static const char* const demodulation = "/Demodulation";
static const char* const bandwidth = "/Bandwidth";
static const char* const levelValue = "/LevelValue";
static const char* const squelchState = "/SquelchState";
static const char* const squelchValue = "/SquelchValue";
static const char* const audioMute = "/AudioMute";
static const char* const audioBalance = "/AudioBalance";
static const char* const audioMode = "/AudioMode";
static const char* const writeDb = "/COB/WriteDB";
static const char* const channelRecording = "/ChannelRecording";
static const char* const connectedClient = "/ConnectedClient";
static const char* const ddcMode = "/DDCMode";
static const char* const pdwPath = "/PDWPath";
static const char* const handoverPath = "/HandoverPath";

// root + "/" + key.
inline QString KeyPath(const QString& root, const QString& key)
{
    return root + "/" + key;
}

// root + "/" + node + "/" + key.
inline QString KeyPath(const QString& root, const QString& node, const QString& key)
{
    return KeyPath(KeyPath(root, node), key);
}

// The path of the channel `ddcName` of a device.
inline QString DdcPath(const QString& devicePath, const QString& ddcName)
{
    return devicePath + ddcNode + "/" + ddcName;
}

// "PATH,PATH": what a tree client mirrors from the driver to the same place here.
inline QString HookPair(const QString& path)
{
    return path + "," + path;
}

}  // namespace ValuePaths

#endif
