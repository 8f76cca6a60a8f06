#include "app/appoptions.h"

#include <functional>

namespace {

// Takes the argument of an option; the text is what is wrong with it, empty when nothing is.
using Take = std::function<QString(AppOptions*, const QString&)>;

struct Option
{
    const char* name;
    const char* argument;  // empty: the option stands alone
    const char* help;
    Take take;
};

Take text(QString AppOptions::*member)
{
    return [member](AppOptions* options, const QString& value) {
        options->*member = value;
        return value.isEmpty() ? QString("must not be empty") : QString();
    };
}

Take flag(bool AppOptions::*member)
{
    return [member](AppOptions* options, const QString&) {
        options->*member = true;
        return QString();
    };
}

Take number(double AppOptions::*member, double minimum, double maximum)
{
    return [member, minimum, maximum](AppOptions* options, const QString& value) {
        bool good = false;
        const double parsed = value.toDouble(&good);
        if (!good || !(parsed >= minimum) || !(parsed <= maximum)) {
            return QString("takes a number from %1 to %2, not \"%3\"").arg(minimum).arg(maximum).arg(value);
        }
        options->*member = parsed;
        return QString();
    };
}

QString takeDriver(AppOptions* options, const QString& value)
{
    QString host;
    quint16 port = 0;
    if (!splitAddress(value, &host, &port)) {
        return QString("takes HOST:PORT, for example 127.0.0.1:4600, not \"%1\"").arg(value);
    }
    options->driver = value;
    return QString();
}

QString takePlugins(AppOptions* options, const QString& value)
{
    options->plugins << value;
    return value.isEmpty() ? QString("must not be empty") : QString();
}

QString takeTheme(AppOptions* options, const QString& value)
{
    options->theme = value;
    return value == "dark" || value == "light" ? QString()
                                               : QString("is dark or light, not \"%1\"").arg(value);
}

QString takeWrite(AppOptions* options, const QString& value)
{
    const int equals = value.indexOf(QLatin1Char('='));
    if (equals <= 1 || !value.startsWith(QLatin1Char('/'))) {
        return QString("takes PATH=VALUE, for example /RX1/DDC/DDC1/Frequency=98.5M, not \"%1\"").arg(value);
    }
    options->writes.append(qMakePair(value.left(equals), value.mid(equals + 1)));
    return QString();
}

const QVector<Option>& allOptions()
{
    constexpr double longestRun = 1e7;
    static const QVector<Option> options = {
        {"--config", "FILE", "configuration of the application (TOML); required",
         text(&AppOptions::configuration)},
        {"--driver", "HOST:PORT", "where the driver listens", takeDriver},
        {"--plugins", "DIR", "a further folder of plug-ins; repeatable", takePlugins},
        {"--headless", "", "no display: draw off screen", flag(&AppOptions::headless)},
        {"--seconds", "N", "end by itself after N seconds", number(&AppOptions::seconds, 0.1, longestRun)},
        {"--shots", "DIR", "save a picture of every window and dialog", text(&AppOptions::shots)},
        {"--set", "PATH=VALUE", "write a value as the operator would; repeatable", takeWrite},
        {"--log", "FILE", "where log lines go besides standard error", text(&AppOptions::log)},
        {"--state", "DIR", "where log, journal and window places are kept", text(&AppOptions::state)},
        {"--theme", "dark|light", "colours; otherwise those of the desktop", takeTheme},
        {"--scale", "FACTOR", "size of everything, 1 is normal", number(&AppOptions::scale, 0.5, 4)},
        {"--help", "", "this text", flag(&AppOptions::help)},
        {"--version", "", "name and version", flag(&AppOptions::version)},
    };
    return options;
}

const Option* findOption(const QString& name)
{
    for (const Option& option : allOptions()) {
        if (name == QLatin1String(option.name)) {
            return &option;
        }
    }
    return nullptr;
}

}  // namespace

bool parseAppOptions(const QStringList& arguments, AppOptions* options, QString* error)
{
    for (int i = 0; i < arguments.size(); ++i) {
        QString name = arguments.at(i);
        QString value;
        const int equals = name.startsWith(QLatin1String("--")) ? name.indexOf(QLatin1Char('=')) : -1;
        if (equals > 0) {
            value = name.mid(equals + 1);
            name.truncate(equals);
        }
        const Option* option = findOption(name);
        if (option == nullptr) {
            *error = QString("\"%1\" is not known; rxworkbench --help lists what is").arg(name);
            return false;
        }
        const bool alone = *option->argument == '\0';
        if (alone && equals > 0) {
            *error = QString("%1 stands alone, without \"=%2\"").arg(name, value);
            return false;
        }
        if (!alone && equals < 0) {
            if (i + 1 >= arguments.size()) {
                *error = QString("%1 needs %2 after it").arg(name, option->argument);
                return false;
            }
            value = arguments.at(++i);
        }
        const QString fault = option->take(options, value);
        if (!fault.isEmpty()) {
            *error = QString("%1 %2").arg(name, fault);
            return false;
        }
    }
    if (options->configuration.isEmpty() && !options->help && !options->version) {
        *error = "no configuration given; start with --config FILE (the product's own lie in config/)";
        return false;
    }
    return true;
}

bool splitAddress(const QString& address, QString* host, quint16* port)
{
    const int colon = address.lastIndexOf(QLatin1Char(':'));
    if (colon <= 0) {
        return false;
    }
    bool good = false;
    const int number = address.mid(colon + 1).toInt(&good);
    QString name = address.left(colon);
    if (name.startsWith(QLatin1Char('[')) && name.endsWith(QLatin1Char(']'))) {
        name = name.mid(1, name.size() - 2);
    }
    if (!good || number <= 0 || number > 65535 || name.isEmpty()) {
        return false;
    }
    *host = name;
    *port = static_cast<quint16>(number);
    return true;
}

QString appHelp()
{
    QString help("rxworkbench: one application's window on a receiver driver.\n\n");
    for (const Option& option : allOptions()) {
        const QString head = QString("  %1 %2").arg(option.name, option.argument);
        help += QString("%1 %2\n").arg(head, -24).arg(option.help);
    }
    help +=
        "\nExit codes: 0 ended by its operator or its time, 1 it could not go on,\n"
        "2 bad arguments, a bad configuration, or no plug-in that could be loaded.\n";
    return help;
}
