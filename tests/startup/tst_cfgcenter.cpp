#include <QTest>
#include <memory>

#include "startup/cfgcenter.h"
#include "startup/startuphost.h"

namespace {

const char stations[] = R"(Name = "RxDDC1"
MapViewAddress = "127.0.0.1:8080"

[AdditionalDlls.Zebra]
FileName = "libzebra"

[AdditionalDlls.DDCGUI]
FileName = "libddcgui"
[AdditionalDlls.DDCGUI.Config]
ValuePath = "/RX1"
LocalRecorder = true

[AdditionalDlls.ReceiverGui]
[[AdditionalDlls.ReceiverGui.Config.MshClientCfg]]
IsReceiver = true
SubGroup = "North"
[[AdditionalDlls.ReceiverGui.Config.MshClientCfg]]
SubGroup = "South"
[[AdditionalDlls.ReceiverGui.Config.MshClientCfg]]
SubGroup = "East"

[AdditionalDlls.Ant]
FileName = "libant"
)";

typedef std::unique_ptr<ICfg> Handle;

Handle Open(const char* path)
{
    return Handle(CfgCenter::Instance()->CreateCfg(QString::fromUtf8(path), 2, QString()));
}

QString Text(ICfg* cfg, const char* key, const char* section = nullptr)
{
    return cfg->GetString(QString::fromUtf8(key), QStringLiteral("-"), section);
}

}  // namespace

class TestCfgCenter : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        QString error;
        QVERIFY2(StartupHost::LoadConfigurationText(QString::fromUtf8(stations),
                                                    QStringLiteral("config/app.toml"), &error),
                 qPrintable(error));
    }
    void cleanup() { StartupHost::ClearConfiguration(); }

    void theApplicationsNameIsTheConfigurations()
    {
        QCOMPARE(CfgCenter::GetAppName(), QStringLiteral("RxDDC1"));
    }

    void withoutANameTheFilesBaseNameCounts()
    {
        QVERIFY(
            StartupHost::LoadConfigurationText(QString(), QStringLiteral("/etc/rx/Rx.DDC2.toml"), nullptr));
        QCOMPARE(CfgCenter::GetAppName(), QStringLiteral("Rx.DDC2"));
    }

    void withoutAConfigurationThereIsNothing()
    {
        StartupHost::ClearConfiguration();
        QCOMPARE(CfgCenter::GetAppName(), QString());
        QVERIFY(!CfgCenter::Instance()->GetAppCfg(2));
        QVERIFY(!Open("RxDDC1"));
        QVERIFY(!Open(""));
    }

    void nodesAreFoundByNamesWithOneBackslashBetween_data()
    {
        QTest::addColumn<QByteArray>("path");
        QTest::addColumn<bool>("found");
        QTest::newRow("root") << QByteArray("RxDDC1") << true;
        QTest::newRow("group") << QByteArray("RxDDC1\\AdditionalDlls") << true;
        QTest::newRow("deep") << QByteArray("RxDDC1\\AdditionalDlls\\DDCGUI\\Config") << true;
        QTest::newRow("array") << QByteArray("RxDDC1\\AdditionalDlls\\ReceiverGui\\Config\\MshClientCfg")
                               << true;
        QTest::newRow("no name") << QByteArray("") << false;
        QTest::newRow("another application") << QByteArray("RxDDC2\\AdditionalDlls") << false;
        QTest::newRow("another case") << QByteArray("rxddc1") << false;
        QTest::newRow("two backslashes") << QByteArray("RxDDC1\\\\AdditionalDlls") << false;
        QTest::newRow("one at the end") << QByteArray("RxDDC1\\") << false;
        QTest::newRow("one at the start") << QByteArray("\\RxDDC1") << false;
        QTest::newRow("slashes") << QByteArray("RxDDC1/AdditionalDlls") << false;
        QTest::newRow("missing") << QByteArray("RxDDC1\\AdditionalDlls\\None\\Config") << false;
        QTest::newRow("below an array")
            << QByteArray("RxDDC1\\AdditionalDlls\\ReceiverGui\\Config\\MshClientCfg\\0") << false;
        QTest::newRow("an entry is no node")
            << QByteArray("RxDDC1\\AdditionalDlls\\DDCGUI\\FileName") << false;
    }

    void nodesAreFoundByNamesWithOneBackslashBetween()
    {
        QFETCH(QByteArray, path);
        QFETCH(bool, found);
        QCOMPARE(Open(path.constData()) != nullptr, found);
    }

    void onlyTheMergedViewIsServed()
    {
        QVERIFY(!CfgCenter::Instance()->GetAppCfg(1));
        QVERIFY(!CfgCenter::Instance()->CreateCfg(QStringLiteral("RxDDC1"), 0, QString()));
    }

    void aSectionNamesAGroupBelow()
    {
        const Handle entry = Open("RxDDC1\\AdditionalDlls\\DDCGUI");
        QCOMPARE(Text(entry.get(), "ValuePath", "Config"), QStringLiteral("/RX1"));
        QCOMPARE(Text(entry.get(), "FileName", ""), QStringLiteral("libddcgui"));
        QCOMPARE(Text(entry.get(), "FileName", nullptr), QStringLiteral("libddcgui"));
        QCOMPARE(Text(entry.get(), "ValuePath", "None"), QStringLiteral("-"));
        const Handle root = Open("RxDDC1");
        QVERIFY(root->GetBool(QStringLiteral("LocalRecorder"), false, "AdditionalDlls\\DDCGUI\\Config"));
    }

    void groupsComeInTheOrderOfTheFileAndEndWithNull()
    {
        ICfg* const plugins = CfgCenter::Instance()->GetAppCfg(2)->GetGroup(QStringLiteral("AdditionalDlls"));
        QVERIFY(plugins);
        QStringList files;
        int index = 0;
        while (ICfg* entry = plugins->GetChild(index++))
            files.append(Text(entry, "FileName"));
        QCOMPARE(files, QStringList({"libzebra", "libddcgui", "-", "libant"}));
        QVERIFY(!plugins->GetChild(4));
        QVERIFY(!plugins->GetChild(1000000));
        QVERIFY(!plugins->GetChild(-1));
    }

    void elementsOfAnArrayOfTablesComeInOrder()
    {
        const Handle config = Open("RxDDC1\\AdditionalDlls\\ReceiverGui\\Config");
        QVERIFY(config->HasGroup(QStringLiteral("MshClientCfg")));
        QVERIFY(!config->HasGroup(QStringLiteral("MshServerCfg")));
        ICfg* const clients = config->GetGroup(QStringLiteral("MshClientCfg"));
        QCOMPARE(Text(clients->GetChild(0), "SubGroup"), QStringLiteral("North"));
        QVERIFY(clients->GetChild(0)->GetBool(QStringLiteral("IsReceiver"), false, nullptr));
        QCOMPARE(Text(clients->GetChild(1), "SubGroup"), QStringLiteral("South"));
        QVERIFY(!clients->GetChild(1)->GetBool(QStringLiteral("IsReceiver"), false, nullptr));
        QCOMPARE(Text(clients->GetChild(2), "SubGroup"), QStringLiteral("East"));
        QVERIFY(!clients->GetChild(3));
    }

    void anArrayMayBeWrittenInline()
    {
        QVERIFY(StartupHost::LoadConfigurationText(
            QStringLiteral(
                "[AdditionalDlls.ReceiverGui.Config]\nMshClientCfg = [{SubGroup = \"B\"}, {SubGroup = "
                "\"A\"}]\n[AdditionalDlls.Second.Config]\nMshClientCfg = []"),
            QStringLiteral("app.toml"), nullptr));
        const Handle full = Open("app\\AdditionalDlls\\ReceiverGui\\Config\\MshClientCfg");
        QCOMPARE(Text(full->GetChild(0), "SubGroup"), QStringLiteral("B"));
        QCOMPARE(Text(full->GetChild(1), "SubGroup"), QStringLiteral("A"));
        const Handle empty = Open("app\\AdditionalDlls\\Second\\Config\\MshClientCfg");
        QVERIFY(empty);
        QVERIFY(!empty->GetChild(0));
    }

    void groupsOutliveTheHandleTheyCameFrom()
    {
        Handle config = Open("RxDDC1\\AdditionalDlls\\ReceiverGui\\Config");
        ICfg* const clients = config->GetGroup(QStringLiteral("MshClientCfg"));
        config.reset();
        QCOMPARE(Text(clients->GetChild(1), "SubGroup"), QStringLiteral("South"));
    }

    void whatWasHandedOutOutlivesTheConfiguration()
    {
        const Handle config = Open("RxDDC1\\AdditionalDlls\\DDCGUI\\Config");
        StartupHost::ClearConfiguration();
        QVERIFY(StartupHost::LoadConfigurationText(QStringLiteral("Name = \"Next\""),
                                                   QStringLiteral("b.toml"), nullptr));
        QCOMPARE(Text(config.get(), "ValuePath"), QStringLiteral("/RX1"));
    }

    void theSameGroupIsTheSameObject()
    {
        ICfg* const root = CfgCenter::Instance()->GetAppCfg(2);
        QCOMPARE(root->GetGroup(QStringLiteral("AdditionalDlls")),
                 root->GetGroup(QStringLiteral("AdditionalDlls")));
        QCOMPARE(CfgCenter::Instance()->GetAppCfg(2), root);
    }

    void aGroupIsNoTextAndATextIsNoGroup()
    {
        ICfg* const root = CfgCenter::Instance()->GetAppCfg(2);
        QCOMPARE(Text(root, "AdditionalDlls"), QStringLiteral("-"));
        QVERIFY(!root->HasGroup(QStringLiteral("MapViewAddress")));
        QVERIFY(!root->GetGroup(QStringLiteral("MapViewAddress")));
        QCOMPARE(StartupHost::ConfigurationWarnings().size(), 2);
    }
};

QTEST_GUILESS_MAIN(TestCfgCenter)
#include "tst_cfgcenter.moc"
