#include <malloc.h>
#include <unistd.h>

#include <QDeadlineTimer>
#include <QElapsedTimer>
#include <QFile>
#include <QScopedPointer>
#include <QTest>

#include "ddcifspectrum.h"
#include "spectrum/vcifcontrol.h"
#include "tests/ddcgui/modulefixture.h"
#include "tests/spectrum/streamserver.h"

#if defined(__SANITIZE_ADDRESS__)
#define RX_SANITIZED 1  // its allocator keeps freed memory for a while and answers no statistics
#else
#define RX_SANITIZED 0
#endif

namespace {

const char* const framesVariable = "RX_LONGRUN_FRAMES";
const int retuneEvery = 500;  // frames
const int panoramaCount = 5;  // that differ, in turn
// The history holds rows of as many bins as they came with: memory is compared at the same point of
// the turn.
const int turn = retuneEvery * panoramaCount;
const int settledFrames = 2 * turn;  // until every row of the history and every cache is full
const int plainFrames = 6 * turn;    // 8.3 minutes' worth at 30 a second
const int badEvery = 97;
const int ahead = 2;  // frames that may be unacknowledged, as a driver does it
const int patienceMs = 60000;
const qint64 heapBound = 256 * 1024;           // bytes
const qint64 residentBound = 8 * 1024 * 1024;  // bytes

struct Memory
{
    qint64 heap = 0;      // bytes in use
    qint64 resident = 0;  // bytes of the process in memory
};

Memory Look()
{
    Memory memory;
    const auto info = mallinfo2();
    memory.heap = qint64(info.uordblks) + qint64(info.hblkhd);
    QFile file("/proc/self/statm");
    if (file.open(QIODevice::ReadOnly))
        memory.resident = file.readAll().split(' ').value(1).toLongLong() * sysconf(_SC_PAGESIZE);
    return memory;
}

// Other places, spans and numbers of bins, as an operator tunes through the day.
QVector<Link::ScanData> Panoramas()
{
    QVector<Link::ScanData> list;
    const int points[panoramaCount] = {2048, 4096, 1024, 4096, 2000};
    for (int i = 0; i < panoramaCount; ++i)
        list.append(
            panorama(98.5e6 + i * 50e3, float(30 + 8 * i), 98.5e6 + i * 100e3, 2e6 / (1 + i % 3), points[i]));
    return list;
}

// Frames that cannot be drawn come in between.
Link::ScanData Spoilt(Link::ScanData data, int number)
{
    if (number % 3 == 0)
        data.step = -data.step;
    else if (number % 3 == 1)
        data.levels.chop(3);
    else
        data.start = qQNaN();
    return data;
}

}  // namespace

// The pane under as many frames as come in a long time, taken as fast as it can.
class tst_IfSpectrumLong : public QObject
{
    Q_OBJECT
private slots:
    void memoryStaysFlatHoweverManyFramesCome()
    {
        bool given = false;
        const int wanted = qEnvironmentVariableIntValue(framesVariable, &given);
        const int frames = (given ? wanted : plainFrames) / turn * turn;
        QVERIFY2(frames >= 2 * settledFrames, "too few frames to tell");

        TestTree tree;
        tree.AddDevice();
        tree.AddChannel("/RX1/DDC/DDC1");
        TestTree::AddFloat("/GUICOMMON/IF_LEVELMAXIMUM", 80, "");
        TestTree::AddFloat("/GUICOMMON/IF_LEVELMINIMUM", -20, "");
        TestClient client;
        client.streamAddress = m_Server.address();
        DdcIfSpectrum pane(nullptr, "/RX1", "/RX1/DDC/DDC1");
        pane.BindValuePaths();
        pane.resize(1200, 600);
        pane.show();
        QVERIFY(QTest::qWaitForWindowExposed(&pane));
        QTRY_VERIFY_WITH_TIMEOUT(!m_Server.requests.isEmpty(), patienceMs);
        glWidgets::VCIFControl* control = pane.findChild<glWidgets::VCIFControl*>();
        QTest::keyClick(control, Qt::Key_M);  // a marker follows the trace

        QElapsedTimer clock;
        clock.start();
        Push(settledFrames);
        const Memory before = Look();
        Push(frames - settledFrames);
        const Memory after = Look();

        const double seconds = double(clock.elapsed()) / 1000;
        qInfo("%d frames, %.1f hours' worth, in %.1f s; heap %+lld bytes, resident %+lld bytes", frames,
              frames / 30.0 / 3600, seconds, static_cast<long long>(after.heap - before.heap),
              static_cast<long long>(after.resident - before.resident));
        QVERIFY2(frames / 30.0 > seconds, "slower than real time");
        QCOMPARE(m_Server.connections, 1);
        QVERIFY(m_Server.isConnected());
        if (RX_SANITIZED)
            QSKIP("the sanitizer's allocator tells no sizes; it looks for leaks itself");
        QVERIFY2(after.heap - before.heap <= heapBound,
                 qPrintable(QString::number(after.heap - before.heap)));
        QVERIFY2(after.resident - before.resident <= residentBound,
                 qPrintable(QString::number(after.resident - before.resident)));
    }

private:
    // Sends so many frames, never more than `ahead` of the pane.
    void Push(int frames)
    {
        for (int i = 0; i < frames; ++i, ++m_Sent) {
            Link::ScanData data = m_Panoramas.at(m_Sent / retuneEvery % m_Panoramas.size());
            if (m_Sent % badEvery == badEvery - 1)
                data = Spoilt(data, m_Sent);
            const QDeadlineTimer deadline(patienceMs);
            m_Server.sendFrame(data);
            while (Taken() + ahead <= m_Sent) {
                QVERIFY2(!deadline.hasExpired(), qPrintable(QString("frame %1 is not taken").arg(m_Sent)));
                QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents);
            }
        }
    }

    // What the pane has acknowledged; the list of it is not kept.
    int Taken()
    {
        if (!m_Server.ready.isEmpty()) {
            m_Taken = int(m_Server.ready.last());
            m_Server.ready.clear();
        }
        return m_Taken;
    }

    StreamServer m_Server;
    const QVector<Link::ScanData> m_Panoramas = Panoramas();
    int m_Sent = 0;
    int m_Taken = 0;
};

DDCGUI_TEST_MAIN(tst_IfSpectrumLong)
#include "tst_ifspectrumlong.moc"
