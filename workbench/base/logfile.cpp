#include <QDateTime>
#include <QMutex>
#include <QMutexLocker>
#include <atomic>

#include "base/basehost.h"
#include "base/rotatinglog.h"

// Qt's messages into the rotating file, and on to whoever handled them before.
namespace {

RotatingLog& Log()
{
    static RotatingLog* const log = new RotatingLog;  // messages may come until the process is gone
    return *log;
}

std::atomic<QtMessageHandler> formerHandler{nullptr};

// What is written while a message is written (a warning of the file's own) does not go into the file.
thread_local bool insideHandler = false;

const char* NameOf(QtMsgType type)
{
    switch (type) {
        case QtDebugMsg:
            return "debug";
        case QtInfoMsg:
            return "info";
        case QtWarningMsg:
            return "warning";
        case QtCriticalMsg:
            return "critical";
        case QtFatalMsg:
            return "fatal";
    }
    return "unknown";
}

void HandleMessage(QtMsgType type, const QMessageLogContext& context, const QString& message)
{
    if (!insideHandler) {
        insideHandler = true;
        const QString time = QDateTime::currentDateTimeUtc().toString(Qt::ISODateWithMs);
        Log().Write(time + QLatin1Char(' ') + QLatin1String(NameOf(type)) + QLatin1Char(' ') +
                    QLatin1String(context.category ? context.category : "default") + QLatin1Char(' ') +
                    message);
        insideHandler = false;
    }
    if (const QtMessageHandler former = formerHandler.load())
        former(type, context, message);
}

QMutex installMutex;
bool installed = false;  // stands somewhere in the chain of handlers

void Install()
{
    const QMutexLocker lock(&installMutex);
    if (installed)
        return;
    installed = true;
    formerHandler.store(qInstallMessageHandler(HandleMessage));
}

// A handler that was put over this one meanwhile stays, and goes on reaching the former one through it.
void Uninstall()
{
    const QMutexLocker lock(&installMutex);
    if (!installed)
        return;
    const QtMessageHandler current = qInstallMessageHandler(formerHandler.load());
    if (current == HandleMessage)
        installed = false;
    else
        qInstallMessageHandler(current);
}

}  // namespace

bool BaseHost::OpenLog(const QString& fileName, qint64 maximumBytes, int files, QString* reason)
{
    if (fileName.isEmpty()) {
        Uninstall();
        Log().Close();
        return true;
    }
    if (!Log().Open(fileName, maximumBytes, files, reason)) {
        Uninstall();
        return false;
    }
    Install();
    return true;
}
