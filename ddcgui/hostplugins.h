#ifndef DDCGUI_HOSTPLUGINS_H
#define DDCGUI_HOSTPLUGINS_H

#include <QString>

// The host's plug-ins that this module loads or looks for, by the names under which they are
// installed: library files without folder and extension, and entries of the configuration.
namespace HostPlugins {

static const char* const messageSenderFile = "libmessagesender";
static const char* const audioLinkFile = "libaudiolink";
static const char* const receiverGuiFile = "libreceivergui";

// The receiver window's entry under AdditionalDlls; the message sender's settings lie there.
static const char* const receiverGuiEntry = "ReceiverGui";

// Which configuration is asked for: the merged one, the file over the built-in defaults.
enum
{
    mergedConfiguration = 2
};

}  // namespace HostPlugins

#endif
