#include "tools/commandline.h"

#include <cmath>

#include "link/messages.h"

namespace RxCtl {
namespace {

bool parseAddress(const QString& text, CommandLine* command)
{
    const qsizetype colon = text.lastIndexOf(QLatin1Char(':'));
    bool ok = false;
    const uint port = text.mid(colon + 1).toUInt(&ok);
    if (colon <= 0 || !ok || port == 0 || port > 65535)
        return false;
    command->host = text.left(colon);
    if (command->host.startsWith(QLatin1Char('[')) && command->host.endsWith(QLatin1Char(']')))
        command->host = command->host.mid(1, command->host.size() - 2);
    command->port = quint16(port);
    return !command->host.isEmpty();
}

bool parsePositive(const QString& text, double* number)
{
    bool ok = false;
    *number = text.toDouble(&ok);
    return ok && std::isfinite(*number) && *number > 0 && *number < 1e6;
}

// Takes `--name CONTENT` apart; false when it is wrong.
bool parseOption(const QString& name, const QString& content, CommandLine* command, QString* error)
{
    bool ok = true;
    if (name == QLatin1String("--driver")) {
        ok = parseAddress(content, command);
        *error = QStringLiteral("--driver expects HOST:PORT, not \"%1\"").arg(content);
    } else if (name == QLatin1String("--timeout")) {
        ok = parsePositive(content, &command->timeoutSeconds);
        *error = QStringLiteral("--timeout expects seconds, not \"%1\"").arg(content);
    } else if (name == QLatin1String("--seconds")) {
        ok = parsePositive(content, &command->seconds);
        *error = QStringLiteral("--seconds expects seconds, not \"%1\"").arg(content);
    } else {
        command->count = content.toInt(&ok);
        ok = ok && command->count > 0;
        *error = QStringLiteral("--count expects a number of lines, not \"%1\"").arg(content);
    }
    if (ok)
        error->clear();
    return ok;
}

bool takesContent(const QString& name)
{
    return name == QLatin1String("--driver") || name == QLatin1String("--timeout") ||
           name == QLatin1String("--seconds") || name == QLatin1String("--count");
}

// Options may stand anywhere; behind "--" everything is a word, so that "set PATH -3" works with
// "set -- PATH -3". A negative number is taken for a word as it is.
bool isOption(const QString& argument)
{
    bool isNumber = false;
    argument.left(2).toInt(&isNumber);
    return argument.startsWith(QLatin1Char('-')) && argument.size() > 1 && !isNumber &&
           !argument.startsWith(QLatin1String("-."));
}

bool splitArguments(const QStringList& arguments, QStringList* words, CommandLine* command, bool* help,
                    QString* error)
{
    bool wordsOnly = false;
    for (qsizetype i = 0; i < arguments.size(); ++i) {
        QString name = arguments.at(i);
        if (wordsOnly || !isOption(name)) {
            words->append(name);
            continue;
        }
        if (name == QLatin1String("--")) {
            wordsOnly = true;
            continue;
        }
        if (name == QLatin1String("--help") || name == QLatin1String("-h")) {
            *help = true;
            continue;
        }
        if (name == QLatin1String("--json")) {
            command->json = true;
            continue;
        }
        QString content;
        const qsizetype equals = name.indexOf(QLatin1Char('='));
        const bool attached = equals > 0;
        if (attached) {
            content = name.mid(equals + 1);
            name.truncate(equals);
        }
        if (!takesContent(name)) {
            *error = QStringLiteral("unknown option %1").arg(name);
            return false;
        }
        if (!attached) {
            if (++i >= arguments.size()) {
                *error = QStringLiteral("%1 needs something behind it").arg(name);
                return false;
            }
            content = arguments.at(i);
        }
        if (!parseOption(name, content, command, error))
            return false;
    }
    return true;
}

struct VerbRule
{
    const char* name;
    Verb verb;
    int minimumWords;
    int maximumWords;
    const char* expected;
};

constexpr VerbRule verbRules[] = {
    {"list", Verb::List, 0, 1, "list [PREFIX]"}, {"get", Verb::Get, 1, 1000, "get PATH..."},
    {"set", Verb::Set, 2, 2, "set PATH VALUE"},  {"watch", Verb::Watch, 1, 60, "watch PATH..."},
    {"info", Verb::Info, 1, 1, "info PATH"},
};

bool takeWords(QStringList words, CommandLine* command, QString* error)
{
    if (words.isEmpty()) {
        *error = QStringLiteral("what shall be done? One of list, get, set, watch, info");
        return false;
    }
    const QString name = words.takeFirst();
    for (const VerbRule& rule : verbRules) {
        if (name != QLatin1String(rule.name))
            continue;
        if (words.size() < rule.minimumWords || words.size() > rule.maximumWords) {
            *error = QStringLiteral("expected: %1").arg(QLatin1String(rule.expected));
            return false;
        }
        command->verb = rule.verb;
        if (rule.verb == Verb::Set)
            command->value = words.takeLast();
        command->paths = words;
        return true;
    }
    *error = QStringLiteral("unknown command \"%1\"; one of list, get, set, watch, info").arg(name);
    return false;
}

}  // namespace

bool parseCommandLine(const QStringList& arguments, const QString& defaultDriver, CommandLine* command,
                      QString* error)
{
    *command = CommandLine();
    bool help = false;
    QStringList words;
    if (!splitArguments(arguments, &words, command, &help, error))
        return false;
    if (help) {
        command->verb = Verb::Help;
        return true;
    }
    if (command->host.isEmpty()) {
        command->host = QStringLiteral("127.0.0.1");
        command->port = Link::defaultPort;
        if (!defaultDriver.isEmpty() && !parseAddress(defaultDriver, command)) {
            *error = QStringLiteral("RX_DRIVER expects HOST:PORT, not \"%1\"").arg(defaultDriver);
            return false;
        }
    }
    if (!takeWords(words, command, error))
        return false;
    for (QString& path : command->paths) {
        if (!path.startsWith(QLatin1Char('/'))) {
            *error = QStringLiteral("a path begins with \"/\": \"%1\"").arg(path);
            return false;
        }
        while (path.endsWith(QLatin1Char('/')))
            path.chop(1);
    }
    return true;
}

QString helpText()
{
    return QStringLiteral(
               "rxctl - the values of a receiver driver on the command line\n"
               "\n"
               "  rxctl [OPTIONS] list [PREFIX]     paths at and below PREFIX, a line each\n"
               "  rxctl [OPTIONS] get PATH...       the value; of several, \"PATH<tab>VALUE\" a line\n"
               "  rxctl [OPTIONS] set PATH VALUE    writes and prints the driver's answer\n"
               "  rxctl [OPTIONS] watch PATH...     \"TIME<tab>PATH<tab>VALUE\" for each change at and "
               "below,\n"
               "                                    the present values first\n"
               "  rxctl [OPTIONS] info PATH         type, limits, items, access\n"
               "\n"
               "VALUE is a number with or without unit and prefix (98.5M, 98.5 MHz, 12k), on or off, a "
               "text,\n"
               "or the text, number or key of a selection's item. Put -- before a text that begins with "
               "\"-\".\n"
               "\n"
               "  --driver HOST:PORT  the driver; else from RX_DRIVER, else 127.0.0.1:%1\n"
               "  --json              one JSON object a line\n"
               "  --timeout S         try to connect, and wait for an answer, for S seconds; without it: "
               "one\n"
               "                      attempt, 5 s for an answer\n"
               "  --count N           watch ends after N lines\n"
               "  --seconds S         watch ends after S seconds\n"
               "  --help              this text\n"
               "\n"
               "Exit codes: 0 done (also when the driver clamped), 1 not found, refused, or a VALUE that "
               "does\n"
               "not fit, 2 wrong command line, 3 no connection or lost, 4 no answer in time.\n")
        .arg(Link::defaultPort);
}

}  // namespace RxCtl
