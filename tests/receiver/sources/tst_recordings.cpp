#include <sys/stat.h>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>
#include <QtEndian>

#include <cmath>
#include <limits>

#include "receiver/sources/namehints.h"
#include "receiver/sources/opensource.h"
#include "receiver/sources/sampleformat.h"

using namespace Receiver;

namespace {

template <typename T>
QByteArray le(T value)
{
    QByteArray bytes(int(sizeof value), '\0');
    qToLittleEndian(value, bytes.data());
    return bytes;
}

QByteArray chunk(const char* id, const QByteArray& body)
{
    QByteArray all = QByteArray(id, 4) + le(quint32(body.size())) + body;
    if (body.size() % 2 != 0)
        all += '\0';
    return all;
}

QByteArray fmt(int tag, int channels, quint32 rate, int bits)
{
    return chunk("fmt ", le(quint16(tag)) + le(quint16(channels)) + le(rate) +
                             le(quint32(rate * quint32(channels * bits / 8))) +
                             le(quint16(channels * bits / 8)) + le(quint16(bits)));
}

QByteArray extensibleFmt(int subFormat, quint32 rate, int bits)
{
    return chunk("fmt ", le(quint16(0xFFFE)) + le(quint16(2)) + le(rate) +
                             le(quint32(rate * quint32(bits / 4))) + le(quint16(bits / 4)) +
                             le(quint16(bits)) + le(quint16(22)) + le(quint16(bits)) + le(quint32(3)) +
                             le(quint16(subFormat)) + QByteArray::fromHex("000000001000800000aa00389b71"));
}

QByteArray riff(const QByteArray& chunks)
{
    return "RIFF" + le(quint32(chunks.size() + 4)) + "WAVE" + chunks;
}

QByteArray s16(const QVector<int>& numbers)
{
    QByteArray bytes;
    for (const int number : numbers)
        bytes += le(qint16(number));
    return bytes;
}

QByteArray f32(const QVector<float>& numbers)
{
    QByteArray bytes;
    for (const float number : numbers)
        bytes += le(number);
    return bytes;
}

std::vector<Sample> readAll(IqSource& source, std::size_t step = 7)
{
    std::vector<Sample> all;
    std::vector<Sample> some(step);
    while (const std::size_t got = source.read(some.data(), step))
        all.insert(all.end(), some.begin(), some.begin() + qint64(got));
    return all;
}

// Two samples, (0.5, -0.5) and (0.25, 0), as every format stores them.
const QVector<Sample>& twoSamples()
{
    static const QVector<Sample> samples{Sample(0.5F, -0.5F), Sample(0.25F, 0.0F)};
    return samples;
}

const QByteArray two16 = s16({16384, -16384, 8192, 0});
const QByteArray meta16 =
    "{\"global\":{\"core:datatype\":\"ci16_le\",\"core:sample_rate\":48000.5},"
    "\"captures\":[{\"core:sample_start\":0,\"core:frequency\":98500000}]}";

}  // namespace

class RecordingsTest : public QObject
{
    Q_OBJECT
private slots:
    void acceptedFilesGiveTheirSamplesRateAndCentre_data();
    void acceptedFilesGiveTheirSamplesRateAndCentre();
    void refusedFilesSayWhatWhereAndWhatToDo_data();
    void refusedFilesSayWhatWhereAndWhatToDo();
    void pipeIsRefusedWithoutWaiting();
    void fileWithoutPermissionIsRefused();
    void sigmfIsOpenedByEitherName();
    void numbersGivenWinOverTheFile();
    void nameTellsRateAndCentreOnlyWithUnits_data();
    void nameTellsRateAndCentreOnlyWithUnits();
    void rewindingBeginsAgainAtTheFirstSample();
    void samplesDoNotDependOnTheSizeOfTheReads();
    void fileThatBecomesShorterEndsWithAnError();
    void largeFileIsReadPieceByPiece();

private:
    QString write(const QString& name, const QByteArray& bytes);
    QTemporaryDir m_folder;
};

QString RecordingsTest::write(const QString& name, const QByteArray& bytes)
{
    const QString fileName = m_folder.filePath(name);
    QFile file(fileName);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
        qFatal("cannot write %s", qPrintable(fileName));
    return fileName;
}

void RecordingsTest::acceptedFilesGiveTheirSamplesRateAndCentre_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("format");
    QTest::addColumn<double>("rate");
    QTest::addColumn<double>("center");
    const auto row = [](const char* name, const QByteArray& bytes, const char* format = "",
                        double rate = 48000, double center = 0) {
        QTest::addRow("%s %s", name, format) << QString(name) << bytes << QString(format) << rate << center;
    };
    const QByteArray two8 = QByteArray::fromHex("40c02000");
    const QByteArray twoF = f32({0.5F, -0.5F, 0.25F, 0.0F});
    const QByteArray twoU = QByteArray::fromHex("bf409f7f");  // as near as it gets
    const QByteArray two24 = QByteArray::fromHex("0000400000c0000020000000");
    const QByteArray two32 = QByteArray::fromHex("00000040000000c00000002000000000");

    for (const char* name : {"48ksps.u8", "48ksps.cu8", "x_48ksps.bin", "a-48ksps.complex16u"})
        row(name, twoU);
    for (const char* name : {"48ksps.s8", "48ksps.cs8", "48000sps.complex16s"})
        row(name, two8);
    for (const char* name : {"48ksps.s16", "48ksps.cs16", "48kSps.sc16", "48ksps.CS16"})
        row(name, two16);
    for (const char* name : {"48ksps.f32", "48ksps.cf32", "48ksps.cfile", "48ksps.fc32", "48ksps.complex"})
        row(name, twoF);
    row("48ksps.iq", two16, "s16");
    row("48ksps", two16, "S16");
    row("48ksps.cu8", two8, "s8");
    row("98.5MHz_48ksps.cs16", two16, "", 48000, 98.5e6);

    const QByteArray data = chunk("data", two16);
    row("plain.wav", riff(fmt(1, 2, 48000, 16) + data));
    row("8 bit.wav", riff(fmt(1, 2, 48000, 8) + chunk("data", twoU)));
    row("24 bit.wav", riff(fmt(1, 2, 48000, 24) + chunk("data", two24)));
    row("32 bit.wav", riff(fmt(1, 2, 48000, 32) + chunk("data", two32)));
    row("float.wav", riff(fmt(3, 2, 48000, 32) + chunk("data", twoF)));
    row("extensible.wav", riff(extensibleFmt(1, 48000, 16) + data));
    row("extensible float.wav", riff(extensibleFmt(3, 48000, 32) + chunk("data", twoF)));
    row("many data chunks.wav", riff(fmt(1, 2, 48000, 16) + chunk("data", two16.left(4)) +
                                     chunk("note", "odd") + chunk("data", "") + chunk("data", two16.mid(4))));
    row("unknown chunks around.wav", riff(chunk("JUNK", QByteArray(27, 'x')) + fmt(1, 2, 48000, 16) +
                                          chunk("LIST", "INFO") + data + chunk("id3 ", "abc")));
    row("bytes after the end.wav", riff(fmt(1, 2, 48000, 16) + data) + "left over");
    row("header never completed.wav", "RIFF" + le(quint32(0)) + "WAVE" + fmt(1, 2, 48000, 16) + data);
    row("data of unknown length.wav", "RIFF" + le(quint32(0xFFFFFFFF)) + "WAVE" + fmt(1, 2, 48000, 16) +
                                          "data" + le(quint32(0xFFFFFFFF)) + two16);
    row("long.wav", "RF64" + le(quint32(0xFFFFFFFF)) + "WAVE" +
                        chunk("ds64", le(quint64(100)) + le(quint64(8)) + le(quint64(2)) + le(quint32(0))) +
                        fmt(1, 2, 48000, 16) + "data" + le(quint32(0xFFFFFFFF)) + two16 +
                        chunk("LIST", "INFO"));
    row("wav without its ending", riff(fmt(1, 2, 48000, 16) + data));
    row("14.2MHz.wav", riff(fmt(1, 2, 48000, 16) + data), "", 48000, 14.2e6);
    row("rate in name_12ksps.wav", riff(fmt(1, 2, 48000, 16) + data));
}

void RecordingsTest::acceptedFilesGiveTheirSamplesRateAndCentre()
{
    QFETCH(QString, name);
    QFETCH(QByteArray, bytes);
    QFETCH(QString, format);
    QFETCH(double, rate);
    QFETCH(double, center);
    QString error;
    RecordingOptions options;
    options.format = format;
    const auto source = openRecording(write(name, bytes), options, &error);
    QVERIFY2(source, qPrintable(error));
    QCOMPARE(source->sampleRate(), rate);
    QCOMPARE(source->center(), center);
    QCOMPARE(source->centerMinimum(), source->centerMaximum());
    QCOMPARE(source->name(), name);
    const std::vector<Sample> samples = readAll(*source);
    QVERIFY2(source->error().isEmpty(), qPrintable(source->error()));
    QCOMPARE(samples.size(), std::size_t(2));
    for (int i = 0; i < 2; ++i)
        QVERIFY2(std::abs(samples[std::size_t(i)] - twoSamples()[i]) < 0.008F,
                 qPrintable(QString("sample %1: %2 %3")
                                .arg(i)
                                .arg(double(samples[std::size_t(i)].real()))
                                .arg(double(samples[std::size_t(i)].imag()))));
}

void RecordingsTest::refusedFilesSayWhatWhereAndWhatToDo_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("format");
    QTest::addColumn<double>("rate");  // 0: not given
    QTest::addColumn<QString>("says");
    const auto row = [](const char* name, const QByteArray& bytes, const char* says, const char* format = "",
                        double rate = 0) {
        QTest::addRow("%s %s %g", name, format, rate)
            << QString(name) << bytes << QString(format) << rate << QString(says);
    };
    const QByteArray data = chunk("data", two16);
    const QByteArray good = riff(fmt(1, 2, 48000, 16) + data);
    row("empty.cs16", "", "is empty", "", 48000);
    row("empty.wav", "", "is empty");
    row("no rate.cs16", two16, "--rate");
    row("no format.iq", two16, "--format u8|s8|s16|f32", "", 48000);
    row("wrong format.iq", two16, "there is no format \"s17\"", "s17", 48000);
    row("container format.iq", two16, "there is no format \"s24\"", "s24", 48000);
    row("odd.cs16", two16 + "x", "9 bytes are no whole number of samples of 4 bytes, 1 left over", "", 48000);
    row("half.cf32", two16.left(4), "4 left over", "", 48000);
    row("zero rate 0sps.cs16", two16, "makes no sense");
    row("negative.cs16", two16, "makes no sense", "", -48000);
    row("nan.cs16", two16, "makes no sense", "", std::numeric_limits<double>::quiet_NaN());
    row("infinite.cs16", two16, "makes no sense", "", std::numeric_limits<double>::infinity());
    row("too slow.cs16", two16, "makes no sense", "", 999);
    row("absurd.cs16", two16, "makes no sense", "", 1e15);

    row("zero rate.wav", riff(fmt(1, 2, 0, 16) + data), "makes no sense");
    row("absurd rate.wav", riff(fmt(1, 2, 4000000000U, 16) + data), "makes no sense");
    row("one channel.wav", riff(fmt(1, 1, 48000, 16) + data), "has 1 channel, IQ needs two");
    row("six channels.wav", riff(fmt(1, 6, 48000, 16) + data), "has 6 channels");
    row("12 bit.wav", riff(fmt(1, 2, 48000, 12) + data), "12 bits is not read");
    row("double.wav", riff(fmt(3, 2, 48000, 64) + data), "64 bits is not read");
    row("compressed.wav", riff(fmt(2, 2, 48000, 4) + data), "WAV format 2");
    row("lying block.wav",
        riff(chunk("fmt ", le(quint16(1)) + le(quint16(2)) + le(quint32(48000)) + le(quint32(192000)) +
                               le(quint16(8)) + le(quint16(16))) +
             data),
        "says 8 bytes a sample where its format takes 4");
    row("short fmt.wav", riff(chunk("fmt ", "abcd") + data), "fmt chunk at byte 20 is too short");
    row("no fmt.wav", riff(data), "comes before any fmt chunk");
    row("nothing.wav", riff(""), "has no fmt chunk");
    row("no data.wav", riff(fmt(1, 2, 48000, 16)), "has no data chunk");
    row("empty data.wav", riff(fmt(1, 2, 48000, 16) + chunk("data", "")), "has no data chunk with samples");
    row("half a sample.wav", riff(fmt(1, 2, 48000, 16) + chunk("data", two16.left(6))),
        "2 bytes into a sample");
    row("text.wav", "this is a text and no recording", "not a WAV file");
    row("header only.wav", "RIFF", "truncated");
    row("cut.wav", good.left(good.size() - 3),
        "truncated: the RIFF header promises 44 bytes from byte 8 on, 41 are there, 3 are missing");
    row("cut stream.wav",
        "RIFF" + le(quint32(0)) + "WAVE" + fmt(1, 2, 48000, 16) + "data" + le(quint32(1000)) + two16,
        "truncated: the data chunk promises 1000 bytes from byte 44 on, 8 are there, 992 are missing");
    row("chunk over the end.wav", riff(fmt(1, 2, 48000, 16) + "junk" + le(quint32(0xFFFFFFF0))), "truncated");
    row("chunk over the end of riff.wav",
        "RIFF" + le(quint32(36 + 4)) + "WAVE" + fmt(1, 2, 48000, 16) + "da\n\t" + le(quint32(8)) + two16,
        "the da chunk promises 8 bytes from byte 44 on, 4 are there, 4 are missing");
    row("cut long.wav",
        "RF64" + le(quint32(0xFFFFFFFF)) + "WAVE" +
            chunk("ds64", le(quint64(100)) + le(quint64(80)) + le(quint64(2)) + le(quint32(0))) +
            fmt(1, 2, 48000, 16) + "data" + le(quint32(0xFFFFFFFF)) + two16,
        "72 are missing");
    row("absurd long.wav",
        "RF64" + le(quint32(0xFFFFFFFF)) + "WAVE" +
            chunk("ds64", le(~quint64(0)) + le(~quint64(0)) + le(quint64(2)) + le(quint32(0))) +
            fmt(1, 2, 48000, 16) + "data" + le(quint32(0xFFFFFFFF)) + two16,
        "ds64 chunk");

    row("no data beside.sigmf-meta", meta16, "its samples are missing");
    row("no meta beside.sigmf-data", two16, "must lie together");
    row("no json.sigmf-meta", "{\"global\":", "is no SigMF description");
    row("array.sigmf-meta", "[]", "is no SigMF description");
    row("no datatype.sigmf-meta", "{\"global\":{}}", "has no core:datatype");
    row("real.sigmf-meta", "{\"global\":{\"core:datatype\":\"rf32_le\"}}", "\"rf32_le\" is not read");
    row("big.sigmf-meta", "{\"global\":{\"core:datatype\":\"ci16_be\"}}", "\"ci16_be\" is not read");
    row("channels.sigmf-meta", "{\"global\":{\"core:datatype\":\"cu8\",\"core:num_channels\":2}}",
        "only recordings of one channel");
    row("text rate.sigmf-meta", "{\"global\":{\"core:datatype\":\"cu8\",\"core:sample_rate\":\"fast\"}}",
        "core:sample_rate is no number");
    row("two centres.sigmf-meta",
        "{\"global\":{\"core:datatype\":\"cu8\"},\"captures\":[{\"core:frequency\":1e6},"
        "{\"core:frequency\":2e6}]}",
        "split the recording");
}

void RecordingsTest::refusedFilesSayWhatWhereAndWhatToDo()
{
    QFETCH(QString, name);
    QFETCH(QByteArray, bytes);
    QFETCH(QString, format);
    QFETCH(double, rate);
    QFETCH(QString, says);
    const QString fileName = write(name, bytes);
    RecordingOptions options;
    options.format = format;
    if (rate != 0)
        options.rate = rate;
    QString error;
    QVERIFY(!openRecording(fileName, options, &error));
    QVERIFY2(error.startsWith(fileName + ": "), qPrintable(error));
    QVERIFY2(error.contains(says), qPrintable(error));
    QVERIFY2(error.contains(';') || error.contains("--"), qPrintable("says not what to do: " + error));
    QVERIFY2(!error.contains('\n') && !error.contains("%1"), qPrintable(error));
    QVERIFY(!openRecording(fileName, options, nullptr));
}

void RecordingsTest::pipeIsRefusedWithoutWaiting()
{
    const QString pipe = m_folder.filePath("pipe.cs16");
    QCOMPARE(::mkfifo(QFile::encodeName(pipe).constData(), 0600), 0);
    QString error;
    QVERIFY(!openRecording(pipe, {}, &error));
    QVERIFY2(error.contains("save the stream to a file first"), qPrintable(error));
}

void RecordingsTest::fileWithoutPermissionIsRefused()
{
    const QString fileName = write("48ksps_secret.cs16", two16);
    QVERIFY(QFile::setPermissions(fileName, QFileDevice::Permissions()));
    if (QFile(fileName).open(QIODevice::ReadOnly))
        QSKIP("permissions do not count for this user");
    QString error;
    QVERIFY(!openRecording(fileName, {}, &error));
    QVERIFY2(error.contains("check its permissions"), qPrintable(error));
}

void RecordingsTest::sigmfIsOpenedByEitherName()
{
    const QString meta = write("both.sigmf-meta", meta16);
    const QString data = write("both.sigmf-data", two16);
    for (const QString& name : {meta, data}) {
        QString error;
        const auto source = openRecording(name, {}, &error);
        QVERIFY2(source, qPrintable(error));
        QCOMPARE(source->sampleRate(), 48000.5);
        QCOMPARE(source->center(), 98.5e6);
        const std::vector<Sample> samples = readAll(*source);
        QCOMPARE(samples, std::vector<Sample>(twoSamples().begin(), twoSamples().end()));
    }
    QString error;
    write("both.sigmf-data", two16 + "x");
    QVERIFY(!openRecording(meta, {}, &error));
    QVERIFY2(error.contains("truncated"), qPrintable(error));
    QVERIFY(!openRecording(m_folder.filePath("neither.sigmf-meta"), {}, &error));
    QVERIFY2(error.contains("there is no such file"), qPrintable(error));
    QVERIFY(!openRecording(m_folder.path(), {}, &error));
    QVERIFY2(error.contains("is a folder"), qPrintable(error));
}

void RecordingsTest::numbersGivenWinOverTheFile()
{
    QString error;
    RecordingOptions options;
    options.rate = 12001.03;
    options.center = 77.5e3;
    const QByteArray wav = riff(fmt(1, 2, 12001, 16) + chunk("data", two16));
    const auto source = openRecording(write("1MHz_5ksps.wav", wav), options, &error);
    QVERIFY2(source, qPrintable(error));
    QCOMPARE(source->sampleRate(), 12001.03);
    QCOMPARE(source->center(), 77.5e3);
    for (const double wrong : {-1.0, 1e13, std::numeric_limits<double>::quiet_NaN()}) {
        options.center = wrong;
        QVERIFY(!openRecording(m_folder.filePath("1MHz_5ksps.wav"), options, &error));
        QVERIFY2(error.contains("--center"), qPrintable(error));
    }
}

void RecordingsTest::nameTellsRateAndCentreOnlyWithUnits_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<double>("rate");    // -1: none
    QTest::addColumn<double>("center");  // -1: none
    QTest::newRow("both") << "band_98.5MHz_2.4Msps.cu8" << 2.4e6 << 98.5e6;
    QTest::newRow("other order") << "2400000SPS-77.5kHz.cs16" << 2.4e6 << 77.5e3;
    QTest::newRow("giga") << "/tmp/1.09GHz.bin" << -1.0 << 1.09e9;
    QTest::newRow("the first of two") << "1MHz_2MHz.cu8" << -1.0 << 1e6;
    QTest::newRow("bare numbers") << "20200813T065220Z_77500_iq.wav" << -1.0 << -1.0;
    QTest::newRow("folders do not count") << "/x_5MHz_/y.cu8" << -1.0 << -1.0;
    QTest::newRow("inside a word") << "abc5MHzdef.cu8" << -1.0 << -1.0;
    QTest::newRow("nothing") << "" << -1.0 << -1.0;
}

void RecordingsTest::nameTellsRateAndCentreOnlyWithUnits()
{
    QFETCH(QString, name);
    QFETCH(double, rate);
    QFETCH(double, center);
    const NameHints hints = hintsOfName(name);
    QCOMPARE(hints.rate.value_or(-1.0), rate);
    QCOMPARE(hints.center.value_or(-1.0), center);
}

void RecordingsTest::rewindingBeginsAgainAtTheFirstSample()
{
    QString error;
    const QByteArray wav =
        riff(fmt(1, 2, 48000, 16) + chunk("data", two16.left(4)) + chunk("data", two16.mid(4)));
    const auto source = openRecording(write("again.wav", wav), {}, &error);
    QVERIFY2(source, qPrintable(error));
    const std::vector<Sample> first = readAll(*source);
    Sample sample;
    QCOMPARE(source->read(&sample, 1), std::size_t(0));
    QVERIFY(source->rewind());
    QCOMPARE(readAll(*source), first);
    QVERIFY(source->rewind());
    QCOMPARE(source->read(&sample, 1), std::size_t(1));
    QVERIFY(source->rewind());
    QCOMPARE(readAll(*source), first);
}

void RecordingsTest::samplesDoNotDependOnTheSizeOfTheReads()
{
    QByteArray chunks = fmt(1, 2, 48000, 16);
    std::vector<Sample> expected;
    int number = 0;
    for (const int length : {1, 512, 3, 100000, 512}) {
        QByteArray body;
        for (int i = 0; i < length; ++i, ++number) {
            body += le(qint16(number % 30000)) + le(qint16(-number % 20000));
            expected.emplace_back(float(number % 30000) / 32768.0F, float(-number % 20000) / 32768.0F);
        }
        chunks += chunk("data", body) + chunk("time", "0123456789");
    }
    QString error;
    const auto source = openRecording(write("pieces.wav", riff(chunks)), {}, &error);
    QVERIFY2(source, qPrintable(error));
    for (const std::size_t step : {1U, 511U, 4096U, 1000000U}) {
        QVERIFY(source->rewind());
        QVERIFY(readAll(*source, step) == expected);
    }
}

void RecordingsTest::fileThatBecomesShorterEndsWithAnError()
{
    QString error;
    const QString fileName = write("shrinking.cs16", QByteArray(4 * 100000, '\1'));
    RecordingOptions options;
    options.rate = 48000;
    const auto source = openRecording(fileName, options, &error);
    QVERIFY2(source, qPrintable(error));
    std::vector<Sample> samples(1000);
    QCOMPARE(source->read(samples.data(), 1000), std::size_t(1000));
    QVERIFY(QFile::resize(fileName, 4 * 1500 + 2));
    QCOMPARE(source->read(samples.data(), 1000), std::size_t(500));
    QVERIFY2(source->error().startsWith(fileName + ": reading failed at byte 6002"),
             qPrintable(source->error()));
    QCOMPARE(source->read(samples.data(), 1000), std::size_t(0));
    QVERIFY(!source->rewind());
}

void RecordingsTest::largeFileIsReadPieceByPiece()
{
    // A sparse file larger than what a reader could hold at once.
    const QString fileName = m_folder.filePath("large_5Msps.cu8");
    QFile file(fileName);
    QVERIFY(file.open(QIODevice::WriteOnly));
    constexpr qint64 size = qint64(6) * 1024 * 1024 * 1024;
    if (!file.resize(size))
        QSKIP("the disk does not take a sparse file of 6 GB");
    file.close();
    QString error;
    const auto source = openRecording(fileName, {}, &error);
    QVERIFY2(source, qPrintable(error));
    std::vector<Sample> samples(1000000);
    QCOMPARE(source->read(samples.data(), samples.size()), samples.size());
    QCOMPARE(samples.back(), Sample(-1.0F, -1.0F));
    QVERIFY(QFile::remove(fileName));
}

QTEST_GUILESS_MAIN(RecordingsTest)
#include "tst_recordings.moc"
