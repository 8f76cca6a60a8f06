// What the live panorama costs, and how old it is when it is seen: the real workbench on the real
// driver with the built-in scene, a pane of 1200 x 600 pixels, 30 frames a second.

#include <QCoreApplication>
#include <QJsonArray>
#include <QSize>

#include "processshare.h"
#include "station.h"

using namespace RxTest;

namespace {

constexpr unsigned long latencySeconds = 20;
constexpr double wantedFrames = 25;  // a second, at least; fewer would measure another thing
constexpr int paneWidth = 1200;
constexpr int paneHeight = 600;
constexpr int streamLive = 3;

constexpr double latencyBound = 40;  // ms
constexpr double coreBound = 0.15;
constexpr double hiddenBound = 0.005;

const Target mainWindow{{"class", "DdcGuiMain"}};
const Target pane{{"class", "DdcIfSpectrum"}};

QSize sizeOf(Pilot& pilot, const Target& target)
{
    const QJsonArray rect = pilot.widget(target)["rect"].toArray();
    return QSize(rect.at(2).toInt(), rect.at(3).toInt());
}

// Gives the pane its size: the window is as much larger as it is now.
bool sizePane(Pilot& pilot)
{
    for (int i = 0; i < 5 && sizeOf(pilot, pane) != QSize(paneWidth, paneHeight); ++i) {
        const QSize wanted = sizeOf(pilot, mainWindow) + QSize(paneWidth, paneHeight) - sizeOf(pilot, pane);
        pilot.resize(mainWindow, wanted.width(), wanted.height());
        until([&] { return sizeOf(pilot, pane) == QSize(paneWidth, paneHeight); }, 2000);
    }
    return sizeOf(pilot, pane) == QSize(paneWidth, paneHeight);
}

// The ages of the frames that were painted, ms after their last sample.
QVector<double> agesOfFrames(Pilot& pilot)
{
    pilot.ask({{"cmd", "paintages"}, {"how", "begin"}});
    QThread::sleep(latencySeconds);
    QVector<double> ages;
    for (const QJsonValue& age : pilot.ask({{"cmd", "paintages"}, {"how", "end"}})["ages"].toArray()) {
        ages << age.toDouble();
    }
    std::sort(ages.begin(), ages.end());
    return ages;
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
    Pilot& pilot = window->pilot;
    if (!sizePane(pilot)) {
        return Measured::fail("the pane does not take its size");
    }
    const auto live = [&] {
        const QJsonObject scan = pilot.scan();
        return scan["stream"].toInt() == streamLive && !scan["stale"].toBool();
    };
    if (!until(live)) {
        return Measured::fail("the panorama does not come: " + pilot.scan()["message"].toString());
    }

    const QVector<double> ages = agesOfFrames(pilot);
    const double rate = double(ages.size()) / latencySeconds;
    if (rate < wantedFrames) {
        return Measured::fail(QString("only %1 frames a second are painted").arg(rate));
    }
    Measured::tell("spectrum.latency_median", ages.at(ages.size() / 2), "ms", latencyBound, "max");
    Measured::tell("spectrum.latency_p95", ages.at(ages.size() * 95 / 100), "ms", 0, "info");
    Measured::tell("spectrum.frames_painted", rate, "1/s", 0, "info");

    Measured::tell("spectrum.workbench_core", Measured::shareOf(window->program.id()), "of core", coreBound,
                   "max");
    Measured::tell("spectrum.driver_core", Measured::shareOf(station.driver().id()), "of core", 0, "info");
    pilot.show(mainWindow, "hidden");
    Measured::tell("spectrum.hidden_core", Measured::shareOf(window->program.id()), "of core", hiddenBound,
                   "max");
    pilot.show(mainWindow, "shown");
    if (!until(live)) {
        return Measured::fail("the panorama does not come back");
    }
    const QString faults = station.finish();
    return faults.isEmpty() ? 0 : Measured::fail(faults);
}
