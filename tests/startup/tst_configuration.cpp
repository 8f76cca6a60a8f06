#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>
#include <memory>

#include "startup/cfgcenter.h"
#include "startup/configschema.h"
#include "startup/startuphost.h"

// What a configuration may be, and what is said about one that is not right.
class TestConfiguration : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup() { StartupHost::ClearConfiguration(); }

    void acceptedConfigurationsGiveTheirValues_data()
    {
        QTest::addColumn<QString>("toml");
        QTest::addColumn<QString>("node");
        QTest::addColumn<QString>("key");
        QTest::addColumn<QString>("text");  // "-": the default

        const QString config = QStringLiteral("[AdditionalDlls.DDCGUI.Config]\n");
        const QString node = QStringLiteral("app\\AdditionalDlls\\DDCGUI\\Config");
        QTest::newRow("a text") << config + "ValuePath = \"/RX1\"" << node << "ValuePath"
                                << "/RX1";
        QTest::newRow("a literal text") << config + "Caption = 'a\\b'" << node << "Caption"
                                        << "a\\b";
        QTest::newRow("any script") << config + "Caption = \"Empfänger 受信機 📡\"" << node << "Caption"
                                    << "Empfänger 受信機 📡";
        QTest::newRow("an empty text") << config + "Caption = \"\"" << node << "Caption"
                                       << "";
        QTest::newRow("a missing key") << config << node << "Caption"
                                       << "-";
        QTest::newRow("nothing at all") << ""
                                        << "app"
                                        << "MapViewAddress"
                                        << "-";
        QTest::newRow("only comments") << "# nothing\n\n# here"
                                       << "app"
                                       << "MapViewAddress"
                                       << "-";
        QTest::newRow("the root") << "MapViewAddress = \"127.0.0.1:8080\""
                                  << "app"
                                  << "MapViewAddress"
                                  << "127.0.0.1:8080";
        QTest::newRow("dotted keys") << "AdditionalDlls.DDCGUI.Config.DdcName = \"DDC2\"" << node << "DdcName"
                                     << "DDC2";
        QTest::newRow("inline tables")
            << "AdditionalDlls = { DDCGUI = { Config = { DdcName = \"DDC3\" } } }" << node << "DdcName"
            << "DDC3";
        QTest::newRow("a byte order mark")
            << QString(QChar(0xFEFF)) + config + "DdcName = \"DDC1\"" << node << "DdcName"
            << "DDC1";
        QTest::newRow("lines of another system") << "[AdditionalDlls.DDCGUI.Config]\r\nDdcName = \"DDC1\"\r\n"
                                                 << node << "DdcName"
                                                 << "DDC1";
        QTest::newRow("a name of its own") << "Name = \"RxDDC1\"\n" + config + "DdcName = \"DDC1\""
                                           << "RxDDC1\\AdditionalDlls\\DDCGUI\\Config"
                                           << "DdcName"
                                           << "DDC1";
    }

    void acceptedConfigurationsGiveTheirValues()
    {
        QFETCH(QString, toml);
        QFETCH(QString, node);
        QFETCH(QString, key);
        QFETCH(QString, text);
        QString error;
        QVERIFY2(StartupHost::LoadConfigurationText(toml, QStringLiteral("app.toml"), &error),
                 qPrintable(error));
        const std::unique_ptr<ICfg> cfg(CfgCenter::Instance()->CreateCfg(node, 2, QString()));
        QVERIFY(cfg);
        QCOMPARE(cfg->GetString(key, QStringLiteral("-"), ""), text);
        QCOMPARE(StartupHost::ConfigurationWarnings(), QStringList());
    }

    void refusedConfigurationsSayWhereAndStayEmpty_data()
    {
        QTest::addColumn<QByteArray>("toml");
        QTest::addColumn<QString>("start");

        QTest::newRow("no value") << QByteArray("A = \nB = 1") << "app.toml:1:5: ";
        QTest::newRow("no closing quote") << QByteArray("A = 1\nName = \"Rx\nB = 2") << "app.toml:2:11: ";
        QTest::newRow("no closing bracket")
            << QByteArray("[AdditionalDlls.DDCGUI\nB = 2") << "app.toml:1:23: ";
        QTest::newRow("a bare word") << QByteArray("Boxed = yes") << "app.toml:1:9: ";
        QTest::newRow("a key twice") << QByteArray("A = 1\nB = 2\nA = 3") << "app.toml:3:5: ";
        QTest::newRow("a table twice") << QByteArray("[A]\n[B]\n[A]") << "app.toml:3:1: ";
        QTest::newRow("text after a value") << QByteArray("A = 1 2") << "app.toml:1:7: ";
        QTest::newRow("not UTF-8") << QByteArray("A = \"\xff\xfe\"") << "app.toml:1:5: ";
        QTest::newRow("a null byte") << QByteArray("A = 1\0B", 7) << "app.toml:1:6: ";
        QTest::newRow("an integer too long")
            << QByteArray("TraceMask = 99999999999999999999") << "app.toml:1:33: ";
        QTest::newRow("a name with a backslash")
            << QByteArray("Boxed = true\nName = 'Rx\\1'")
            << "app.toml:2:8: Name is \"Rx\\1\"; write a name without backslashes that is not empty";
        QTest::newRow("an empty name")
            << QByteArray("Name = \"\"") << "app.toml:1:8: Name is \"\"; write a name";
        QTest::newRow("names of too many parts")
            << QByteArray("A = 1\n[") + QByteArray("a.").repeated(100000) + "a]"
            << "app.toml:2:1: 100000 points in one line; key names have at most 65 parts";
        QTest::newRow("arrays in arrays without end")
            << QByteArray("A = ") + QByteArray("[").repeated(100000) << "app.toml:1:";
    }

    void refusedConfigurationsSayWhereAndStayEmpty()
    {
        QFETCH(QByteArray, toml);
        QFETCH(QString, start);
        const QTemporaryDir folder;
        const QString file = folder.filePath(QStringLiteral("app.toml"));
        Write(file, toml);
        QVERIFY(StartupHost::LoadConfigurationText(QStringLiteral("A = 1"), QStringLiteral("former.toml"),
                                                   nullptr));
        QString error;
        QVERIFY(!StartupHost::LoadConfiguration(file, &error));
        QVERIFY2(error.startsWith(folder.path() + QLatin1Char('/') + start), qPrintable(error));
        QVERIFY(error.size() > (folder.path() + start).size() - 20);
        QVERIFY(!CfgCenter::Instance()->GetAppCfg(2));
        QCOMPARE(CfgCenter::GetAppName(), QString());
        QVERIFY(StartupHost::ConfigurationWarnings().isEmpty());
    }

    void filesThatCannotBeReadSaySo_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("what");
        QTest::newRow("missing") << "none.toml"
                                 << ":1:1: no such file; give the name of an existing configuration file";
        QTest::newRow("a folder")
            << "folder"
            << ":1:1: not a file; give the name of a configuration file, not of a folder";
        QTest::newRow("huge")
            << "huge.toml"
            << ":1:1: 2000000 bytes are too long for a configuration (at most 1048576); give the "
               "name of a configuration file";
    }

    void filesThatCannotBeReadSaySo()
    {
        QFETCH(QString, name);
        QFETCH(QString, what);
        const QTemporaryDir folder;
        QVERIFY(QDir(folder.path()).mkdir(QStringLiteral("folder")));
        Write(folder.filePath(QStringLiteral("huge.toml")), QByteArray(2000000, '#'));
        QString error;
        QVERIFY(!StartupHost::LoadConfiguration(folder.filePath(name), &error));
        QCOMPARE(error, folder.filePath(name) + what);
    }

    void warningsNameTheKeyItsPlaceAndWhatToDo_data()
    {
        QTest::addColumn<QString>("toml");
        QTest::addColumn<QStringList>("warnings");
        const QString ddc = QStringLiteral("[AdditionalDlls.DDCGUI.Config]\n");
        const QString inDdc = QStringLiteral(" in app\\AdditionalDlls\\DDCGUI\\Config");

        QTest::newRow("a number for a text")
            << ddc + "ValuePath = 17"
            << QStringList("app.toml:2:13: ValuePath" + inDdc +
                           " is an integer, expected a text; the default is used");
        QTest::newRow("a text for a truth value")
            << ddc + "LocalRecorder = \"true\""
            << QStringList("app.toml:2:17: LocalRecorder" + inDdc +
                           " is a text, expected true or false; the default is used");
        QTest::newRow("a text for a mask")
            << "\n  TraceMask = \"0x20\""
            << QStringList(
                   "app.toml:2:15: TraceMask in app is a text, expected an integer; the default is used");
        QTest::newRow("a fraction for a mask")
            << "TraceMask = 1.5"
            << QStringList(
                   "app.toml:1:13: TraceMask in app is a number, expected an integer; the default is used");
        QTest::newRow("a mask of more bits than there are")
            << "TraceMask = 0x100000000"
            << QStringList(
                   "app.toml:1:13: TraceMask in app is 4294967296, expected 0 to 4294967295; the default is "
                   "used");
        QTest::newRow("a negative time") << "ConnectionTimeout = -5"
                                         << QStringList(
                                                "app.toml:1:21: ConnectionTimeout in app is -5, expected "
                                                "0.001 to 86400; the default is used");
        QTest::newRow("a time that is none") << "ConnectionTimeout = nan"
                                             << QStringList(
                                                    "app.toml:1:21: ConnectionTimeout in app is nan, "
                                                    "expected 0.001 to 86400; the default is used");
        QTest::newRow("a text for the plug-ins")
            << "AdditionalDlls = \"libddcgui\""
            << QStringList(
                   "app.toml:1:18: AdditionalDlls in app is a text, expected a table or an array of tables; "
                   "the default is used");
        QTest::newRow("a file name one level too high")
            << "[AdditionalDlls]\nFileName = \"libddcgui\""
            << QStringList(
                   "app.toml:2:12: FileName in app\\AdditionalDlls is a text, expected a table or an array "
                   "of "
                   "tables; the default is used");
        QTest::newRow("a mixed array for a group")
            << "[AdditionalDlls.ReceiverGui.Config]\nMshClientCfg = [1, {}]"
            << QStringList(
                   "app.toml:2:16: MshClientCfg in app\\AdditionalDlls\\ReceiverGui\\Config is an array, "
                   "expected a table or an array of tables; the default is used");
        QTest::newRow("a date for a text")
            << "Language = 2024-05-01"
            << QStringList(
                   "app.toml:1:12: Language in app is a date or time, expected a text; the default is used");
        QTest::newRow("a misspelt key of the application")
            << "Boxed = true\nLanguge = \"de\""
            << QStringList("app.toml:2:1: unknown key Languge in app; did you mean Language?");
        QTest::newRow("a misspelt key of a plug-in")
            << ddc + "  ValuPath = \"/RX1\""
            << QStringList("app.toml:2:3: unknown key ValuPath" + inDdc + "; did you mean ValuePath?");
        QTest::newRow("the wrong case")
            << ddc + "ddcname = \"DDC1\""
            << QStringList("app.toml:2:1: unknown key ddcname" + inDdc + "; did you mean DdcName?");
        QTest::newRow("neighbours swapped")
            << "Drievr = \"localhost:1\""
            << QStringList("app.toml:1:1: unknown key Drievr in app; did you mean Driver?");
        QTest::newRow("nothing like it")
            << "Zwiebelkuchen = 1"
            << QStringList(
                   "app.toml:1:1: unknown key Zwiebelkuchen in app; nobody reads "
                   "it, remove it or correct its name");
        QTest::newRow("an unknown table is told once, not its keys")
            << "[Zwiebelkuchen]\nA = 1\nB = 2"
            << QStringList(
                   "app.toml:1:2: unknown key Zwiebelkuchen in app; nobody reads it, remove it or correct "
                   "its "
                   "name");
        QTest::newRow("a key of an element")
            << "[[AdditionalDlls.ReceiverGui.Config.MshClientCfg]]\nIsReciever = true\n"
               "[[AdditionalDlls.ReceiverGui.Config.MshClientCfg]]\nSubGroup = 1"
            << QStringList(
                   {"app.toml:4:12: SubGroup in app\\AdditionalDlls\\ReceiverGui\\Config\\MshClientCfg is an "
                    "integer, expected a text; the default is used",
                    "app.toml:2:1: unknown key IsReciever in "
                    "app\\AdditionalDlls\\ReceiverGui\\Config\\MshClientCfg; did you mean IsReceiver?"});
        QTest::newRow("a plug-in under another entry's name")
            << "[AdditionalDlls.Second]\nFileName = \"libddcgui\"\n[AdditionalDlls.Second.Config]\nValuePat "
               "= \"/\""
            << QStringList(
                   "app.toml:4:1: unknown key ValuePat in app\\AdditionalDlls\\Second\\Config; did you mean "
                   "ValuePath?");
        QTest::newRow("several, in the order of the file")
            << "Zeta9 = 1\nAlpha9 = 2"
            << QStringList(
                   {"app.toml:1:1: unknown key Zeta9 in app; nobody reads it, remove it or correct its name",
                    "app.toml:2:1: unknown key Alpha9 in app; nobody reads it, remove it or correct its "
                    "name"});
    }

    void warningsNameTheKeyItsPlaceAndWhatToDo()
    {
        QFETCH(QString, toml);
        QFETCH(QStringList, warnings);
        QString error;
        QVERIFY2(StartupHost::LoadConfigurationText(toml, QStringLiteral("app.toml"), &error),
                 qPrintable(error));
        QCOMPARE(StartupHost::ConfigurationWarnings(), warnings);
        QCOMPARE(StartupHost::ConfigurationWarnings(), warnings);  // and never twice
    }

    void aKeyThatSomebodyReadsIsKnown()
    {
        Load(
            "[AdditionalDlls.Other.Config]\nGain = \"20\"\nTypo = 1\n[AdditionalDlls.Other.Config.Sub]\nA = "
            "true");
        const std::unique_ptr<ICfg> cfg(CfgCenter::Instance()->CreateCfg(
            QStringLiteral("app\\AdditionalDlls\\Other\\Config"), 2, QString()));
        QCOMPARE(cfg->GetString(QStringLiteral("Gain"), QString(), nullptr), QStringLiteral("20"));
        QVERIFY(cfg->GetGroup(QStringLiteral("Sub"))->GetBool(QStringLiteral("A"), false, nullptr));
        QCOMPARE(StartupHost::ConfigurationWarnings(),
                 QStringList(
                     "app.toml:3:1: unknown key Typo in app\\AdditionalDlls\\Other\\Config; nobody reads it, "
                     "remove it or correct its name"));
    }

    void aWrongTypeGivesTheDefaultAndIsReportedOnce()
    {
        Load("[AdditionalDlls.Other.Config]\nGain = 20");
        const std::unique_ptr<ICfg> cfg(CfgCenter::Instance()->CreateCfg(
            QStringLiteral("app\\AdditionalDlls\\Other\\Config"), 2, QString()));
        for (int i = 0; i < 3; ++i)
            QCOMPARE(cfg->GetString(QStringLiteral("Gain"), QStringLiteral("default"), nullptr),
                     QStringLiteral("default"));
        QVERIFY(cfg->GetBool(QStringLiteral("Gain"), true, nullptr));
        QCOMPARE(
            StartupHost::ConfigurationWarnings(),
            QStringList("app.toml:2:8: Gain in app\\AdditionalDlls\\Other\\Config is an integer, expected a "
                        "text; the default is used"));
    }

    void warningsAreLogged()
    {
        QTest::ignoreMessage(
            QtWarningMsg,
            "app.toml:1:9: Boxed in app is an integer, expected true or false; the default is used");
        Load("Boxed = 1");
        QVERIFY(!CfgCenter::Instance()->GetAppCfg(2)->GetBool(QStringLiteral("Boxed"), false, nullptr));
    }

    void theConfigurationsThatComeWithTheProgramsAreRight()
    {
        const QDir folder(QStringLiteral(RX_SOURCE_DIR "/config"));
        const QStringList files = folder.entryList({QStringLiteral("*.toml")});
        QVERIFY(!files.isEmpty());
        for (const QString& file : files) {
            QString error;
            QVERIFY2(StartupHost::LoadConfiguration(folder.filePath(file), &error), qPrintable(error));
            QCOMPARE(StartupHost::ConfigurationWarnings(), QStringList());
            QCOMPARE(CfgCenter::GetAppName() + QStringLiteral(".toml"), file);
        }
    }

    void everyKnownKeyIsDocumented()
    {
        QFile page(QStringLiteral(RX_SOURCE_DIR "/docs/configuration.md"));
        QVERIFY(page.open(QIODevice::ReadOnly));
        const QString text = QString::fromUtf8(page.readAll());
        for (const char* scope :
             {"", "Entry", "Config:DDCGUI", "Config:ReceiverGui", "Config:ReceiverGui/MshClientCfg"}) {
            const QStringList names = ConfigSchema::Names(QString::fromUtf8(scope));
            QVERIFY2(!names.isEmpty(), scope);
            for (const QString& name : names)
                QVERIFY2(text.contains(QLatin1Char('`') + name + QLatin1Char('`')), qPrintable(name));
        }
    }

    void numbersAreReadWithinTheirLimits()
    {
        Load("TraceMask = 0xFFFFFFFF\nConnectionTimeout = 2.5\nLogSize = 1");
        QCOMPARE(StartupHost::ConfigurationInteger(QStringLiteral("TraceMask"), 7), qint64(0xFFFFFFFFll));
        QCOMPARE(StartupHost::ConfigurationNumber(QStringLiteral("ConnectionTimeout"), 60), 2.5);
        QCOMPARE(StartupHost::ConfigurationInteger(QStringLiteral("LogSize"), 4096), qint64(4096));
        QCOMPARE(StartupHost::ConfigurationInteger(QStringLiteral("LogFiles"), 5), qint64(5));
        Load("ConnectionTimeout = 3");
        QCOMPARE(StartupHost::ConfigurationNumber(QStringLiteral("ConnectionTimeout"), 60), 3.0);
        StartupHost::ClearConfiguration();
        QCOMPARE(StartupHost::ConfigurationNumber(QStringLiteral("ConnectionTimeout"), 60), 60.0);
        QCOMPARE(StartupHost::ConfigurationInteger(QStringLiteral("TraceMask"), 7), qint64(7));
    }

private:
    static void Write(const QString& fileName, const QByteArray& content)
    {
        QFile file(fileName);
        QVERIFY(file.open(QIODevice::WriteOnly));
        QCOMPARE(file.write(content), qint64(content.size()));
    }

    static void Load(const char* toml)
    {
        QString error;
        QVERIFY2(
            StartupHost::LoadConfigurationText(QString::fromUtf8(toml), QStringLiteral("app.toml"), &error),
            qPrintable(error));
    }
};

QTEST_GUILESS_MAIN(TestConfiguration)
#include "tst_configuration.moc"
