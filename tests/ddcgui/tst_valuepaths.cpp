#include <QTest>

#include "valuetree/valuepaths.h"

using namespace ValuePaths;

class tst_ValuePaths : public QObject
{
    Q_OBJECT
private slots:
    void channelPathIsDevicePathAndNodeAndName()
    {
        QCOMPARE(DdcPath("/D", "X"), QString("/D/DDC/X"));
        QCOMPARE(DdcPath("/D", "X") + frequency, QString("/D/DDC/X/Frequency"));
        QCOMPARE(DdcPath("", ""), QString("/DDC/"));  // nothing is normalised
    }

    void levelAndPanLimitsLieUnderOneRootForEveryDevice_data()
    {
        QTest::addColumn<QString>("key");
        QTest::addColumn<QString>("path");
        QTest::newRow("maximum") << ValueKeys::IF_LEVELMAXIMUM << "/GUICOMMON/IF_LEVELMAXIMUM";
        QTest::newRow("minimum") << ValueKeys::IF_LEVELMINIMUM << "/GUICOMMON/IF_LEVELMINIMUM";
        QTest::newRow("half width") << ValueKeys::IFPANHALFWIDTH << "/GUICOMMON/IFPANHALFWIDTH";
        QTest::newRow("start") << ValueKeys::IFPANSTARTFREQ << "/GUICOMMON/IFPANSTARTFREQ";
        QTest::newRow("stop") << ValueKeys::IFPANSTOPFREQ << "/GUICOMMON/IFPANSTOPFREQ";
    }
    void levelAndPanLimitsLieUnderOneRootForEveryDevice()
    {
        QFETCH(QString, key);
        QFETCH(QString, path);
        QCOMPARE(KeyPath(ValueKeys::GUICOMMON, key), path);
    }

    void devicePathsAreComposedAsTheReceiverNamesThem_data()
    {
        QTest::addColumn<QString>("path");
        QTest::addColumn<QString>("expected");
        const QString device = "/RX1";
        QTest::newRow("frequency") << KeyPath(device, ValueKeys::FREQUENCY) << "/RX1/FREQUENCY";
        QTest::newRow("span") << KeyPath(device, ValueKeys::IFPANSPAN) << "/RX1/IFPANSPAN";
        QTest::newRow("commands") << KeyPath(device, ValueKeys::DRVCOMMANDS) << "/RX1/DRVCOMMANDS";
        QTest::newRow("mapping") << KeyPath(device, ValueKeys::IFMAPPING) << "/RX1/IFMAPPING";
        QTest::newRow("caption") << device + deviceCaption << "/RX1/DEVICE_CAPTION";
        QTest::newRow("DF switch") << device + dfEnabled << "/RX1/DDF/DF_ENABLED";
        QTest::newRow("threshold") << KeyPath(device, ValueKeys::DDF, ValueKeys::QUALITYTHRESHOLD)
                                   << "/RX1/DDF/QUALITYTHRESHOLD";
        QTest::newRow("field strength")
            << KeyPath(device, ValueKeys::DDF, ValueKeys::DFFIELDSTRENGTHAVAILABLE)
            << "/RX1/DDF/DFFIELDSTRENGTHAVAILABLE";
        QTest::newRow("record mode") << KeyPath(device, ValueKeys::RECORDREPLAY, ValueKeys::MODE)
                                     << "/RX1/RECORDREPLAY/MODE";
        QTest::newRow("record source")
            << KeyPath(device, ValueKeys::RECORDREPLAY, ValueKeys::SOURCE) << "/RX1/RECORDREPLAY/SOURCE";
        QTest::newRow("audio mode") << device + audio + ValueKeys::AUDIOMODE << "/RX1/AUDIO/AUDIOMODE";
        QTest::newRow("channel mute") << device + audio + ValueKeys::CHANNELMUTE << "/RX1/AUDIO/CHANNELMUTE";
        QTest::newRow("record valid")
            << device + audio + ValueKeys::AUDRECORDVALID << "/RX1/AUDIO/AUDRECORDVALID";
        QTest::newRow("channels") << device + ddcNode << "/RX1/DDC";
    }
    void devicePathsAreComposedAsTheReceiverNamesThem()
    {
        QFETCH(QString, path);
        QFETCH(QString, expected);
        QCOMPARE(path, expected);
    }

    void channelPathsAreComposedAsTheReceiverNamesThem_data()
    {
        QTest::addColumn<QString>("path");
        QTest::addColumn<QString>("expected");
        const QString ddc = DdcPath("/RX1", "DDC1");
        const char* const suffixes[][2] = {
            {frequency, "/Frequency"},
            {frequencyCoupled, "/FrequencyCoupled"},
            {demodulationCoupled, "/DemodulationCoupled"},
            {demodulation, "/Demodulation"},
            {bandwidth, "/Bandwidth"},
            {levelValue, "/LevelValue"},
            {squelchState, "/SquelchState"},
            {squelchValue, "/SquelchValue"},
            {audioMute, "/AudioMute"},
            {audioBalance, "/AudioBalance"},
            {audioMode, "/AudioMode"},
            {writeDb, "/COB/WriteDB"},
            {channelRecording, "/ChannelRecording"},
            {connectedClient, "/ConnectedClient"},
            {ddcMode, "/DDCMode"},
            {pdwPath, "/PDWPath"},
            {handoverPath, "/HandoverPath"},
        };
        for (const auto& suffix : suffixes)
            QTest::newRow(suffix[1]) << ddc + suffix[0] << "/RX1/DDC/DDC1" + QString(suffix[1]);
        QTest::newRow("audio recording")
            << KeyPath(ddc, ValueKeys::AudioRecording) << "/RX1/DDC/DDC1/AudioRecording";
        QTest::newRow("IF recording") << KeyPath(ddc, ValueKeys::IfRecording) << "/RX1/DDC/DDC1/IfRecording";
        QTest::newRow("bearing") << KeyPath(ddc, ValueKeys::BEARINGRESULT) << "/RX1/DDC/DDC1/BEARINGRESULT";
    }
    void channelPathsAreComposedAsTheReceiverNamesThem()
    {
        QFETCH(QString, path);
        QFETCH(QString, expected);
        QCOMPARE(path, expected);
    }

    void suffixAndKeyOfOneWordAreDifferentValues()
    {
        QVERIFY("/D" + QString(frequency) != KeyPath("/D", ValueKeys::FREQUENCY));
    }

    void hooksMirrorAPathToItsOwnPlace()
    {
        QCOMPARE(HookPair("/RX1"), QString("/RX1,/RX1"));
        QCOMPARE(HookPair(""), QString(","));
        QCOMPARE(QString(administrationHook), QString("/ADMINISTRATION,/ADMINISTRATION"));
        QCOMPARE(QString(serverValuesHooked), QString("/ADMINISTRATION/SERVERVALUESHOOKED"));
    }

    void piecesAreJoinedWithoutASeparatorAndLeftUnchanged()
    {
        const QString left = "/RX1";
        const QString right = "/DDC";
        QCOMPARE(left + right, QString("/RX1/DDC"));
        QCOMPARE(left + "X", QString("/RX1X"));
        QCOMPARE("X" + left, QString("X/RX1"));
        QCOMPARE(left, QString("/RX1"));
        QCOMPARE(right, QString("/DDC"));
    }
};

QTEST_GUILESS_MAIN(tst_ValuePaths)
#include "tst_valuepaths.moc"
