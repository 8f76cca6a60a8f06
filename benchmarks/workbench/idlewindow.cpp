// What a window costs that nobody touches: the real workbench with one live channel on the real
// driver, its level moving 20 times a second. Shares of one core, from the scheduler's own account.

#include <unistd.h>

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QThread>
#include <QVector>
#include <algorithm>
#include <cstdio>

#include "station.h"

using namespace RxTest;

namespace {

constexpr int rounds = 3;
constexpr unsigned long roundSeconds = 8;
constexpr unsigned long settleSeconds = 3;
constexpr double shownBound = 3.0;   // % of a core
constexpr double hiddenBound = 0.5;  // % of a core
const char levelPath[] = "/RX1/DDC/DDC1/LevelValue";

// Time on a processor of all threads so far, ns.
qint64 processorTime(qint64 process)
{
    qint64 sum = 0;
    const QDir tasks(QString("/proc/%1/task").arg(process));
    for (const QString& task : tasks.entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
        QFile file(tasks.filePath(task + "/schedstat"));
        if (file.open(QIODevice::ReadOnly)) {
            sum += file.readAll().split(' ').value(0).toLongLong();
        }
    }
    return sum;
}

// Median share of one core over some rounds, %.
double shareOf(qint64 process)
{
    QThread::sleep(settleSeconds);
    QVector<double> shares;
    for (int round = 0; round < rounds; ++round) {
        QElapsedTimer elapsed;
        elapsed.start();
        const qint64 before = processorTime(process);
        QThread::sleep(roundSeconds);
        shares << 100.0 * static_cast<double>(processorTime(process) - before) /
                      static_cast<double>(elapsed.nsecsElapsed());
    }
    std::sort(shares.begin(), shares.end());
    return shares.at(rounds / 2);
}

void tell(const char* name, double value, double bound, const char* sense)
{
    std::printf(
        "{\"name\": \"%s\", \"value\": %.3f, \"unit\": \"%% of core\", \"bound\": %g, \"sense\": \"%s\"}\n",
        name, value, bound, sense);
    std::fflush(stdout);
}

int fail(const QString& why)
{
    std::fprintf(stderr, "%s\n", qPrintable(why));
    return 1;
}

}  // namespace

int main(int argc, char** argv)
{
    QCoreApplication application(argc, argv);
    Station station;
    if (!station.startDriver()) {
        return fail("the driver does not start: " + station.driver().output());
    }
    Window* window = station.openChannel();
    if (window == nullptr) {
        return fail("the window does not come up: " + station.finish());
    }
    // An emitter whose level moves: a bar that stands still would measure nothing.
    station.ctl({"set", "/RX1/DDC/DDC1/Frequency", "96.4M"});
    const QString first = window->pilot.valueText(levelPath);
    if (!until([&] { return window->pilot.valueText(levelPath) != first; })) {
        return fail("the level does not move");
    }

    tell("idle window, one live channel", shareOf(window->program.id()), shownBound, "max");
    const Target main{{"class", "DdcGuiMain"}};
    window->pilot.show(main, "minimized");
    tell("the same, minimized", shareOf(window->program.id()), hiddenBound, "max");
    window->pilot.show(main, "hidden");
    tell("the same, hidden", shareOf(window->program.id()), hiddenBound, "max");
    tell("driver with the built-in scene", shareOf(station.driver().id()), 0, "info");

    const QString second = window->pilot.valueText(levelPath);
    if (!until([&] { return window->pilot.valueText(levelPath) != second; })) {
        return fail("the level of the hidden window does not move");
    }
    const QString faults = station.finish();
    return faults.isEmpty() ? 0 : fail(faults);
}
