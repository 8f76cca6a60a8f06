#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QTest>
#include <algorithm>
#include <cmath>

#include "driverclient.h"
#include "driverprocess.h"

using Link::ValueStatus;

// Recordings played once through the real driver, their levels as a client sees them.
class TestRxDriverRecordings : public QObject
{
    Q_OBJECT
private slots:
    void playingBeginsWhenAClientListensAndEndsOnce();
    void aRecordingBeginsAgainWithoutOnce();
    void theTimeSignalShowsItsThirtyDrops();
    void theSatellitesBurstsStandAtTheirTimesAndLevels_data();
    void theSatellitesBurstsStandAtTheirTimesAndLevels();
};

namespace {

constexpr double fullScale = 80;  // dBµV of 0 dBFS
constexpr double reportSeconds = 0.05;
constexpr qint64 reportMicroseconds = 50000;

struct Reading
{
    double end;    // s since the recording's begin, of the measured interval
    double level;  // dBµV
};

struct Settings
{
    double frequency;  // Hz
    double bandwidth;  // Hz
};

// A signed 16 bit tone at an eighth of the rate, half of full scale.
QByteArray toneOf(int samples)
{
    QByteArray bytes;
    for (int i = 0; i < samples; ++i) {
        for (const double part : {std::cos(i * M_PI / 4), std::sin(i * M_PI / 4)}) {
            const auto value = qint16(std::lround(part * 16384));
            bytes.append(char(value & 0xff)).append(char(value >> 8));
        }
    }
    return bytes;
}

QString dataFile(const QString& name)
{
    return QString(RX_SOURCE_DIR) + "/../shared/data/" + name;
}

// The client sets the channel first and hooks the level then, so that the whole recording is heard.
bool playOnce(const QStringList& arguments, const Settings& settings, QVector<Reading>* readings,
              QString* failure)
{
    readings->clear();
    const QString channel = "/RX1/DDC/DDC1";
    DriverProcess driver(arguments + QStringList{"--once", "--wait-client"});
    if (!driver.waitForPort()) {
        *failure = driver.errors();
        return false;
    }
    DriverClient client(driver.port());
    if (!client.hook(channel + "/Frequency") || !client.hook(channel + "/Bandwidth") ||
        !client.hook("/RX1/SOURCE")) {
        *failure = "the settings were not served";
        return false;
    }
    const QString refusal = client.write(channel + "/Frequency", settings.frequency).reason +
                            client.select(channel + "/Bandwidth", settings.bandwidth).reason;
    if (!refusal.isEmpty() || client.text("/RX1/SOURCE/State") != "waiting") {
        *failure = refusal + " " + client.text("/RX1/SOURCE/State");
        return false;
    }
    client.watch(channel + "/LevelValue");
    if (!client.hook(channel + "/LevelValue") || !client.waitForText("/RX1/SOURCE/State", "ended") ||
        !client.waitForStatus(channel + "/LevelValue", ValueStatus::NotAvailable)) {
        *failure = "the recording did not end";
        return false;
    }
    // The last level may arrive together with the word that it is not available any more.
    qint64 first = 0;
    qint64 last = 0;
    for (const Link::Update& update : client.heard(channel + "/LevelValue")) {
        if (first == 0 && update.status == ValueStatus::Usable)
            first = update.time;
        if (first == 0 || update.time == last)
            continue;
        last = update.time;
        const double sinceFirst = double(update.time - first) * 1e-6;
        readings->append({sinceFirst + reportSeconds, std::get<double>(update.content)});
    }
    return true;
}

bool isWhole(const QVector<Reading>& readings)
{
    for (int i = 1; i < readings.size(); ++i) {
        if (readings[i].end - readings[i - 1].end > 1.5 * reportSeconds)
            return false;
    }
    return !readings.isEmpty();
}

// A machine that has no time for a while makes the link merge levels: such a run says nothing about
// the recording, and is played again.
bool playWhole(const QStringList& arguments, const Settings& settings, QVector<Reading>* readings,
               QString* failure)
{
    for (int attempt = 0; attempt < 3; ++attempt) {
        if (!playOnce(arguments, settings, readings, failure))
            return false;
        if (isWhole(*readings))
            return true;
    }
    *failure = "levels were merged on the way every time: the machine is too busy";
    return false;
}

double median(QVector<double> values)
{
    if (values.isEmpty())
        return qQNaN();
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

// The levels of the intervals that lie within these times altogether.
QVector<double> levelsWithin(const QVector<Reading>& readings, double from, double to)
{
    QVector<double> levels;
    for (const Reading& reading : readings) {
        if (reading.end - reportSeconds >= from && reading.end <= to)
            levels << reading.level;
    }
    return levels;
}

}  // namespace

void TestRxDriverRecordings::playingBeginsWhenAClientListensAndEndsOnce()
{
    QTemporaryDir folder;
    QFile file(folder.filePath("tone.cs16"));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(toneOf(48000));
    file.close();

    QVector<Reading> readings;
    QString failure;
    QVERIFY2(playWhole({"--iq", file.fileName(), "--rate", "48k", "--center", "7.1M"}, {7.106e6, 1000},
                       &readings, &failure),
             qPrintable(failure));
    QCOMPARE(readings.size(), 20);
    const double expected = fullScale - 20 * std::log10(2.0);
    for (const Reading& reading : readings)
        QVERIFY2(std::abs(reading.level - expected) < 0.5, qPrintable(QString::number(reading.level)));
}

void TestRxDriverRecordings::aRecordingBeginsAgainWithoutOnce()
{
    QTemporaryDir folder;
    QFile file(folder.filePath("tone.cs16"));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(toneOf(4800));  // a tenth of a second
    file.close();

    DriverProcess driver({"--iq", file.fileName(), "--rate", "48k"});
    QVERIFY2(driver.waitForPort(), qPrintable(driver.errors()));
    DriverClient client(driver.port());
    QVERIFY(client.hook("/RX1"));
    client.watch("/RX1/DDC/DDC1/LevelValue");
    QTRY_VERIFY_WITH_TIMEOUT(client.heard("/RX1/DDC/DDC1/LevelValue").size() > 10, DriverClient::patienceMs);
    const auto& heard = client.heard("/RX1/DDC/DDC1/LevelValue");
    QVERIFY(heard.last().time - heard.first().time > 4 * reportMicroseconds);
    QCOMPARE(client.text("/RX1/SOURCE/State"), QString("running"));
}

void TestRxDriverRecordings::theTimeSignalShowsItsThirtyDrops()
{
    const QString name = "hcab14_TDoA__20200813T065220Z_77500_JO51xl";
    QFile truth(dataFile("truth/" + name + "_pulses.csv"));
    if (!QFileInfo::exists(dataFile(name + "_iq.wav")) || !truth.open(QIODevice::ReadOnly))
        QSKIP("the recording is not here");
    struct Drop
    {
        double begin;
        bool isLong;
    };
    QVector<Drop> expected;
    truth.readLine();
    while (!truth.atEnd()) {
        const QList<QByteArray> words = truth.readLine().trimmed().split(',');
        if (words.size() == 3)
            expected.append({words[0].toDouble(), words[2] == "1"});
    }
    QCOMPARE(expected.size(), 30);

    QVector<Reading> readings;
    QString failure;
    QVERIFY2(playWhole({"--iq", dataFile(name + "_iq.wav"), "--center", "77.5k"}, {77.5e3, 500}, &readings,
                       &failure),
             qPrintable(failure));

    QVector<double> all;
    for (const Reading& reading : readings)
        all << reading.level;
    const double carrier = median(all);
    QVERIFY2(std::abs(carrier - (fullScale - 9.3)) < 1, qPrintable(QString::number(carrier)));

    // An interval that lies in a drop for three quarters or more is 6 dB down.
    QVector<Drop> drops;
    QVector<int> lengths;
    double lastLow = -1;
    for (const Reading& reading : readings) {
        if (reading.level > carrier - 6)
            continue;
        if (lastLow < 0 || reading.end - lastLow > 1.5 * reportSeconds) {
            drops.append({reading.end - reportSeconds, false});
            lengths.append(0);
        }
        ++lengths.last();
        lastLow = reading.end;
    }
    QCOMPARE(drops.size(), expected.size());
    for (int i = 0; i < drops.size(); ++i) {
        QVERIFY2(std::abs(drops[i].begin - expected[i].begin) < 0.06,
                 qPrintable(QString("drop %1 at %2").arg(i).arg(drops[i].begin)));
        QCOMPARE(lengths[i] >= 3, expected[i].isLong);
    }
}

void TestRxDriverRecordings::theSatellitesBurstsStandAtTheirTimesAndLevels_data()
{
    QTest::addColumn<double>("bandwidth");
    QTest::newRow("12 kHz") << 12e3;
    QTest::newRow("15 kHz") << 15e3;
}

void TestRxDriverRecordings::theSatellitesBurstsStandAtTheirTimesAndLevels()
{
    QFETCH(double, bandwidth);
    const QString file = dataFile("dernasherbrezon_jradio__orbicraft-z.wav");
    if (!QFileInfo::exists(file))
        QSKIP("the recording is not here");
    QVector<Reading> readings;
    QString failure;
    // The recording does not tell its centre.
    QVERIFY2(playWhole({"--iq", file, "--center", "435M"}, {435e6 + 720, bandwidth}, &readings, &failure),
             qPrintable(failure));

    const QVector<QPair<double, double>> bursts = {{0.166, 0.613}, {1.138, 1.293}, {1.830, 1.985}};
    const double expected = fullScale - 18.5;
    for (const auto& burst : bursts) {
        const QVector<double> levels = levelsWithin(readings, burst.first, burst.second);
        QVERIFY(levels.size() >= 2);
        const double level = median(levels);
        QVERIFY2(std::abs(level - expected) < 1, qPrintable(QString::number(level)));
    }
    double before = 0;
    QVector<double> idle;
    for (const auto& burst : bursts) {
        idle += levelsWithin(readings, before + 0.02, burst.first - 0.02);
        before = burst.second;
    }
    QVERIFY(idle.size() > 10);
    const double below = expected - median(idle);
    QVERIFY2(below > 24 && below < 26, qPrintable(QString::number(below)));
    // Nothing between the bursts rises half as high.
    QVERIFY(*std::max_element(idle.begin(), idle.end()) < expected - 12);
}

QTEST_GUILESS_MAIN(TestRxDriverRecordings)
#include "tst_rxdriver_recordings.moc"
