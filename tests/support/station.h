#pragma once

#include <QString>
#include <QStringList>
#include <QTemporaryDir>
#include <memory>
#include <vector>

#include "pilot.h"
#include "program.h"

namespace RxTest {

// A window of the test: which channel its configuration asks for, and what else differs.
struct WindowSetup
{
    QString ddc = "DDC1";           // empty: the operator always chooses
    double connectionTimeout = 60;  // seconds
    QStringList arguments;          // further ones
    QString driver;                 // "HOST:PORT"; empty: the station's
};

// A running workbench with its operator.
struct Window
{
    Program program;
    Pilot pilot;
    QString state;  // folder of its log and journal

    Window(const QString& marker, const QProcessEnvironment& environment, const QString& socket)
        : program(marker, environment), pilot(socket)
    {}
};

// An isolated place to test in: a driver and windows of its own, with their files in a folder of
// their own. Ends all of it, and tells what is left over or went wrong.
class Station
{
public:
    Station();
    ~Station();

    // The real rxdriver on a free loopback port, or again on the port it had. False with `fault()`.
    bool startDriver(const QStringList& arguments = {"--scene", "7"});
    void killDriver();  // as a crash would
    Program& driver() { return *m_driver; }
    QString driverAddress() const;

    // The real rxworkbench; returns when its test plug-in answers, null when it does not.
    Window* openWindow(const WindowSetup& setup = {});

    // The same with the channel's window on the screen.
    Window* openChannel(const WindowSetup& setup = {});

    // rxctl on the station's driver; its standard output, trimmed. Empty when it failed.
    QString ctl(const QStringList& arguments, int* exitCode = nullptr);

    QString folder() const { return m_folder.path(); }
    QString writeConfiguration(const WindowSetup& setup, const QString& socket);
    QString marker() const { return m_marker; }
    QProcessEnvironment environment() const;

    // Ends windows, then the driver; what was not as it should be, empty when all was well.
    QString finish();

private:
    QTemporaryDir m_folder;
    QString m_marker;
    std::unique_ptr<Program> m_driver;
    std::vector<std::unique_ptr<Window>> m_windows;
    int m_port = 0;
    int m_count = 0;
    QStringList m_faults;
    bool m_finished = false;
};

// Where an operator finds things in the window of a channel.
namespace At {
Target named(const QString& name);
Target button(const QString& text);
}  // namespace At

}  // namespace RxTest
