#include <QTest>

#include "app/appoptions.h"

// The command line of the workbench.
class AppOptionsTest : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void acceptsWhatItKnows_data();
    void acceptsWhatItKnows();
    void refusesWithOneLineThatNamesTheOption_data();
    void refusesWithOneLineThatNamesTheOption();
    void keepsWritesInTheirOrderAndWhole();
    void splitsAddresses_data();
    void splitsAddresses();
    void listsEveryOptionInItsHelp();
};

void AppOptionsTest::acceptsWhatItKnows_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::newRow("least") << QStringList{"--config", "a.toml"};
    QTest::newRow("help needs nothing else") << QStringList{"--help"};
    QTest::newRow("version needs nothing else") << QStringList{"--version"};
    QTest::newRow("all of it") << QStringList{
        "--config=a.toml", "--driver", "[::1]:4600", "--headless", "--seconds", "0.5", "--shots", "out",
        "--set",           "/a/b=1",   "--log",      "x.log",      "--state",   "dir", "--theme", "dark",
        "--scale",         "1.5",      "--plugins",  "p",          "--plugins", "q"};
}

void AppOptionsTest::acceptsWhatItKnows()
{
    QFETCH(QStringList, arguments);
    AppOptions options;
    QString error;
    QVERIFY2(parseAppOptions(arguments, &options, &error), qPrintable(error));
    QVERIFY(error.isEmpty());
}

void AppOptionsTest::refusesWithOneLineThatNamesTheOption_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("named");
    QTest::newRow("nothing at all") << QStringList() << "--config";
    QTest::newRow("unknown") << QStringList{"--config", "a", "--fast"} << "--fast";
    QTest::newRow("stray word") << QStringList{"--config", "a", "b"} << "\"b\"";
    QTest::newRow("nothing after it") << QStringList{"--config"} << "--config";
    QTest::newRow("empty") << QStringList{"--config="} << "--config";
    QTest::newRow("no address") << QStringList{"--config", "a", "--driver", "here"} << "--driver";
    QTest::newRow("port too high") << QStringList{"--config", "a", "--driver", "h:65536"} << "--driver";
    QTest::newRow("no time") << QStringList{"--config", "a", "--seconds", "long"} << "--seconds";
    QTest::newRow("time behind us") << QStringList{"--config", "a", "--seconds", "-1"} << "--seconds";
    QTest::newRow("not a number") << QStringList{"--config", "a", "--seconds", "nan"} << "--seconds";
    QTest::newRow("no path") << QStringList{"--config", "a", "--set", "a=1"} << "--set";
    QTest::newRow("no value") << QStringList{"--config", "a", "--set", "/a/b"} << "--set";
    QTest::newRow("root only") << QStringList{"--config", "a", "--set", "/=1"} << "--set";
    QTest::newRow("no such colours") << QStringList{"--config", "a", "--theme", "pink"} << "--theme";
    QTest::newRow("too large") << QStringList{"--config", "a", "--scale", "50"} << "--scale";
    QTest::newRow("flag with a value") << QStringList{"--config", "a", "--headless=1"} << "--headless";
}

void AppOptionsTest::refusesWithOneLineThatNamesTheOption()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, named);
    AppOptions options;
    QString error;
    QVERIFY(!parseAppOptions(arguments, &options, &error));
    QVERIFY2(error.contains(named), qPrintable(error));
    QVERIFY2(!error.contains('\n'), qPrintable(error));
}

void AppOptionsTest::keepsWritesInTheirOrderAndWhole()
{
    AppOptions options;
    QString error;
    QVERIFY(parseAppOptions({"--config", "a", "--set", "/b/c=x=y", "--set", "/a/b="}, &options, &error));
    QCOMPARE(options.writes.size(), 2);
    QCOMPARE(options.writes.at(0), qMakePair(QString("/b/c"), QString("x=y")));
    QCOMPARE(options.writes.at(1), qMakePair(QString("/a/b"), QString()));
}

void AppOptionsTest::splitsAddresses_data()
{
    QTest::addColumn<QString>("address");
    QTest::addColumn<QString>("host");  // empty: refused
    QTest::addColumn<int>("port");
    QTest::newRow("name") << "receiver.example:4600"
                          << "receiver.example" << 4600;
    QTest::newRow("number") << "127.0.0.1:1"
                            << "127.0.0.1" << 1;
    QTest::newRow("long number") << "[::1]:65535"
                                 << "::1" << 65535;
    QTest::newRow("no port") << "host"
                             << "" << 0;
    QTest::newRow("empty port") << "host:"
                                << "" << 0;
    QTest::newRow("port 0") << "host:0"
                            << "" << 0;
    QTest::newRow("no host") << ":4600"
                             << "" << 0;
    QTest::newRow("empty brackets") << "[]:4600"
                                    << "" << 0;
}

void AppOptionsTest::splitsAddresses()
{
    QFETCH(QString, address);
    QFETCH(QString, host);
    QFETCH(int, port);
    QString foundHost;
    quint16 foundPort = 0;
    QCOMPARE(splitAddress(address, &foundHost, &foundPort), !host.isEmpty());
    QCOMPARE(foundHost, host);
    QCOMPARE(static_cast<int>(foundPort), port);
}

void AppOptionsTest::listsEveryOptionInItsHelp()
{
    const QString help = appHelp();
    for (const char* name : {"--config", "--driver", "--headless", "--seconds", "--shots", "--set", "--log",
                             "--state", "--theme", "--scale", "--plugins", "--help", "--version"}) {
        QVERIFY2(help.contains(name), name);
    }
}

QTEST_GUILESS_MAIN(AppOptionsTest)
#include "tst_appoptions.moc"
