#pragma once

#include <QString>
#include <QStringList>

namespace RxCtl {

// Exit codes, for scripts.
enum ExitCode : int
{
    Done = 0,
    NotDone = 1,       // not found, refused, or a text that does not fit
    Usage = 2,         // the command line cannot be understood
    NoConnection = 3,  // no driver there, or lost on the way
    NoAnswer = 4       // connected, but the answer did not come in time
};

enum class Verb
{
    List,
    Get,
    Set,
    Watch,
    Info,
    Help
};

struct CommandLine
{
    Verb verb = Verb::Help;
    QString host;
    quint16 port = 0;
    QStringList paths;  // one for Set and Info; one or none for List
    QString value;      // of Set
    bool json = false;
    double timeoutSeconds = 0;  // 0: one attempt to connect, 5 s for an answer
    int count = 0;              // of Watch: lines; 0: no end
    double seconds = 0;         // of Watch; 0: no end
};

// `arguments` without the program's name; `defaultDriver` is the content of RX_DRIVER. False with
// `error` for the operator.
bool parseCommandLine(const QStringList& arguments, const QString& defaultDriver, CommandLine* command,
                      QString* error);

QString helpText();

}  // namespace RxCtl
