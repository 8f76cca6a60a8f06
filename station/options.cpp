#include "station/options.h"

#include <QDir>
#include <QFileInfo>
#include <QHash>

namespace {

enum class Kind
{
    Flag,
    Number,
    Port,
    Address,
    Text
};

enum class Goal
{
    Driver,  // handed to the driver
    Window,  // handed to every window
    Own      // for the launcher
};

struct Option
{
    const char* name;
    Kind kind;
    Goal goal;
    const char* argument;
    const char* help;
};

const Option options[] = {
    {"--config", Kind::Text, Goal::Own, "NAME|FILE",
     "the application to show (default RxDDC1); once for each window"},
    {"--driver", Kind::Address, Goal::Own, "HOST:PORT", "use a running driver instead of starting one"},
    {"--scene", Kind::Text, Goal::Driver, "SEED", "the built-in scene of that seed (default)"},
    {"--iq", Kind::Text, Goal::Driver, "FILE", "replay a recording: raw u8, s8, s16, f32, WAV, SigMF"},
    {"--rate", Kind::Text, Goal::Driver, "HZ", "sample rate of a raw recording"},
    {"--center", Kind::Text, Goal::Driver, "HZ", "centre frequency of the recording"},
    {"--format", Kind::Text, Goal::Driver, "FORMAT", "u8, s8, s16 or f32 of a raw recording"},
    {"--once", Kind::Flag, Goal::Driver, "", "stop at the end of the recording instead of looping"},
    {"--headless", Kind::Flag, Goal::Window, "", "no display: draw off screen"},
    {"--seconds", Kind::Number, Goal::Window, "N", "end by itself after N seconds"},
    {"--shots", Kind::Text, Goal::Own, "DIR", "save a picture of every window and dialog"},
    {"--set", Kind::Text, Goal::Window, "PATH=VALUE", "write a value as the operator would; repeatable"},
    {"--vnc", Kind::Port, Goal::Own, "PORT", "show the windows to a VNC viewer on 127.0.0.1:PORT"},
    {"--theme", Kind::Text, Goal::Window, "dark|light", "colours of the windows"},
    {"--scale", Kind::Number, Goal::Window, "FACTOR", "size of everything, 1 is normal"},
    {"--state", Kind::Text, Goal::Window, "DIR", "where log, journal and window places are kept"},
    {"--plugins", Kind::Text, Goal::Window, "DIR", "a further folder of plug-ins; repeatable"},
    {"--help", Kind::Flag, Goal::Own, "", "this text"},
};

const Option* findOption(const QString& name)
{
    for (const Option& option : options) {
        if (name == QLatin1String(option.name)) {
            return &option;
        }
    }
    return nullptr;
}

bool isAddress(const QString& text)
{
    const int colon = text.lastIndexOf(QLatin1Char(':'));
    bool number = false;
    const int port = colon > 0 ? text.mid(colon + 1).toInt(&number) : 0;
    return number && port > 0 && port < 65536;
}

QString faultOf(const Option& option, const QString& value)
{
    const QString name = QLatin1String(option.name);
    bool good = true;
    switch (option.kind) {
        case Kind::Flag:
            return QString();
        case Kind::Text:
            return value.isEmpty() ? QString("%1 needs %2 after it").arg(name, option.argument) : QString();
        case Kind::Number:
            value.toDouble(&good);
            return good ? QString() : QString("%1 takes a number, not \"%2\"").arg(name, value);
        case Kind::Port: {
            const int port = value.toInt(&good);
            good = good && port > 0 && port < 65536;
            return good ? QString() : QString("%1 takes a port from 1 to 65535, not \"%2\"").arg(name, value);
        }
        case Kind::Address:
            return isAddress(value) ? QString()
                                    : QString("%1 takes HOST:PORT, for example 127.0.0.1:4600, not \"%2\"")
                                          .arg(name, value);
    }
    return QString();
}

void take(const Option& option, const QString& value, StationOptions* result)
{
    const QString name = QLatin1String(option.name);
    QStringList handedOn{name};
    if (option.kind != Kind::Flag) {
        handedOn << value;
    }
    if (option.goal == Goal::Driver) {
        result->driverArguments += handedOn;
    } else if (option.goal == Goal::Window) {
        result->windowArguments += handedOn;
        result->headless = result->headless || name == QLatin1String("--headless");
    } else if (name == QLatin1String("--config")) {
        result->configurations << value;
    } else if (name == QLatin1String("--driver")) {
        result->driver = value;
    } else if (name == QLatin1String("--shots")) {
        result->shots = value;
    } else if (name == QLatin1String("--vnc")) {
        result->vncPort = value.toInt();
    } else if (name == QLatin1String("--help")) {
        result->help = true;
    }
}

QString contradictionIn(const StationOptions& options)
{
    if (!options.driver.isEmpty() && !options.driverArguments.isEmpty()) {
        return QString(
                   "%1 is for a driver that is started here, but --driver names a running one; "
                   "leave one of them out")
            .arg(options.driverArguments.first());
    }
    if (options.driverArguments.contains("--iq") && options.driverArguments.contains("--scene")) {
        return QString("--iq and --scene are two sources; leave one of them out");
    }
    if (options.headless && options.vncPort != 0) {
        return QString("--headless draws nowhere, --vnc shows the windows; leave one of them out");
    }
    return QString();
}

}  // namespace

bool parseStationOptions(const QStringList& arguments, StationOptions* result, QString* error)
{
    for (int i = 0; i < arguments.size(); ++i) {
        QString name = arguments.at(i);
        QString value;
        bool hasValue = false;
        const int equals = name.indexOf(QLatin1Char('='));
        if (name.startsWith(QLatin1String("--")) && equals > 0) {
            value = name.mid(equals + 1);
            name.truncate(equals);
            hasValue = true;
        }
        const Option* option = findOption(name);
        if (option == nullptr) {
            *error = QString("\"%1\" is not known; rxstation --help lists what is").arg(name);
            return false;
        }
        if (option->kind == Kind::Flag && hasValue) {
            *error = QString("%1 stands alone, without \"=%2\"").arg(name, value);
            return false;
        }
        if (option->kind != Kind::Flag && !hasValue) {
            if (i + 1 >= arguments.size()) {
                *error = QString("%1 needs %2 after it").arg(name, option->argument);
                return false;
            }
            value = arguments.at(++i);
        }
        *error = faultOf(*option, value);
        if (!error->isEmpty()) {
            return false;
        }
        take(*option, value, result);
    }
    if (result->configurations.isEmpty()) {
        result->configurations << QString("RxDDC1");
    }
    if (result->driverArguments.contains("--once")) {
        // The windows take a moment to come up; nothing of the recording is to be missed meanwhile.
        result->driverArguments << "--wait-client";
    }
    *error = contradictionIn(*result);
    return error->isEmpty();
}

QString stationHelp()
{
    QString text("rxstation: starts a receiver driver and its windows, and ends both together.\n\n");
    for (const Option& option : options) {
        const QString head = QString("  %1 %2").arg(option.name, option.argument);
        text += QString("%1 %2\n").arg(head, -26).arg(option.help);
    }
    text += "\nExit codes: 0 all well, 1 something failed on the way, 2 bad arguments or input.\n";
    return text;
}

QString findConfiguration(const QString& nameOrFile, const QString& folder, QString* error)
{
    const QFileInfo asFile(nameOrFile);
    if (asFile.isFile()) {
        return asFile.absoluteFilePath();
    }
    const QDir installed(folder);
    const QFileInfo asName(installed.filePath(nameOrFile + ".toml"));
    if (!nameOrFile.contains(QLatin1Char('/')) && asName.isFile()) {
        return asName.absoluteFilePath();
    }
    QStringList names;
    for (const QFileInfo& info : installed.entryInfoList({"*.toml"}, QDir::Files, QDir::Name)) {
        names << info.completeBaseName();
    }
    *error = QString("%1: there is no such configuration; give a file, or one of: %2")
                 .arg(nameOrFile, names.isEmpty() ? QString("(none installed)") : names.join(", "));
    return QString();
}
