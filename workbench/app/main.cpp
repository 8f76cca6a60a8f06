// rxworkbench: the reference host. Runs one application, the one that its configuration describes.

#include <QByteArray>
#include <QCoreApplication>
#include <cstdio>

#include "app/appoptions.h"
#include "app/endsignals.h"
#include "app/workbench.h"
#include "startup/kestapplication.h"

namespace {

constexpr int badInputCode = 2;

void print(FILE* stream, const QString& text)
{
    std::fputs(text.toLocal8Bit().constData(), stream);
    std::fputc('\n', stream);
}

// What the toolkit reads before there is an application object.
bool prepareDisplay(const AppOptions& options)
{
    if (options.scale > 0) {
        qputenv("QT_SCALE_FACTOR", QByteArray::number(options.scale));
    }
    if (options.headless) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
        return true;
    }
    return qEnvironmentVariableIsSet("DISPLAY") || qEnvironmentVariableIsSet("WAYLAND_DISPLAY") ||
           qEnvironmentVariableIsSet("QT_QPA_PLATFORM");
}

}  // namespace

int main(int argc, char** argv)
{
    QStringList arguments;
    for (int i = 1; i < argc; ++i) {
        arguments << QString::fromLocal8Bit(argv[i]);
    }
    AppOptions options;
    QString error;
    if (!parseAppOptions(arguments, &options, &error)) {
        print(stderr, "rxworkbench: " + error);
        return badInputCode;
    }
    if (options.help) {
        print(stdout, appHelp().trimmed());
        return 0;
    }
    if (options.version) {
        print(stdout, "rxworkbench " RX_VERSION);
        return 0;
    }
    if (!prepareDisplay(options)) {
        print(stderr,
              "rxworkbench: there is no display (neither DISPLAY nor WAYLAND_DISPLAY is set); "
              "start with --headless");
        return badInputCode;
    }

    // The toolkit gets the program's name only: its own options are no part of ours.
    int toolkitArguments = 1;
    KestApplication application(toolkitArguments, argv);
    QCoreApplication::setApplicationName("rxworkbench");
    QCoreApplication::setApplicationVersion(RX_VERSION);
    Workbench workbench(&application, options);
    const EndSignals signalsToEnd([&workbench] { workbench.end(); });
    return workbench.run();
}
