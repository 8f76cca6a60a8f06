#include <QDir>
#include <QFile>
#include <QSignalSpy>
#include <QTest>
#include <cmath>

#include "../reference.h"
#include "receiver/dsp/engine.h"
#include "receiver/sources/opensource.h"

using namespace Receiver;

namespace {

constexpr int patience = 240000;  // ms
constexpr double fullScale = 80;  // dBµV

const char* const timeSignal = "hcab14_TDoA__20200813T065220Z_77500_JO51xl_iq.wav";
const char* const timeSignalPlain = "hcab14_TDoA__20200813T065220Z_77500_JO51xl_plain.cs16";
const char* const timeSignalMarks = "truth/hcab14_TDoA__20200813T065220Z_77500_JO51xl_pulses.csv";
const char* const satellite = "dernasherbrezon_jradio__orbicraft-z.wav";
const char* const transponders = "antirez_dump1090__modes1.bin";
const char* const remoteControl = "jopohl_urh__elektromaten.complex16s";

QString path(const char* name)
{
    return QDir(QStringLiteral(RX_SOURCE_DIR "/../shared/data")).filePath(QLatin1String(name));
}

RecordingOptions withRate(double rate)
{
    RecordingOptions options;
    options.rate = rate;
    return options;
}

std::vector<Sample> samplesOf(const char* name, const RecordingOptions& options)
{
    QString error;
    const auto source = openRecording(path(name), options, &error);
    if (!source)
        qFatal("%s", qPrintable(error));
    std::vector<Sample> all;
    std::vector<Sample> some(10000);
    while (const std::size_t got = source->read(some.data(), some.size()))
        all.insert(all.end(), some.begin(), some.begin() + qint64(got));
    return all;
}

struct Report
{
    double begin;  // s
    double end;    // s
    double level;  // dBFS
};

// The whole recording through the engine, once, with one channel.
QVector<Report> levelsOf(const char* name, const RecordingOptions& options, double offset, double bandwidth)
{
    QString error;
    auto source = openRecording(path(name), options, &error);
    if (!source)
        qFatal("%s", qPrintable(error));
    const double center = source->center();
    Engine::Options how;
    how.loop = false;
    how.realTime = false;
    Engine engine(std::move(source), how);
    engine.setChannelCount(1);
    engine.setChannel(0, center + offset, bandwidth);
    QVector<Report> reports;
    QObject::connect(&engine, &Engine::levelsReady, &engine, [&](const Engine::Levels& levels) {
        const double begin = reports.isEmpty() ? 0.0 : reports.last().end;
        reports.append({begin, levels.position, double(levels.levels[0]) - fullScale});
    });
    QSignalSpy ended(&engine, &Engine::ended);
    engine.start();
    if (!ended.wait(patience))
        qFatal("%s does not end", name);
    return reports;
}

struct Mark
{
    double begin;  // s
    double end;    // s
};

QVector<Mark> marksOfTimeSignal()
{
    QVector<Mark> marks;
    QFile file(path(timeSignalMarks));
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text))
        qFatal("%s cannot be read", qPrintable(file.fileName()));
    file.readLine();
    while (!file.atEnd()) {
        const QList<QByteArray> columns = file.readLine().trimmed().split(',');
        if (columns.size() == 3)
            marks.append({columns[0].toDouble(), columns[0].toDouble() + columns[1].toDouble() / 1e3});
    }
    return marks;
}

// Whether the report lies wholly within the mark, or wholly outside, by the margin.
bool within(const Report& report, const Mark& mark, double margin)
{
    return report.begin >= mark.begin + margin && report.end <= mark.end - margin;
}

bool apart(const Report& report, const Mark& mark, double margin)
{
    return report.end <= mark.begin - margin || report.begin >= mark.end + margin;
}

}  // namespace

class AirRecordingsTest : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void timeSignalShowsItsThirtyDrops();
    void timeSignalLevelsAreThoseOfItsSamples();
    void containerAndPlainSamplesAreTheSame();
    void satelliteShowsItsThreeBursts_data();
    void satelliteShowsItsThreeBursts();
    void transponderPulsesHaveTheirMeanLevel();
    void remoteControlCarrierHasItsLevel();
};

void AirRecordingsTest::initTestCase()
{
    if (!QDir(path("")).exists())
        QSKIP("NOT CHECKED: the recordings are not there (../shared/data beside the source tree)");
}

void AirRecordingsTest::timeSignalShowsItsThirtyDrops()
{
    const QVector<Mark> marks = marksOfTimeSignal();
    QCOMPARE(marks.size(), 30);
    const QVector<Report> reports = levelsOf(timeSignal, withRate(12001.03), 0, 500);
    QVERIFY(reports.size() > 20 * 29);
    // Half way, in decibels, between the carrier and its reduced level.
    constexpr double threshold = -18.3;
    QVector<Mark> drops;
    for (const Report& report : reports) {
        if (report.level > threshold)
            continue;
        if (!drops.isEmpty() && drops.last().end == report.begin)
            drops.last().end = report.end;
        else
            drops.append({report.begin, report.end});
    }
    QCOMPARE(drops.size(), 30);
    for (int i = 0; i < 30; ++i) {
        QVERIFY2(
            std::abs(drops[i].begin - marks[i].begin) < 0.05 && std::abs(drops[i].end - marks[i].end) < 0.05,
            qPrintable(QString("drop %1: %2 to %3").arg(i).arg(drops[i].begin).arg(drops[i].end)));
    }
}

void AirRecordingsTest::timeSignalLevelsAreThoseOfItsSamples()
{
    const double rate = 12001.03;
    const QVector<Mark> marks = marksOfTimeSignal();
    const QVector<Report> reports = levelsOf(timeSignal, withRate(rate), 0, 500);
    const auto powers = Reference::bandPower(samplesOf(timeSignal, withRate(rate)), rate, 0, 500);
    int inside = 0;
    int outside = 0;
    double carrier = 0;
    double reduced = 0;
    double worst = 0;
    for (const Report& report : reports) {
        bool clear = true;
        for (const Mark& mark : marks) {
            clear = clear && apart(report, mark, 0.012);
            if (!within(report, mark, 0.012))
                continue;
            ++inside;
            reduced += report.level;
        }
        if (clear) {
            ++outside;
            carrier += report.level;
        }
        const double reference = Reference::meanDecibels(powers, report.begin * rate, report.end * rate);
        worst = std::max(worst, std::abs(report.level - reference));
        QVERIFY2(
            std::abs(report.level - reference) < 1,
            qPrintable(QString("%1 dBFS for %2 at %3 s").arg(report.level).arg(reference).arg(report.end)));
    }
    qInfo("%d reports within drops, %d outside; largest difference from the samples %.2f dB", inside, outside,
          worst);
    QVERIFY(inside >= 30);
    QVERIFY(outside >= 300);
    // The carrier fades for a moment, the reduced level wanders: only the means can be asked for.
    QVERIFY2(std::abs(carrier / outside + 9.3) < 0.5, qPrintable(QString::number(carrier / outside)));
    QVERIFY2(std::abs(reduced / inside + 27.3) < 1, qPrintable(QString::number(reduced / inside)));
}

void AirRecordingsTest::containerAndPlainSamplesAreTheSame()
{
    const auto container = samplesOf(timeSignal, {});
    const auto plain = samplesOf(timeSignalPlain, withRate(12001.03));
    QCOMPARE(container.size(), std::size_t(354816));
    QVERIFY(container == plain);
}

void AirRecordingsTest::satelliteShowsItsThreeBursts_data()
{
    QTest::addColumn<double>("bandwidth");
    QTest::newRow("12 kHz") << 12e3;
    QTest::newRow("15 kHz") << 15e3;
}

void AirRecordingsTest::satelliteShowsItsThreeBursts()
{
    QFETCH(double, bandwidth);
    const double rate = 48000;
    const Mark bursts[] = {{0.166, 0.613}, {1.138, 1.293}, {1.830, 1.985}};
    const QVector<Report> reports = levelsOf(satellite, {}, 720, bandwidth);
    const auto powers = Reference::bandPower(samplesOf(satellite, {}), rate, 720, bandwidth);
    int during[3] = {};
    int idle = 0;
    double worst = 0;
    double idlePower = 0;
    double burstPower = 0;
    int burstCount = 0;
    for (const Report& report : reports) {
        const double reference = Reference::meanDecibels(powers, report.begin * rate, report.end * rate);
        bool outside = true;
        bool edge = false;
        for (int i = 0; i < 3; ++i) {
            outside = outside && apart(report, bursts[i], 0.004);
            if (within(report, bursts[i], 0)) {
                ++during[i];
                ++burstCount;
                burstPower += std::pow(10.0, report.level / 10);
                QVERIFY2(std::abs(report.level + 18.5) < 1, qPrintable(QString::number(report.level)));
            }
            edge = edge || (!apart(report, bursts[i], 0.012) && !within(report, bursts[i], 0.012));
        }
        if (outside) {
            ++idle;
            idlePower += std::pow(10.0, report.level / 10);
        }
        // On a burst's edge a few milliseconds of window more or less change what a report sees.
        if (!edge) {
            worst = std::max(worst, std::abs(report.level - reference));
            QVERIFY2(std::abs(report.level - reference) < 1,
                     qPrintable(
                         QString("%1 dBFS for %2 at %3 s").arg(report.level).arg(reference).arg(report.end)));
        }
    }
    for (const int count : during)
        QVERIFY(count >= 2);
    QVERIFY(idle >= 15);
    const double level = 10 * std::log10(burstPower / burstCount);
    const double below = level - 10 * std::log10(idlePower / idle);
    qInfo("bursts %.2f dBFS, idle %.2f dB below; largest difference from the samples %.2f dB", level, below,
          worst);
    QVERIFY2(below >= 24 && below <= 26, qPrintable(QString::number(below)));
}

void AirRecordingsTest::transponderPulsesHaveTheirMeanLevel()
{
    const QVector<Report> reports = levelsOf(transponders, withRate(2e6), 0, 2e6);
    double power = 0;
    double seconds = 0;
    for (const Report& report : reports) {
        power += std::pow(10.0, report.level / 10) * (report.end - report.begin);
        seconds += report.end - report.begin;
    }
    QVERIFY(std::abs(seconds - 0.178434) < 1e-5);
    QVERIFY2(std::abs(10 * std::log10(power / seconds) + 14.2) < 0.5,
             qPrintable(QString::number(10 * std::log10(power / seconds))));
}

void AirRecordingsTest::remoteControlCarrierHasItsLevel()
{
    const double rate = 1e6;
    const QVector<Report> reports = levelsOf(remoteControl, withRate(rate), 0.00687 * rate, 20e3);
    const auto samples = samplesOf(remoteControl, withRate(rate));
    double power = 0;
    double reference = 0;
    for (const Report& report : reports)
        power += std::pow(10.0, report.level / 10) * (report.end - report.begin);
    for (const Sample& sample : samples)
        reference += double(std::norm(sample));
    // Nearly all there is lies in the channel.
    const double difference = 10 * std::log10(power / (reference / rate));
    QVERIFY2(std::abs(difference) < 0.5, qPrintable(QString::number(difference)));
}

QTEST_GUILESS_MAIN(AirRecordingsTest)
#include "tst_airrecordings.moc"
