#include <sys/resource.h>

#include <QCoreApplication>
#include <QElapsedTimer>
#include <algorithm>
#include <limits>
#include <vector>

#include "driverprocess.h"
#include "figures.h"
#include "link/vtclient.h"
#include "valueframework/tree.h"
#include "valueframework/value.h"
#include "valueframework/valuehost.h"

namespace Bench {
namespace {

constexpr int repetitions = 3;
constexpr int warmUpMs = 500;
constexpr int measureMs = 3000;
constexpr int patienceMs = 60000;

double processSeconds()
{
    rusage usage;
    getrusage(RUSAGE_SELF, &usage);
    return double(usage.ru_utime.tv_sec + usage.ru_stime.tv_sec) +
           double(usage.ru_utime.tv_usec + usage.ru_stime.tv_usec) / 1e6;
}

// Observes every value, reads it, and sees that none goes backwards.
class Reader : public IObserver
{
public:
    void Update(Observable* subject, TChangeCode code) override
    {
        if (code != CC_VALUE)
            return;
        const auto* value = dynamic_cast<FloatValue*>(subject);
        require(value, "the values are floats");
        ++updates;
        last = std::max(last, value->GetValue());
    }
    qint64 updates = 0;
    double last = 0;
};

class Served : public IObserver
{
public:
    explicit Served(VtClient& client) : m_client(client) {}
    void Update(Observable*, TChangeCode code) override
    {
        connected = connected || code == CC_CONNECTED;
        served = served || (code == CC_HOOKS_SERVED && m_client.HasServedValues());
    }
    bool connected = false;
    bool served = false;

private:
    VtClient& m_client;
};

template <class Condition>
void waitFor(Condition condition, const char* what)
{
    QElapsedTimer timer;
    timer.start();
    while (!condition()) {
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 100);
        require(timer.elapsed() < patienceMs, what);
    }
}

void processFor(int milliseconds)
{
    QEventLoop loop;
    QTimer::singleShot(milliseconds, Qt::PreciseTimer, &loop, &QEventLoop::quit);
    loop.exec();
}

struct Rates
{
    double updatesPerSecond = 0;
    double coreSecondsPerUpdate = 0;
};

Rates measureOnce(const DriverLoad& load)
{
    DriverProcess driver(load);
    ValueHost::CreateTree();
    Rates rates;
    {
        VtClient client;
        Served served(client);
        client.AddObserver(&served);
        client.HookValues("/BENCH,/BENCH", "");
        client.Start(QStringLiteral("127.0.0.1"), driver.port());
        waitFor([&] { return served.served; }, "the hook is served");
        Reader reader;
        const QVector<ValueBase*> values = ValueHost::ValuesBelow(QStringLiteral("/BENCH"));
        require(values.size() == load.values, "every value is there");
        for (ValueBase* value : values)
            value->AddObserver(&reader);
        processFor(warmUpMs);
        const qint64 updatesBefore = reader.updates;
        const double secondsBefore = processSeconds();
        QElapsedTimer timer;
        timer.start();
        processFor(measureMs);
        const double wall = double(timer.nsecsElapsed()) / 1e9;
        const double used = processSeconds() - secondsBefore;
        const double updates = double(reader.updates - updatesBefore);
        require(updates > 0 && reader.last > 0, "updates arrive");
        rates.updatesPerSecond = updates / wall;
        rates.coreSecondsPerUpdate = used / updates;
        for (ValueBase* value : values)
            value->DeleteObserver(&reader);
    }
    ValueHost::DestroyTree();
    return rates;
}

double snapshotSeconds(int values)
{
    DriverLoad load;
    load.values = values;
    DriverProcess driver(load);
    ValueHost::CreateTree();
    double seconds = 0;
    {
        VtClient client;
        Served served(client);
        client.AddObserver(&served);
        client.Start(QStringLiteral("127.0.0.1"), driver.port());
        waitFor([&] { return served.connected; }, "the driver is connected");
        QElapsedTimer timer;
        timer.start();
        client.HookValues("/BENCH,/BENCH", "");
        waitFor([&] { return served.served; }, "the hook is served");
        seconds = double(timer.nsecsElapsed()) / 1e9;
        const ValueBase* last = Tree::Instance()->FindValue(QStringLiteral("/BENCH/V%1").arg(values - 1));
        require(ValueHost::CountValues() == values && last && last->GetState() == VS_USABLE,
                "every value is usable");
    }
    ValueHost::DestroyTree();
    return seconds;
}

double medianSnapshot(int values)
{
    std::vector<double> seconds;
    for (int i = 0; i < repetitions; ++i)
        seconds.push_back(snapshotSeconds(values));
    std::sort(seconds.begin(), seconds.end());
    return seconds[seconds.size() / 2];
}

}  // namespace

void measureUpdates()
{
    constexpr double rate = 200000;
    constexpr int values = 10000;
    double core = std::numeric_limits<double>::max();
    double atRate = 0;
    double full = 0;
    for (int i = 0; i < repetitions; ++i) {
        const Rates paced = measureOnce({values, 0, rate});
        // The driver may be late on a busy machine; then less is delivered, and this is not the rate
        // that the figure is about.
        if (paced.updatesPerSecond > 0.9 * rate && paced.updatesPerSecond < 1.1 * rate &&
            paced.coreSecondsPerUpdate * rate < core) {
            core = paced.coreSecondsPerUpdate * rate;
            atRate = paced.updatesPerSecond;
        }
        full = std::max(full,
                        measureOnce({values, 0, std::numeric_limits<double>::infinity()}).updatesPerSecond);
    }
    require(atRate > 0, "200,000 updates a second were delivered in at least one run");
    print("link.core_at_200k", core, "core", 0.15, Sense::Max);
    print("link.delivered_at_200k", atRate, "updates/s", 0, Sense::Info);
    print("link.updates_per_second", full, "updates/s", 1e6, Sense::Min);
}

void measureSnapshots()
{
    print("link.snapshot_10000", medianSnapshot(10000), "s", 0.3, Sense::Max);
    print("link.snapshot_100000", medianSnapshot(100000), "s", 3, Sense::Max);
}

}  // namespace Bench
