// The launcher: a driver, the windows on it, and nothing left of either afterwards.

#include <signal.h>
#include <sys/socket.h>
#include <unistd.h>

#include <QCoreApplication>
#include <QDir>
#include <QSocketNotifier>
#include <QTimer>
#include <cstdio>

#include "station/child.h"
#include "station/launcher.h"
#include "station/options.h"

namespace {

int signalPipe[2] = {-1, -1};

void onSignal(int)
{
    const char byte = 1;
    // Nothing could be done about a full pipe, and a full pipe has been heard of anyway.
    [[maybe_unused]] const ssize_t written = write(signalPipe[0], &byte, 1);
}

bool catchSignals()
{
    if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0, signalPipe) != 0) {
        return false;
    }
    struct sigaction action = {};
    action.sa_handler = onSignal;
    sigemptyset(&action.sa_mask);
    action.sa_flags = SA_RESTART;
    return sigaction(SIGINT, &action, nullptr) == 0 && sigaction(SIGTERM, &action, nullptr) == 0 &&
           sigaction(SIGHUP, &action, nullptr) == 0;
}

}  // namespace

int main(int argc, char** argv)
{
    QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName("rxstation");

    StationOptions options;
    QString error;
    if (!parseStationOptions(application.arguments().mid(1), &options, &error)) {
        say(error);
        return 2;
    }
    if (options.help) {
        std::fputs(stationHelp().toLocal8Bit().constData(), stdout);
        return 0;
    }
    const QString programs = QCoreApplication::applicationDirPath();
    Launcher launcher(options, programs, QDir(programs).filePath("../config"));
    QObject::connect(
        &launcher, &Launcher::finished, &application, [](int exitCode) { QCoreApplication::exit(exitCode); },
        Qt::QueuedConnection);
    if (!catchSignals()) {
        say("cannot listen for signals");
        return 1;
    }
    QSocketNotifier notifier(signalPipe[1], QSocketNotifier::Read);
    QObject::connect(&notifier, &QSocketNotifier::activated, &launcher, [&launcher] {
        char byte;
        while (read(signalPipe[1], &byte, 1) > 0) {
        }
        launcher.end();
    });
    if (!launcher.start()) {
        return 2;
    }
    return QCoreApplication::exec();
}
