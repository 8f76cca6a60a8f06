// What the pane says when there is nothing new to see, and how often it paints.

#include <QRegularExpression>
#include <limits>

#include "spectrum/scanstate.h"
#include "spectrum/scanstatusline.h"
#include "tests/spectrum/scanbench.h"
#include "valueframework/ivtclient.h"

namespace {

// The tree's connection to a driver, as far as the pane asks it.
class Client : public IVtClient
{
public:
    Client() { ValueHost::SetClient(QStringLiteral("VTConnectToDRV"), this); }
    ~Client() override { ValueHost::SetClient(QStringLiteral("VTConnectToDRV"), nullptr); }
    void AddObserver(IObserver*) override {}
    void DeleteObserver(IObserver*) override {}
    QString GetServerAddress() override { return address; }
    void Flush() override {}
    void HookValues(const QByteArray&, const QByteArray&) override {}
    void ReleaseValues(const QByteArray&) override {}
    bool IsNodeServed(Node*) override { return true; }
    bool HasServedValues() override { return true; }
    bool IsConnected() override { return true; }

    QString address;
};

}  // namespace

class TestIfControlStates : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase() { UseWorkbenchFace(); }

    void withoutAnAddressItSaysSo();
    void anAddressThatIsNoneIsSaid();
    void anAddressThatDoesNotAnswerIsSaid();
    void aRefusalOfTheDriverIsSaid();
    void aLossGreysTheOldTraceWithItsAgeAndItComesBackByItself();
    void aDriverThatCameBackElsewhereIsFoundThroughTheClient();
    void aLiveStreamWithoutNewFramesGrowsStale();
    void aDroppedFrameIsSaidAndTheFormerTraceStays();
    void oldAgesAreToldInLargerUnits();
    void aChannelOutsideOfTheSpanIsSaidAtTheEdge();
    void hidingEndsTheStreamAndShowingBringsItBack();
    void aHiddenControlPaintsNothing();
    void paintsAtMostThirtyTimesASecondAndKeepsEveryRow();
    void aNewFrameRepaintsNoAxis();
    void manyFramesLeaveTheHistoryBounded();
    void framesOfOtherBinsReplaceTheTrace();
    void emptyBinsLeaveNoSpikes();
    void looksRightInAllKindsOfWindows_data();
    void looksRightInAllKindsOfWindows();
    void emptyAndStaleLookRight();
};

void TestIfControlStates::withoutAnAddressItSaysSo()
{
    ScanBench bench;
    bench.makeValues();
    bench.show();
    QTRY_VERIFY(bench.scene().message.contains(QStringLiteral("not known")));
    QVERIFY(bench.scene().stale);
}

void TestIfControlStates::anAddressThatIsNoneIsSaid()
{
    ScanBench bench;
    bench.makeValues();
    bench.bind();
    bench.control->SetScanbufferIPAddress(QStringLiteral("no address"));
    bench.show();
    QTRY_VERIFY(bench.scene().message.contains(QStringLiteral("\"no address\" is not an address")));
    QVERIFY(bench.scene().message.contains(QStringLiteral("HOST:PORT")));
    bench.control->SetScanbufferIPAddress(bench.server.address());
    QTRY_VERIFY_WITH_TIMEOUT(!bench.server.requests.isEmpty(), ScanBench::waitMs);
    bench.feed(panorama());
    QCOMPARE(bench.scene().message, QString());
}

void TestIfControlStates::anAddressThatDoesNotAnswerIsSaid()
{
    ScanBench bench;
    bench.makeValues();
    bench.bind();
    const QString address = bench.server.address();
    bench.server.close();
    bench.show();
    QTRY_VERIFY_WITH_TIMEOUT(bench.scene().message.startsWith(QStringLiteral("No spectrum: %1").arg(address)),
                             ScanBench::waitMs);
    QVERIFY(bench.scene().message.contains(QStringLiteral("Trying again")));
}

void TestIfControlStates::aRefusalOfTheDriverIsSaid()
{
    ScanBench bench;
    bench.makeValues();
    bench.bind();
    bench.server.answer = StreamServer::Answer::Refuse;
    bench.server.refusal = QStringLiteral("there is no device /RX1");
    bench.show();
    QTRY_VERIFY_WITH_TIMEOUT(bench.scene().message.contains(QStringLiteral("there is no device /RX1")),
                             ScanBench::waitMs);
}

void TestIfControlStates::aLossGreysTheOldTraceWithItsAgeAndItComesBackByItself()
{
    ScanBench bench;
    bench.run();
    QVERIFY(!bench.scene().stale);
    QCOMPARE(bench.scene().message, QString());
    const quint16 port = bench.server.port();
    bench.server.close();
    QTRY_VERIFY_WITH_TIMEOUT(bench.scene().stale, ScanBench::waitMs);
    QVERIFY(bench.scene().trace);
    QTRY_VERIFY_WITH_TIMEOUT(
        bench.scene().message.contains(QRegularExpression(QStringLiteral("^No spectrum for [0-9]+ s: "))),
        ScanBench::waitMs);
    bench.settle();
    bench.keepPicture(QStringLiteral("ifcontrol-stale"));
    QVERIFY(bench.server.listen(port));
    const int before = int(bench.server.requests.size());
    QTRY_VERIFY_WITH_TIMEOUT(bench.server.requests.size() > before, ScanBench::waitMs);
    QVERIFY(bench.scene().stale);  // connected is not live yet
    bench.feed(panorama());
    QVERIFY(!bench.scene().stale);
    QCOMPARE(bench.scene().message, QString());
}

void TestIfControlStates::aDriverThatCameBackElsewhereIsFoundThroughTheClient()
{
    Client client;
    ScanBench bench;
    client.address = bench.server.address();
    bench.run();
    bench.server.close();
    QTRY_VERIFY_WITH_TIMEOUT(bench.scene().stale, ScanBench::waitMs);
    StreamServer elsewhere;
    client.address = elsewhere.address();
    QTRY_VERIFY_WITH_TIMEOUT(!elsewhere.requests.isEmpty(), ScanBench::waitMs);
    elsewhere.sendFrame(panorama());
    QTRY_VERIFY_WITH_TIMEOUT(!bench.scene().stale, ScanBench::waitMs);
}

void TestIfControlStates::aLiveStreamWithoutNewFramesGrowsStale()
{
    ScanBench bench;
    bench.run();
    QTRY_VERIFY_WITH_TIMEOUT(
        bench.scene().message.contains(QRegularExpression(QStringLiteral("^No new spectrum for [0-9]+ s"))),
        ScanBench::waitMs);
    QVERIFY(bench.scene().stale);
}

void TestIfControlStates::aDroppedFrameIsSaidAndTheFormerTraceStays()
{
    ScanBench bench;
    bench.run();
    const quint64 stands = bench.scene().trace->sequence;
    Link::ScanData bad = bench.server.next(panorama());
    bad.step = -1;
    bench.server.send(bad);
    QTRY_VERIFY(bench.scene().message.contains(QStringLiteral("A spectrum was dropped: its step")));
    QCOMPARE(bench.scene().trace->sequence, stands);
    QElapsedTimer clock;
    clock.start();
    while (!bench.scene().message.isEmpty() && clock.elapsed() < ScanBench::waitMs)
        bench.feed(panorama());
    QCOMPARE(bench.scene().message, QString());
}

void TestIfControlStates::oldAgesAreToldInLargerUnits()
{
    ScanState::Facts facts;
    facts.stream = ScanStream::State::Waiting;
    facts.failure = QStringLiteral("the driver closed the connection");
    facts.hasTrace = true;
    facts.traceAge = 3 * 3600;
    const ScanState state = ScanState::of(facts);
    QVERIFY(state.stale);
    QCOMPARE(state.message,
             QStringLiteral("No spectrum for 3 h: the driver closed the connection. Trying again."));
}

void TestIfControlStates::aChannelOutsideOfTheSpanIsSaidAtTheEdge()
{
    ScanBench bench;
    bench.run();
    ScanBench::set(ScanBench::channelPath("Frequency"), 105.2e6);
    QTRY_VERIFY2(bench.scene().channel.text.contains(QStringLiteral("outside of the span")),
                 qPrintable(bench.scene().channel.text));
    QVERIFY(bench.scene().channel.text.startsWith(QStringLiteral("105.200")));
    bench.settle();
    bench.keepPicture(QStringLiteral("ifcontrol-outside"));
    ScanBench::set(ScanBench::channelPath("Frequency"), 98.6e6);
    bench.parts().view.show({97.6e6, 97.9e6});
    QTRY_VERIFY(bench.scene().channel.text.contains(QStringLiteral("out of view")));
}

void TestIfControlStates::hidingEndsTheStreamAndShowingBringsItBack()
{
    ScanBench bench;
    bench.run();
    QElapsedTimer clock;
    clock.start();
    bench.control->hide();
    QTRY_VERIFY_WITH_TIMEOUT(!bench.server.isConnected(), 1000);
    QVERIFY(clock.elapsed() < 1000);
    bench.control->show();
    QTRY_COMPARE_WITH_TIMEOUT(bench.server.connections, 2, ScanBench::waitMs);
    QTRY_COMPARE_WITH_TIMEOUT(int(bench.server.requests.size()), 2, ScanBench::waitMs);
    bench.feed(panorama());
    QVERIFY(!bench.scene().stale);
    bench.window().hide();
    QTRY_VERIFY_WITH_TIMEOUT(!bench.server.isConnected(), 1000);
}

void TestIfControlStates::aHiddenControlPaintsNothing()
{
    ScanBench bench;
    bench.run();
    bench.control->hide();
    const int spectrum = bench.spectrum().paints();
    const int waterfall = bench.waterfall().paints();
    for (int i = 0; i < 50; ++i) {
        ScanBench::set(ScanBench::channelPath("Frequency"), 98.3e6 + i * 1000);
        QCoreApplication::processEvents();
    }
    QCOMPARE(bench.spectrum().paints(), spectrum);
    QCOMPARE(bench.waterfall().paints(), waterfall);
    bench.control->show();
    QTRY_COMPARE(bench.scene().channel.frequency, 98.349e6);
}

void TestIfControlStates::paintsAtMostThirtyTimesASecondAndKeepsEveryRow()
{
    ScanBench bench;
    bench.run();
    const int rows = bench.waterfall().history.filled();
    const int before = bench.spectrum().paints();
    const Link::ScanData data = panorama();
    QElapsedTimer clock;
    clock.start();
    int sent = 0;
    while (clock.elapsed() < 2000) {
        bench.server.sendFrame(data);
        ++sent;
        QCoreApplication::processEvents(QEventLoop::AllEvents, 5);
    }
    const double seconds = double(clock.elapsed()) / 1000;
    const int paints = bench.spectrum().paints() - before;
    QTRY_COMPARE_WITH_TIMEOUT(int(bench.parts().stream.received()), sent + 1, ScanBench::waitMs);
    QVERIFY2(paints <= 30 * seconds + 1, qPrintable(QStringLiteral("%1 in %2 s").arg(paints).arg(seconds)));
    QVERIFY(paints >= 2);
    QCOMPARE(bench.waterfall().history.filled(), qMin(rows + sent, bench.waterfall().history.rows()));
}

void TestIfControlStates::aNewFrameRepaintsNoAxis()
{
    struct Paints : QObject
    {
        int count = 0;
        bool eventFilter(QObject*, QEvent* event) override
        {
            count += event->type() == QEvent::Paint;
            return false;
        }
    } paints;
    ScanBench bench;
    bench.run();
    QCoreApplication::processEvents();
    QWidget* const level = bench.control->findChild<QWidget*>(QStringLiteral("levelAxis"));
    QWidget* const status = bench.control->findChild<QWidget*>(QStringLiteral("scanStatus"));
    for (QWidget* const quiet : {bench.control->GetXAxis() + 0, static_cast<AxisWidget*>(level)})
        quiet->installEventFilter(&paints);
    status->installEventFilter(&paints);
    for (int i = 0; i < 10; ++i)
        bench.feed(panorama(98e6 + i * 1e4));
    QCOMPARE(paints.count, 0);
}

void TestIfControlStates::manyFramesLeaveTheHistoryBounded()
{
    ScanBench bench;
    bench.run();
    const Link::ScanData data = panorama();
    ScanFrame frame;
    frame.start = data.start;
    frame.step = data.step;
    frame.resolutionBandwidth = data.resolutionBandwidth;
    frame.levels = Link::unpackLevels(data.levels);
    WaterfallHistory& history = bench.waterfall().history;
    for (int i = 0; i < 5000; ++i) {
        frame.sequence = quint64(i);
        history.add(frame);
    }
    QVERIFY(history.filled() <= history.rows());
    QVERIFY(history.bytes() <= WaterfallHistory::mostBytes);
}

void TestIfControlStates::framesOfOtherBinsReplaceTheTrace()
{
    ScanBench bench;
    bench.run();
    bench.parts().setHeld(true, true);
    bench.feed(panorama(98.7e6, 60));
    bench.feed(panorama(98.6e6, 55, 98.5e6, 1e6, 500));
    QCOMPARE(int(bench.scene().trace->levels.size()), 500);
    QCOMPARE(int(bench.scene().maximumHold->levels.size()), 500);
    bench.feed(panorama(98.6e6, 55, 98.5e6, 2e6, 1));
    QCOMPARE(int(bench.scene().trace->levels.size()), 1);
}

void TestIfControlStates::emptyBinsLeaveNoSpikes()
{
    ScanBench bench;
    bench.run();
    Link::ScanData data = panorama();
    QVector<float> levels = Link::unpackLevels(data.levels);
    for (int i = 500; i < 1000; ++i)
        levels[i] = i % 2 ? std::numeric_limits<float>::quiet_NaN() : std::numeric_limits<float>::infinity();
    data.levels = Link::packLevels(levels.constData(), int(levels.size()));
    bench.feed(data);
    QCOMPARE(bench.parts().stream.emptied(), quint64(500));
    QVERIFY(!bench.spectrum().grab().isNull());
    bench.keepPicture(QStringLiteral("ifcontrol-empty-bins"));
}

void TestIfControlStates::looksRightInAllKindsOfWindows_data()
{
    QTest::addColumn<QSize>("size");
    QTest::addColumn<bool>("dark");
    QTest::newRow("wide") << QSize(900, 560) << false;
    QTest::newRow("least") << QSize(400, 400) << false;
    QTest::newRow("narrow and high") << QSize(400, 800) << true;
    QTest::newRow("dark") << QSize(900, 560) << true;
}

void TestIfControlStates::looksRightInAllKindsOfWindows()
{
    QFETCH(QSize, size);
    QFETCH(bool, dark);
    ScanBench bench;
    if (dark) {
        QPalette night;
        night.setColor(QPalette::Window, QColor(45, 45, 48));
        night.setColor(QPalette::Base, QColor(30, 30, 32));
        night.setColor(QPalette::WindowText, QColor(230, 230, 230));
        night.setColor(QPalette::Text, QColor(230, 230, 230));
        bench.window().setPalette(night);
    }
    bench.window().resize(size);
    bench.run();
    bench.parts().setHeld(true, true);
    for (int i = 0; i < 120; ++i)
        bench.server.sendFrame(panorama(98.2e6 + i * 5e3, 40 + float(i % 40)));
    QTRY_COMPARE_WITH_TIMEOUT(bench.waterfall().history.filled(), 121, ScanBench::waitMs);
    bench.parts().setCursor(98.7e6, std::nan(""));
    bench.settle();
    bench.keepPicture(
        QStringLiteral("ifcontrol-") +
        QString::fromLatin1(QTest::currentDataTag()).replace(QLatin1Char(' '), QLatin1Char('-')));
    const QRect all = bench.control->rect();
    for (const char* name : {"spectrumCanvas", "waterfallCanvas", "levelAxis", "xAxis", "scanStatus"}) {
        QWidget* const part = bench.control->findChild<QWidget*>(QLatin1String(name));
        QVERIFY2(part && part->isVisible(), name);
        QVERIFY2(all.contains(QRect(part->mapTo(bench.control, QPoint()), part->size())), name);
    }
    QVERIFY(bench.spectrum().height() >= 120);
    QVERIFY(bench.waterfall().height() >= 60);
    QCOMPARE(bench.spectrum().mapTo(bench.control, QPoint()).x(),
             bench.waterfall().mapTo(bench.control, QPoint()).x());
    QCOMPARE(bench.spectrum().width(), bench.waterfall().width());
}

void TestIfControlStates::emptyAndStaleLookRight()
{
    ScanBench bench;
    bench.window().resize(400, 400);
    bench.makeValues();
    bench.bind();
    bench.server.close();
    bench.show();
    QTRY_VERIFY_WITH_TIMEOUT(bench.scene().message.startsWith(QStringLiteral("No spectrum")),
                             ScanBench::waitMs);
    bench.settle();
    bench.keepPicture(QStringLiteral("ifcontrol-empty"));
}

QTEST_MAIN(TestIfControlStates)
#include "tst_ifcontrol_states.moc"
