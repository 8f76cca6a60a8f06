#include <QTest>

#include "receiver/dsp/pace.h"

using namespace Receiver;

class PaceTest : public QObject
{
    Q_OBJECT
private slots:
    void threadWakesAtMostAHundredTimesASecond();
    void streamThatFellFarBehindIsPutBackInStep();
};

void PaceTest::threadWakesAtMostAHundredTimesASecond()
{
    const Pace pace(1e6);
    using std::chrono::milliseconds;
    const auto begin = pace.due(0);
    QVERIFY(pace.wakeFor(0) == begin);
    QVERIFY(pace.wakeFor(1) == begin + milliseconds(10));
    QVERIFY(pace.wakeFor(10000) == begin + milliseconds(10));
    QVERIFY(pace.wakeFor(10001) == begin + milliseconds(20));
    QVERIFY(pace.due(10001) <= pace.wakeFor(10001));
}

void PaceTest::streamThatFellFarBehindIsPutBackInStep()
{
    Pace pace(1000);
    const auto before = pace.due(0);
    QVERIFY(!pace.resume(60000));  // a minute early is nothing to mend
    QVERIFY(pace.due(0) == before);
    const auto now = Pace::Clock::now();
    QVERIFY(pace.resume(-60000));  // a minute late
    QVERIFY(pace.due(-60000) >= now);
    QVERIFY(pace.due(0) >= now + std::chrono::seconds(60));
}

QTEST_GUILESS_MAIN(PaceTest)
#include "tst_pace.moc"
