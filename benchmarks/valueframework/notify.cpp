// A changed number told to eight listeners: by a value of the tree to its observers, by a QObject to
// connected slots, and by boost::signals2. Each listener adds the number to a sum, which is checked.

#include <QObject>
#include <boost/signals2.hpp>
#include <cstdlib>
#include <memory>
#include <vector>

#include "benchmarks/valueframework/measure.h"
#include "valueframework/iobserver.h"
#include "valueframework/value.h"
#include "valueframework/valueapply.h"
#include "valueframework/valuehost.h"

namespace {

constexpr int listeners = 8;
constexpr int callsPerRound = 200000;
constexpr int rounds = 21;

class Watcher : public IObserver
{
public:
    explicit Watcher(FloatValue* value) : m_value(value) {}
    void Update(Observable*, TChangeCode code) override
    {
        if (code == CC_VALUE) {
            sum += m_value->GetValue();
        }
    }
    double sum = 0;

private:
    FloatValue* m_value;
};

class Sender : public QObject
{
    Q_OBJECT
signals:
    void changed(double value);
};

class Receiver : public QObject
{
    Q_OBJECT
public:
    double sum = 0;
public slots:
    void take(double value) { sum += value; }
};

double ExpectedSum()
{
    double sum = 0;
    for (int i = 1; i <= callsPerRound; ++i) {
        sum += i;
    }
    return sum * rounds;
}

void Check(double sum, const char* who)
{
    if (sum != ExpectedSum()) {
        std::fprintf(stderr, "notify: a listener of %s added up %.0f instead of %.0f\n", who, sum,
                     ExpectedSum());
        std::exit(1);
    }
}

struct Times
{
    std::vector<double> tree, applied, qobject, signals2;
};

Times Run()
{
    ValueDescription description;
    description.type = ValueType::Float;
    auto* value = static_cast<FloatValue*>(ValueHost::Create("/RX1/FREQUENCY", description, 0.0));
    auto* mirrored = static_cast<FloatValue*>(ValueHost::Create("/RX1/LevelValue", description, 0.0));
    ValueHost::SetMirrored(*mirrored, true);
    Sender sender;
    boost::signals2::signal<void(double)> signal;
    std::vector<std::unique_ptr<Watcher>> watchers, mirrorWatchers;
    std::vector<std::unique_ptr<Receiver>> receivers, peers;
    for (int i = 0; i < listeners; ++i) {
        watchers.push_back(std::make_unique<Watcher>(value));
        value->AddObserver(watchers.back().get());
        mirrorWatchers.push_back(std::make_unique<Watcher>(mirrored));
        mirrored->AddObserver(mirrorWatchers.back().get());
        receivers.push_back(std::make_unique<Receiver>());
        QObject::connect(&sender, &Sender::changed, receivers.back().get(), &Receiver::take);
        peers.push_back(std::make_unique<Receiver>());
        Receiver* peer = peers.back().get();
        signal.connect([peer](double number) { peer->take(number); });
    }
    Times times;
    for (int round = 0; round < rounds; ++round) {
        times.tree.push_back(Measure::NanosecondsPerCall(callsPerRound, [value] {
            for (int i = 1; i <= callsPerRound; ++i) {
                value->SetValue(i, nullptr);
            }
        }));
        times.applied.push_back(Measure::NanosecondsPerCall(callsPerRound, [mirrored] {
            for (int i = 1; i <= callsPerRound; ++i) {
                ValueHost::ApplyFloat(*mirrored, i, i, nullptr);
            }
        }));
        times.qobject.push_back(Measure::NanosecondsPerCall(callsPerRound, [&sender] {
            for (int i = 1; i <= callsPerRound; ++i) {
                emit sender.changed(i);
            }
        }));
        times.signals2.push_back(Measure::NanosecondsPerCall(callsPerRound, [&signal] {
            for (int i = 1; i <= callsPerRound; ++i) {
                signal(i);
            }
        }));
    }
    for (int i = 0; i < listeners; ++i) {
        Check(watchers[std::size_t(i)]->sum, "the value");
        Check(mirrorWatchers[std::size_t(i)]->sum, "the mirrored value");
        Check(receivers[std::size_t(i)]->sum, "the QObject");
        Check(peers[std::size_t(i)]->sum, "boost::signals2");
    }
    return times;
}

}  // namespace

int main()
{
    ValueHost::CreateTree();
    const Times times = Run();
    const double tree = Measure::Best(times.tree);
    Measure::Print("notify.ratio_qobject", tree / Measure::Best(times.qobject), "", 0.4, "max");
    Measure::Print("notify.ratio_signals2", tree / Measure::Best(times.signals2), "", 0.25, "max");
    Measure::Print("notify.value", tree, "ns", 0, "info");
    Measure::Print("notify.apply", Measure::Best(times.applied), "ns", 0, "info");
    Measure::Print("notify.qobject", Measure::Best(times.qobject), "ns", 0, "info");
    Measure::Print("notify.signals2", Measure::Best(times.signals2), "ns", 0, "info");
    ValueHost::DestroyTree();
    return 0;
}

#include "notify.moc"
