#include <QTest>

#include "receiver/main/driveroptions.h"

using namespace Receiver;

class TestDriverOptions : public QObject
{
    Q_OBJECT
private slots:
    void withoutOptionsTheSceneIsServedOnLoopback();
    void acceptedOptions_data();
    void acceptedOptions();
    void refusedOptionsAreOneLineThatNamesThem_data();
    void refusedOptionsAreOneLineThatNamesThem();
    void helpNamesEveryOption();
    void versionIsPrinted();
};

namespace {

ParsedOptions parse(const QStringList& arguments)
{
    return parseDriverOptions(QStringList("rxdriver") + arguments);
}

// What the tables compare: all options in one line.
QString summary(const DriverOptions& options)
{
    QStringList words = {options.host, QString::number(options.port)};
    if (options.streamPort)
        words << QString("streams=%1").arg(*options.streamPort);
    if (options.recordingFile.isEmpty())
        words << QString("scene=%1").arg(options.seed);
    else
        words << "iq=" + options.recordingFile;
    if (options.recording.rate)
        words << QString("rate=%1").arg(*options.recording.rate, 0, 'g', 12);
    if (options.recording.center)
        words << QString("center=%1").arg(*options.recording.center, 0, 'g', 12);
    if (!options.recording.format.isEmpty())
        words << "format=" + options.recording.format;
    if (options.once)
        words << "once";
    if (options.waitForClient)
        words << "wait";
    words << options.devicePath << options.caption << QString::number(options.channels);
    return words.join(' ');
}

}  // namespace

void TestDriverOptions::withoutOptionsTheSceneIsServedOnLoopback()
{
    const ParsedOptions parsed = parse({});
    QVERIFY(parsed.options.has_value());
    QCOMPARE(summary(*parsed.options), QString("127.0.0.1 4600 scene=1 /RX1 RX1 4"));
}

void TestDriverOptions::acceptedOptions_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("options");
    const auto row = [](const char* name, const QStringList& arguments, const char* options) {
        QTest::newRow(name) << arguments << options;
    };
    row("free port", {"--listen", "127.0.0.1:0"}, "127.0.0.1 0 scene=1 /RX1 RX1 4");
    row("localhost", {"--listen", "localhost:4601"}, "127.0.0.1 4601 scene=1 /RX1 RX1 4");
    row("all interfaces", {"--listen=0.0.0.0:65535"}, "0.0.0.0 65535 scene=1 /RX1 RX1 4");
    row("IPv6", {"--listen", "[::1]:5"}, "::1 5 scene=1 /RX1 RX1 4");
    row("port for streams", {"--stream-port", "4700"}, "127.0.0.1 4600 streams=4700 scene=1 /RX1 RX1 4");
    row("free port for streams", {"--listen", "127.0.0.1:0", "--stream-port", "0"},
        "127.0.0.1 0 streams=0 scene=1 /RX1 RX1 4");
    row("seed", {"--scene", "18446744073709551615"}, "127.0.0.1 4600 scene=18446744073709551615 /RX1 RX1 4");
    row("recording", {"--iq", "a b.wav"}, "127.0.0.1 4600 iq=a b.wav /RX1 RX1 4");
    row("raw recording", {"--iq", "x", "--rate", "2.4M", "--center", "77.5k", "--format", "s16"},
        "127.0.0.1 4600 iq=x rate=2400000 center=77500 format=s16 /RX1 RX1 4");
    row("units", {"--iq", "x", "--rate", "48 kS/s", "--center", "98.5 MHz"},
        "127.0.0.1 4600 iq=x rate=48000 center=98500000 /RX1 RX1 4");
    row("once", {"--iq", "x", "--once", "--wait-client"}, "127.0.0.1 4600 iq=x once wait /RX1 RX1 4");
    row("centre of zero", {"--iq", "x", "--center", "0"}, "127.0.0.1 4600 iq=x center=0 /RX1 RX1 4");
    row("device", {"--device", "/SITE/RX2"}, "127.0.0.1 4600 scene=1 /SITE/RX2 RX2 4");
    row("caption", {"--caption", "North"}, "127.0.0.1 4600 scene=1 /RX1 North 4");
    row("channels", {"--channels", "64"}, "127.0.0.1 4600 scene=1 /RX1 RX1 64");
}

void TestDriverOptions::acceptedOptions()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, options);
    const ParsedOptions parsed = parse(arguments);
    QCOMPARE(parsed.text, QString());
    QVERIFY(parsed.options.has_value());
    QCOMPARE(summary(*parsed.options), options);
}

void TestDriverOptions::refusedOptionsAreOneLineThatNamesThem_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("named");
    const auto row = [](const char* name, const QStringList& arguments, const char* named) {
        QTest::newRow(name) << arguments << named;
    };
    row("unknown option", {"--fast"}, "fast");
    row("missing value", {"--rate"}, "--rate");
    row("word", {"file.wav"}, "file.wav");
    row("no port", {"--listen", "127.0.0.1"}, "--listen 127.0.0.1");
    row("no host", {"--listen", ":4600"}, "--listen :4600");
    row("huge port", {"--listen", "127.0.0.1:65536"}, "65536");
    row("port that is no number", {"--listen", "127.0.0.1:x"}, "--listen");
    row("host that is no address", {"--listen", "example:1"}, "example:1");
    row("IPv6 without brackets", {"--listen", "::1:4600"}, "--listen");
    row("empty listen", {"--listen", ""}, "--listen");
    row("huge port for streams", {"--stream-port", "65536"}, "--stream-port 65536");
    row("negative port for streams", {"--stream-port", "-1"}, "--stream-port -1");
    row("empty port for streams", {"--stream-port", ""}, "--stream-port");
    row("port for streams that is the other", {"--listen", "127.0.0.1:5000", "--stream-port", "5000"},
        "--stream-port 5000");
    row("seed that is no number", {"--scene", "north"}, "--scene north");
    row("negative seed", {"--scene", "-1"}, "--scene");
    row("scene and recording", {"--scene", "1", "--iq", "x"}, "--scene and --iq");
    row("empty recording", {"--iq", ""}, "--iq");
    row("rate of a scene", {"--rate", "1M"}, "--rate");
    row("centre of a scene", {"--center", "1M"}, "--center");
    row("format of a scene", {"--format", "u8"}, "--format");
    row("scene once", {"--once"}, "--once");
    row("rate that is no number", {"--iq", "x", "--rate", "fast"}, "--rate fast");
    row("rate of zero", {"--iq", "x", "--rate", "0"}, "--rate 0");
    row("negative rate", {"--iq", "x", "--rate", "-48k"}, "--rate -48k");
    row("huge rate", {"--iq", "x", "--rate", "2G"}, "--rate 2G");
    row("negative centre", {"--iq", "x", "--center", "-1"}, "--center -1");
    row("centre that is no number", {"--iq", "x", "--center", "up"}, "--center up");
    row("unknown format", {"--iq", "x", "--format", "s24"}, "--format s24");
    row("device without slash", {"--device", "RX1"}, "--device RX1");
    row("device with a line end", {"--device", "/RX1\n"}, "--device");
    row("no channels", {"--channels", "0"}, "--channels 0");
    row("too many channels", {"--channels", "65"}, "--channels 65");
    row("half a channel", {"--channels", "1.5"}, "--channels 1.5");
}

void TestDriverOptions::refusedOptionsAreOneLineThatNamesThem()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, named);
    const ParsedOptions parsed = parse(arguments);
    QVERIFY(!parsed.options.has_value());
    QCOMPARE(parsed.exitCode, badUseExitCode);
    QVERIFY2(parsed.text.contains(named), qPrintable(parsed.text));
    QVERIFY(!parsed.text.contains('\n'));
    QVERIFY(parsed.text.contains("--help"));
}

void TestDriverOptions::helpNamesEveryOption()
{
    const ParsedOptions parsed = parse({"--help"});
    QVERIFY(!parsed.options.has_value());
    QCOMPARE(parsed.exitCode, 0);
    for (const char* name : {"--listen", "--scene", "--iq", "--rate", "--center", "--format", "--once",
                             "--wait-client", "--device", "--caption", "--channels", "--version"})
        QVERIFY2(parsed.text.contains(name), name);
}

void TestDriverOptions::versionIsPrinted()
{
    const ParsedOptions parsed = parse({"--version"});
    QVERIFY(!parsed.options.has_value());
    QCOMPARE(parsed.exitCode, 0);
    QVERIFY(QRegularExpression("\\Arxdriver \\d+\\.\\d+\\.\\d+\\n\\z").match(parsed.text).hasMatch());
}

QTEST_GUILESS_MAIN(TestDriverOptions)
#include "tst_driveroptions.moc"
