#include <QCoreApplication>
#include <cstdio>

#include "receiver/main/driver.h"
#include "receiver/main/driveroptions.h"
#include "receiver/main/endsignals.h"
#include "receiver/sources/opensource.h"

using namespace Receiver;

namespace {

void printLine(std::FILE* stream, const QString& line)
{
    std::fprintf(stream, "rxdriver: %s\n", qPrintable(line));
    std::fflush(stream);
}

std::unique_ptr<IqSource> openSource(const DriverOptions& options, QString* error)
{
    if (options.recordingFile.isEmpty())
        return openScene(options.seed);
    return openRecording(options.recordingFile, options.recording, error);
}

}  // namespace

int main(int argc, char** argv)
{
    QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("rxdriver"));

    const ParsedOptions parsed = parseDriverOptions(QCoreApplication::arguments());
    if (!parsed.options) {
        if (parsed.exitCode != 0)
            printLine(stderr, parsed.text);
        else
            std::fputs(qPrintable(parsed.text), stdout);
        return parsed.exitCode;
    }

    QString error;
    std::unique_ptr<IqSource> source = openSource(*parsed.options, &error);
    if (!source) {
        printLine(stderr, error.simplified());
        return badUseExitCode;
    }
    EndSignals endSignals;
    QObject::connect(&endSignals, &EndSignals::asked, &application, &QCoreApplication::quit);

    Driver driver(*parsed.options, std::move(source));
    QObject::connect(&driver, &Driver::sourceFailed, &application, [](const QString& reason) {
        printLine(stderr, QStringLiteral("the source stopped: ") + reason);
    });
    if (!driver.listen(&error)) {
        printLine(stderr, error.simplified());
        return badUseExitCode;
    }
    printLine(stdout, QStringLiteral("listening on %1").arg(driver.address()));
    driver.start();
    return QCoreApplication::exec();
}
