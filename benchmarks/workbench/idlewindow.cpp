// What a window costs that nobody touches: the real workbench with one live channel on the real
// driver, its level moving 20 times a second and its panorama out of sight. Shares of one core.

#include <QCoreApplication>

#include "processshare.h"
#include "station.h"

using namespace RxTest;

namespace {

constexpr double shownBound = 3.0;   // % of a core
constexpr double hiddenBound = 0.5;  // % of a core
const char levelPath[] = "/RX1/DDC/DDC1/LevelValue";

void tell(const char* name, const Program& program, double bound, const char* sense)
{
    Measured::tell(name, 100 * Measured::shareOf(program.id()), "% of core", bound, sense);
}

}  // namespace

int main(int argc, char** argv)
{
    QCoreApplication application(argc, argv);
    Station station;
    if (!station.startDriver()) {
        return Measured::fail("the driver does not start: " + station.driver().output());
    }
    Window* window = station.openChannel();
    if (window == nullptr) {
        return Measured::fail("the window does not come up: " + station.finish());
    }
    // An emitter whose level moves: a bar that stands still would measure nothing.
    station.ctl({"set", "/RX1/DDC/DDC1/Frequency", "96.4M"});
    const QString first = window->pilot.valueText(levelPath);
    if (!until([&] { return window->pilot.valueText(levelPath) != first; })) {
        return Measured::fail("the level does not move");
    }

    // The live panorama has figures of its own.
    window->pilot.show({{"class", "DdcIfSpectrum"}}, "widgetHidden");
    tell("idle window, panorama out of sight", window->program, shownBound, "max");
    const Target main{{"class", "DdcGuiMain"}};
    window->pilot.show(main, "minimized");
    tell("the same, minimized", window->program, hiddenBound, "max");
    window->pilot.show(main, "hidden");
    tell("the same, hidden", window->program, hiddenBound, "max");
    tell("driver with the built-in scene", station.driver(), 0, "info");

    const QString second = window->pilot.valueText(levelPath);
    if (!until([&] { return window->pilot.valueText(levelPath) != second; })) {
        return Measured::fail("the level of the hidden window does not move");
    }
    const QString faults = station.finish();
    return faults.isEmpty() ? 0 : Measured::fail(faults);
}
