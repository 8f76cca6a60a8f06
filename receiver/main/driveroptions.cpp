#include "receiver/main/driveroptions.h"

#include <QCommandLineParser>
#include <QHostAddress>

#include "receiver/values/paths.h"
#include "receiver/values/quantity.h"

namespace Receiver {

namespace {

constexpr int mostChannels = 64;
constexpr double highestRate = 1e9;        // samples/s
constexpr double highestFrequency = 1e12;  // Hz

struct OptionRow
{
    const char* name;
    const char* value;  // null: a switch
    const char* text;
};

const OptionRow optionRows[] = {
    {"listen", "HOST:PORT",
     "Address for clients, default 127.0.0.1:4600; port 0 takes a free one, an IPv6 host stands in [ ]."},
    {"stream-port", "PORT",
     "Port for the spectrum's stream on the same host; 0 takes a free one. Default: the one after the port "
     "for clients where it is free, else any."},
    {"scene", "SEED", "Receive the built-in scene made from this whole number (default: 1)."},
    {"iq", "FILE", "Receive a recording: raw u8, s8, s16, f32, WAV with two channels, or SigMF."},
    {"rate", "S/s", "Sample rate of the recording where the file does not tell it, for example 2.4M."},
    {"center", "HZ", "Centre frequency of the recording where the file does not tell it, for example 77.5k."},
    {"format", "FORMAT", "Sample format of a raw recording: u8, s8, s16 or f32."},
    {"once", nullptr, "Play the recording once; without, it begins again at its end."},
    {"wait-client", nullptr,
     "Begin to receive when the first client has hooked the level of DDC1, so that it misses nothing."},
    {"device", "PATH", "Path of the receiver's values, default /RX1."},
    {"caption", "TEXT", "What window titles call the receiver, default the last name of its path."},
    {"channels", "N", "Number of channels DDC1 to DDCn, default 4; DDC4 does pulse analysis."},
    {"help", nullptr, "Print this text."},
    {"version", nullptr, "Print the version."},
};

// Options that only say something about a recording.
const char* const recordingOptionNames[] = {"rate", "center", "format", "once"};

void addOptions(QCommandLineParser& parser)
{
    parser.setApplicationDescription(
        QStringLiteral("Receiver driver: measures channels of an IQ stream and serves the values.\n"
                       "The first line of output names the port."));
    for (const OptionRow& row : optionRows) {
        QCommandLineOption option(QString::fromLatin1(row.name), QString::fromUtf8(row.text));
        if (row.value)
            option.setValueName(QString::fromLatin1(row.value));
        parser.addOption(option);
    }
}

// Reads one option into the options; returns what is wrong, empty when nothing is.
class Reader
{
public:
    explicit Reader(const QCommandLineParser& parser) : m_parser(parser) {}

    DriverOptions options;

    QString read()
    {
        for (const auto step : {&Reader::readListen, &Reader::readStreamPort, &Reader::readSource,
                                &Reader::readRecording, &Reader::readDevice, &Reader::readChannels}) {
            const QString wrong = (this->*step)();
            if (!wrong.isEmpty())
                return wrong;
        }
        return {};
    }

private:
    bool has(const char* name) const { return m_parser.isSet(QString::fromLatin1(name)); }
    QString value(const char* name) const { return m_parser.value(QString::fromLatin1(name)); }

    QString readListen()
    {
        if (!has("listen"))
            return {};
        const QString text = value("listen");
        const QString wrong =
            QStringLiteral("--listen %1: expects HOST:PORT, for example 127.0.0.1:4600").arg(text);
        const auto colon = text.lastIndexOf(QLatin1Char(':'));
        if (colon <= 0)
            return wrong;
        QString host = text.left(colon);
        if (host.startsWith(QLatin1Char('[')) && host.endsWith(QLatin1Char(']')))
            host = host.mid(1, host.size() - 2);
        else if (host.contains(QLatin1Char(':')))
            return wrong;
        if (host == QLatin1String("localhost"))
            host = QStringLiteral("127.0.0.1");
        bool ok = false;
        options.port = text.mid(colon + 1).toUShort(&ok);
        if (!ok || QHostAddress(host).isNull())
            return wrong;
        options.host = host;
        return {};
    }

    QString readStreamPort()
    {
        if (!has("stream-port"))
            return {};
        bool ok = false;
        options.streamPort = value("stream-port").toUShort(&ok);
        if (!ok) {
            return QStringLiteral("--stream-port %1: expects a whole number from 0 to 65535")
                .arg(value("stream-port"));
        }
        if (*options.streamPort != 0 && *options.streamPort == options.port) {
            return QStringLiteral("--stream-port %1: is the port for clients already, give another one")
                .arg(value("stream-port"));
        }
        return {};
    }

    QString readSource()
    {
        if (has("scene") && has("iq"))
            return QStringLiteral("--scene and --iq: give one of them");
        if (has("scene")) {
            bool ok = false;
            options.seed = value("scene").toULongLong(&ok);
            if (!ok)
                return QStringLiteral("--scene %1: expects a whole number").arg(value("scene"));
        }
        options.recordingFile = value("iq");
        if (has("iq") && options.recordingFile.isEmpty())
            return QStringLiteral("--iq: expects the name of a recording");
        for (const char* name : recordingOptionNames) {
            if (has(name) && !has("iq"))
                return QStringLiteral("--%1: is for recordings, give --iq FILE too").arg(QLatin1String(name));
        }
        return {};
    }

    QString readRecording()
    {
        options.once = has("once");
        options.waitForClient = has("wait-client");
        if (has("rate")) {
            options.recording.rate = parseQuantity(value("rate"), QStringLiteral("S/s"));
            const double rate = options.recording.rate.value_or(0);
            if (!(rate > 0 && rate <= highestRate)) {
                return QStringLiteral(
                           "--rate %1: expects samples per second above 0 and up to 1G, "
                           "for example 2.4M")
                    .arg(value("rate"));
            }
        }
        if (has("center")) {
            options.recording.center = parseQuantity(value("center"), QStringLiteral("Hz"));
            const double center = options.recording.center.value_or(-1);
            if (!(center >= 0 && center <= highestFrequency)) {
                return QStringLiteral("--center %1: expects a frequency in Hz, for example 77.5k")
                    .arg(value("center"));
            }
        }
        options.recording.format = value("format");
        static const QStringList formats = {QStringLiteral("u8"), QStringLiteral("s8"), QStringLiteral("s16"),
                                            QStringLiteral("f32")};
        if (has("format") && !formats.contains(options.recording.format)) {
            return QStringLiteral("--format %1: expects one of %2")
                .arg(options.recording.format, formats.join(QStringLiteral(", ")));
        }
        return {};
    }

    QString readDevice()
    {
        if (has("device")) {
            options.devicePath = value("device");
            if (!Paths::isDevicePath(options.devicePath)) {
                return QStringLiteral(
                           "--device %1: expects a path such as /RX1: names of letters, "
                           "digits, _ - . with a slash before each")
                    .arg(options.devicePath);
            }
        }
        options.caption =
            has("caption") ? value("caption") : options.devicePath.section(QLatin1Char('/'), -1);
        return {};
    }

    QString readChannels()
    {
        if (!has("channels"))
            return {};
        bool ok = false;
        options.channels = value("channels").toInt(&ok);
        if (!ok || options.channels < 1 || options.channels > mostChannels) {
            return QStringLiteral("--channels %1: expects a whole number from 1 to %2")
                .arg(value("channels"))
                .arg(mostChannels);
        }
        return {};
    }

    const QCommandLineParser& m_parser;
};

ParsedOptions badUse(const QString& reason)
{
    ParsedOptions parsed;
    parsed.text = reason.simplified();
    if (parsed.text.endsWith(QLatin1Char('.')))
        parsed.text.chop(1);
    parsed.text += QStringLiteral(" (see rxdriver --help)");
    parsed.exitCode = badUseExitCode;
    return parsed;
}

}  // namespace

ParsedOptions parseDriverOptions(const QStringList& arguments)
{
    QCommandLineParser parser;
    addOptions(parser);
    if (!parser.parse(arguments))
        return badUse(parser.errorText());
    ParsedOptions parsed;
    if (parser.isSet(QStringLiteral("help"))) {
        parsed.text = parser.helpText();
        return parsed;
    }
    if (parser.isSet(QStringLiteral("version"))) {
        parsed.text = QStringLiteral("rxdriver " RX_VERSION "\n");
        return parsed;
    }
    if (!parser.positionalArguments().isEmpty()) {
        return badUse(QStringLiteral("%1: is not an option").arg(parser.positionalArguments().constFirst()));
    }
    Reader reader(parser);
    const QString wrong = reader.read();
    if (!wrong.isEmpty())
        return badUse(wrong);
    parsed.options = reader.options;
    return parsed;
}

}  // namespace Receiver
