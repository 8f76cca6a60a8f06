#pragma once

#include <QString>
#include <QStringList>
#include <optional>

#include "link/messages.h"
#include "receiver/sources/opensource.h"

namespace Receiver {

// What the driver's command line says.
struct DriverOptions
{
    QString host = QStringLiteral("127.0.0.1");  // address to listen on
    quint16 port = Link::defaultPort;            // 0: any free one

    // For streams, on the same host; 0: any free one. Without: the port after `port` where that is
    // free, else any.
    std::optional<quint16> streamPort;

    quint64 seed = 1;  // of the built-in scene, without a recording
    QString recordingFile;
    RecordingOptions recording;
    bool once = false;           // stop at the recording's end instead of beginning again
    bool waitForClient = false;  // the source begins when a client has hooked DDC1's level

    QString devicePath = QStringLiteral("/RX1");
    QString caption;  // shown in window titles; empty: the device path's last name
    int channels = 4;
};

// The outcome of reading a command line: options to run with, or a text to print and the exit code
// to end with. An error is one line that says what is wrong and what is expected.
struct ParsedOptions
{
    std::optional<DriverOptions> options;
    QString text;
    int exitCode = 0;
};

constexpr int badUseExitCode = 2;

// `arguments` with the program's name in front.
ParsedOptions parseDriverOptions(const QStringList& arguments);

}  // namespace Receiver
