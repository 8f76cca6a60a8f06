#include <QCoreApplication>
#include <cstdio>

#include "tools/commands.h"

int main(int argc, char** argv)
{
    QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("rxctl"));
    RxCtl::CommandLine command;
    QString error;
    if (!RxCtl::parseCommandLine(QCoreApplication::arguments().mid(1), qEnvironmentVariable("RX_DRIVER"),
                                 &command, &error)) {
        std::fprintf(stderr, "rxctl: %s\nrxctl --help tells more.\n", qUtf8Printable(error));
        return RxCtl::Usage;
    }
    if (command.verb == RxCtl::Verb::Help) {
        std::fputs(qUtf8Printable(RxCtl::helpText()), stdout);
        return RxCtl::Done;
    }
    RxCtl::Commands commands(command);
    // Queued: the command may be carried out before the event loop runs.
    QObject::connect(&commands, &RxCtl::Commands::finished, &application, &QCoreApplication::exit,
                     Qt::QueuedConnection);
    commands.start();
    return QCoreApplication::exec();
}
