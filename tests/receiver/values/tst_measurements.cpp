#include <QTest>
#include <limits>

#include "receiver/values/authority.h"
#include "receiver/values/measurements.h"

using namespace Receiver;
using Link::AnswerKind;
using Link::ValueStatus;

namespace {

// Counts the events of one value.
class Events : public StoreListener
{
public:
    Events(ValueStore& store, ValueId watched) : m_store(store), m_watched(watched)
    {
        store.addListener(this);
    }
    ~Events() override { m_store.removeListener(this); }
    void valueChanged(ValueId id) override
    {
        if (id == m_watched)
            seen << qMakePair(m_store.flag(id), m_store.time(id));
    }
    void descriptionChanged(ValueId) override {}
    void valueRemoved(ValueId) override {}

    QVector<QPair<bool, qint64>> seen;

private:
    ValueStore& m_store;
    ValueId m_watched;
};

class Bench
{
public:
    Bench() : authority(store, setup()), measurements(store, authority.paths(), authority.channels()) {}

    static ReceiverSetup setup()
    {
        ReceiverSetup setup;
        setup.channels = Paths::channelNames(2);
        setup.pulseChannels.clear();
        setup.source = {5e6, 98e6, 98e6, 98e6};
        return setup;
    }
    ValueId id(const QString& path) const { return store.find("/RX1" + path); }
    void write(const QString& path, const Link::Content& content)
    {
        QCOMPARE(store.write(id(path), content, 1).kind, AnswerKind::Accepted);
    }

    ValueStore store;
    Authority authority;
    Measurements measurements;
};

}  // namespace

class TestMeasurements : public QObject
{
    Q_OBJECT
private slots:
    void levelsStandWithTheTimeOfTheirMeasurement();
    void aLevelOutsideTheBandIsNotAvailable();
    void aLevelThatIsNoNumberIsNotAvailable();
    void reportsOfAnotherLengthAreHarmless();
    void atTheEndTheLastLevelsStayButAreNotAvailable();
    void aStoppedDriverShowsNoLevelsUntilItRunsAgain();
    void withoutSquelchTheChannelIsOpen();
    void theSquelchOpensAndClosesWithTheLevel();
    void theThresholdItselfOpens();
    void eachOpeningAndClosingIsOneEvent();
    void aNewThresholdCountsAtOnce();
    void switchingTheSquelchOffOpens();
};

void TestMeasurements::levelsStandWithTheTimeOfTheirMeasurement()
{
    Bench bench;
    QCOMPARE(bench.store.status(bench.id("/DDC/DDC1/LevelValue")), ValueStatus::NotAvailable);
    bench.measurements.report(1000000, {41.5f, -3.25f, 12.0f});
    QCOMPARE(bench.store.number(bench.id("/DDC/DDC1/LevelValue")), 41.5);
    QCOMPARE(bench.store.number(bench.id("/DDC/DDC2/LevelValue")), -3.25);
    QCOMPARE(bench.store.number(bench.id("/DDC/MAIN/LevelValue")), 12.0);
    QCOMPARE(bench.store.time(bench.id("/DDC/MAIN/LevelValue")), qint64(1000000));
    QCOMPARE(bench.store.status(bench.id("/DDC/DDC1/LevelValue")), ValueStatus::Usable);
}

void TestMeasurements::aLevelOutsideTheBandIsNotAvailable()
{
    Bench bench;
    bench.measurements.report(1, {41.5f, 1.0f, 1.0f});
    bench.measurements.report(2, {Measurements::outsideBand, 1.0f, 1.0f});
    QCOMPARE(bench.store.status(bench.id("/DDC/DDC1/LevelValue")), ValueStatus::NotAvailable);
    QCOMPARE(bench.store.status(bench.id("/DDC/DDC2/LevelValue")), ValueStatus::Usable);
    bench.measurements.report(3, {40.0f, 1.0f, 1.0f});
    QCOMPARE(bench.store.status(bench.id("/DDC/DDC1/LevelValue")), ValueStatus::Usable);
}

void TestMeasurements::aLevelThatIsNoNumberIsNotAvailable()
{
    Bench bench;
    bench.measurements.report(
        1, {std::numeric_limits<float>::quiet_NaN(), -std::numeric_limits<float>::infinity(), 1.0f});
    QCOMPARE(bench.store.status(bench.id("/DDC/DDC1/LevelValue")), ValueStatus::NotAvailable);
    QCOMPARE(bench.store.status(bench.id("/DDC/DDC2/LevelValue")), ValueStatus::NotAvailable);
}

void TestMeasurements::reportsOfAnotherLengthAreHarmless()
{
    Bench bench;
    bench.measurements.report(1, {});
    bench.measurements.report(2, {5.0f});
    bench.measurements.report(3, {6.0f, 6.0f, 6.0f, 6.0f, 6.0f});
    QCOMPARE(bench.store.number(bench.id("/DDC/DDC1/LevelValue")), 6.0);
    QCOMPARE(bench.store.number(bench.id("/DDC/MAIN/LevelValue")), 6.0);
}

void TestMeasurements::atTheEndTheLastLevelsStayButAreNotAvailable()
{
    Bench bench;
    bench.measurements.report(1, {41.5f, 2.0f, 3.0f});
    bench.measurements.end();
    QCOMPARE(bench.store.number(bench.id("/DDC/DDC1/LevelValue")), 41.5);
    for (const char* path : {"/DDC/DDC1/LevelValue", "/DDC/DDC2/LevelValue", "/DDC/MAIN/LevelValue"})
        QCOMPARE(bench.store.status(bench.id(path)), ValueStatus::NotAvailable);
}

void TestMeasurements::aStoppedDriverShowsNoLevelsUntilItRunsAgain()
{
    Bench bench;
    bench.measurements.report(1, {41.5f, 2.0f, 3.0f});
    bench.write("/DRVCOMMANDS", DriverCommand::stop);
    QCOMPARE(bench.store.status(bench.id("/DDC/DDC1/LevelValue")), ValueStatus::NotAvailable);
    bench.measurements.report(2, {50.0f, 2.0f, 3.0f});
    QCOMPARE(bench.store.number(bench.id("/DDC/DDC1/LevelValue")), 41.5);
    bench.write("/DRVCOMMANDS", DriverCommand::fixedFrequency);
    bench.measurements.report(3, {50.0f, 2.0f, 3.0f});
    QCOMPARE(bench.store.number(bench.id("/DDC/DDC1/LevelValue")), 50.0);
    QCOMPARE(bench.store.status(bench.id("/DDC/DDC1/LevelValue")), ValueStatus::Usable);
}

void TestMeasurements::withoutSquelchTheChannelIsOpen()
{
    Bench bench;
    bench.measurements.report(1, {-50.0f, -50.0f, -50.0f});
    QVERIFY(bench.store.flag(bench.id("/DDC/DDC1/SquelchOpen")));
}

void TestMeasurements::theSquelchOpensAndClosesWithTheLevel()
{
    Bench bench;
    bench.write("/DDC/DDC1/SquelchValue", 30.0);
    bench.write("/DDC/DDC1/SquelchState", true);
    bench.measurements.report(1000, {10.0f, 10.0f, 10.0f});
    QVERIFY(!bench.store.flag(bench.id("/DDC/DDC1/SquelchOpen")));
    QCOMPARE(bench.store.time(bench.id("/DDC/DDC1/SquelchOpen")), qint64(1000));
    QVERIFY(bench.store.flag(bench.id("/DDC/DDC2/SquelchOpen")));
    bench.measurements.report(2000, {35.0f, 10.0f, 10.0f});
    QVERIFY(bench.store.flag(bench.id("/DDC/DDC1/SquelchOpen")));
    QCOMPARE(bench.store.time(bench.id("/DDC/DDC1/SquelchOpen")), qint64(2000));
}

void TestMeasurements::theThresholdItselfOpens()
{
    Bench bench;
    bench.write("/DDC/DDC1/SquelchValue", 30.0);
    bench.write("/DDC/DDC1/SquelchState", true);
    bench.measurements.report(1, {29.9f, 0.0f, 0.0f});
    QVERIFY(!bench.store.flag(bench.id("/DDC/DDC1/SquelchOpen")));
    bench.measurements.report(2, {30.0f, 0.0f, 0.0f});
    QVERIFY(bench.store.flag(bench.id("/DDC/DDC1/SquelchOpen")));
}

void TestMeasurements::eachOpeningAndClosingIsOneEvent()
{
    Bench bench;
    bench.write("/DDC/DDC1/SquelchValue", 30.0);
    bench.write("/DDC/DDC1/SquelchState", true);
    Events events(bench.store, bench.id("/DDC/DDC1/SquelchOpen"));
    qint64 time = 0;
    for (const float level : {10.0f, 12.0f, 40.0f, 41.0f, 42.0f, 5.0f, 4.0f})
        bench.measurements.report(++time, {level, 0.0f, 0.0f});
    const QVector<QPair<bool, qint64>> expected = {{false, 1}, {true, 3}, {false, 6}};
    QCOMPARE(events.seen, expected);
}

void TestMeasurements::aNewThresholdCountsAtOnce()
{
    Bench bench;
    bench.write("/DDC/DDC1/SquelchValue", 30.0);
    bench.write("/DDC/DDC1/SquelchState", true);
    bench.measurements.report(1, {20.0f, 0.0f, 0.0f});
    QVERIFY(!bench.store.flag(bench.id("/DDC/DDC1/SquelchOpen")));
    bench.write("/DDC/DDC1/SquelchValue", 15.0);
    QVERIFY(bench.store.flag(bench.id("/DDC/DDC1/SquelchOpen")));
}

void TestMeasurements::switchingTheSquelchOffOpens()
{
    Bench bench;
    bench.write("/DDC/DDC1/SquelchValue", 30.0);
    bench.write("/DDC/DDC1/SquelchState", true);
    bench.measurements.report(1, {20.0f, 0.0f, 0.0f});
    bench.measurements.end();
    bench.write("/DDC/DDC1/SquelchState", false);
    QVERIFY(bench.store.flag(bench.id("/DDC/DDC1/SquelchOpen")));
}

QTEST_APPLESS_MAIN(TestMeasurements)
#include "tst_measurements.moc"
