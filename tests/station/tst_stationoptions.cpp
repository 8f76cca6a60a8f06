#include <QDir>
#include <QTemporaryDir>
#include <QTest>

#include "station/options.h"

// What the launcher takes and what it refuses, before it starts anything.
class StationOptionsTest : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void acceptsWhatItKnows_data();
    void acceptsWhatItKnows();
    void refusesWithOneLineThatNamesTheOption_data();
    void refusesWithOneLineThatNamesTheOption();
    void showsTheFirstChannelWhenNothingIsSaid();
    void takesAConfigurationByItsNameInTheInstalledFolder();
    void listsTheInstalledNamesWhenThereIsNoSuchConfiguration();
};

void StationOptionsTest::acceptsWhatItKnows_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QStringList>("forDriver");
    QTest::addColumn<QStringList>("forWindows");
    QTest::newRow("nothing") << QStringList() << QStringList() << QStringList();
    QTest::newRow("scene") << QStringList{"--scene", "5"} << QStringList{"--scene", "5"} << QStringList();
    QTest::newRow("recording") << QStringList{"--iq=a.u8", "--rate", "2.4M", "--center", "77.5k"}
                               << QStringList{"--iq", "a.u8", "--rate", "2.4M", "--center", "77.5k"}
                               << QStringList();
    QTest::newRow("once waits for its reader")
        << QStringList{"--iq", "a.wav", "--once"} << QStringList{"--iq", "a.wav", "--once", "--wait-client"}
        << QStringList();
    QTest::newRow("windows") << QStringList{"--headless", "--seconds", "2", "--set", "/a/b=c=d"}
                             << QStringList()
                             << QStringList{"--headless", "--seconds", "2", "--set", "/a/b=c=d"};
    QTest::newRow("equals") << QStringList{"--set=/a/b=c=d"} << QStringList()
                            << QStringList{"--set", "/a/b=c=d"};
}

void StationOptionsTest::acceptsWhatItKnows()
{
    QFETCH(QStringList, arguments);
    StationOptions options;
    QString error;
    QVERIFY2(parseStationOptions(arguments, &options, &error), qPrintable(error));
    QTEST(options.driverArguments, "forDriver");
    QTEST(options.windowArguments, "forWindows");
}

void StationOptionsTest::refusesWithOneLineThatNamesTheOption_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("named");
    QTest::newRow("unknown") << QStringList{"--frobnicate"} << "--frobnicate";
    QTest::newRow("stray word") << QStringList{"stray"} << "stray";
    QTest::newRow("nothing after it") << QStringList{"--iq"} << "--iq";
    QTest::newRow("empty") << QStringList{"--iq="} << "--iq";
    QTest::newRow("no number") << QStringList{"--seconds", "soon"} << "--seconds";
    QTest::newRow("no port") << QStringList{"--vnc", "70000"} << "--vnc";
    QTest::newRow("no address") << QStringList{"--driver", "here"} << "--driver";
    QTest::newRow("port 0") << QStringList{"--driver", "127.0.0.1:0"} << "--driver";
    QTest::newRow("flag with a value") << QStringList{"--once=yes"} << "--once";
    QTest::newRow("two sources") << QStringList{"--iq", "a", "--scene", "1"} << "--iq";
    QTest::newRow("source of a running driver")
        << QStringList{"--driver", "a:1", "--scene", "1"} << "--scene";
    QTest::newRow("shown nowhere and there") << QStringList{"--headless", "--vnc", "5900"} << "--vnc";
}

void StationOptionsTest::refusesWithOneLineThatNamesTheOption()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, named);
    StationOptions options;
    QString error;
    QVERIFY(!parseStationOptions(arguments, &options, &error));
    QVERIFY2(error.contains(named), qPrintable(error));
    QVERIFY2(!error.contains('\n'), qPrintable(error));
}

void StationOptionsTest::showsTheFirstChannelWhenNothingIsSaid()
{
    StationOptions options;
    QString error;
    QVERIFY(parseStationOptions({}, &options, &error));
    QCOMPARE(options.configurations, QStringList{"RxDDC1"});
    StationOptions two;
    QVERIFY(parseStationOptions({"--config", "RxDDC2", "--config", "RxDDC3"}, &two, &error));
    QCOMPARE(two.configurations, (QStringList{"RxDDC2", "RxDDC3"}));
}

void StationOptionsTest::takesAConfigurationByItsNameInTheInstalledFolder()
{
    QTemporaryDir folder;
    QFile file(folder.filePath("RxDDC7.toml"));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.close();
    QString error;
    QCOMPARE(findConfiguration("RxDDC7", folder.path(), &error), QFileInfo(file).absoluteFilePath());
    QCOMPARE(findConfiguration(file.fileName(), "/nowhere", &error), QFileInfo(file).absoluteFilePath());
}

void StationOptionsTest::listsTheInstalledNamesWhenThereIsNoSuchConfiguration()
{
    QTemporaryDir folder;
    QFile file(folder.filePath("RxDDC7.toml"));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.close();
    QString error;
    QVERIFY(findConfiguration("RxDDC8", folder.path(), &error).isEmpty());
    QVERIFY2(error.contains("RxDDC8") && error.contains("RxDDC7"), qPrintable(error));
    QVERIFY(findConfiguration("../RxDDC7", folder.path(), &error).isEmpty());
}

QTEST_GUILESS_MAIN(StationOptionsTest)
#include "tst_stationoptions.moc"
