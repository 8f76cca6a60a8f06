#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>
#include <memory>
#include <stdexcept>

#include "base/basehost.h"
#include "startup/cfgcenter.h"
#include "startup/startuphost.h"

namespace {

const QString fixtures = QStringLiteral(RX_FIXTURE_DIR);

QStringList Calls()
{
    return QCoreApplication::instance()->property("fixture.calls").toStringList();
}

IDllInstance* Create(const QString& fileName, const QString& argument = QString())
{
    return CfgCenter::Instance()->CreateDllInstanceByFileName(fileName, argument, false, false);
}

// Deletes what it is told to when it goes, and notes the order.
class NotingInstance : public IDllInstance
{
public:
    NotingInstance(const QString& argument, QStringList* log) : IDllInstance(argument), m_Log(log) {}
    ~NotingInstance() override { m_Log->append("destroy " + name); }
    void InstanceNotifyA() override { m_Log->append("A " + name); }
    void InstanceNotifyB() override
    {
        m_Log->append("B " + name);
        if (name == QLatin1String("bad"))
            throw std::runtime_error("does not want to end");
    }

private:
    QStringList* m_Log;
};

}  // namespace

class TestPlugins : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        StartupHost::SetPluginFolders(QStringList(fixtures));
        BaseHost::SetErrorListener([this](const QString& message) { m_Errors.append(message); });
        QCoreApplication::instance()->setProperty("fixture.calls", QStringList());
        m_Errors.clear();
    }

    void cleanup()
    {
        StartupHost::DestroyPlugins();
        StartupHost::ClearFactories();
        StartupHost::ClearConfiguration();
        BaseHost::SetErrorListener(nullptr);
    }

    void aGoodPluginGetsItsArgument()
    {
        IDllInstance* const instance =
            Create(QStringLiteral("libfixturegood"), QStringLiteral("RxDDC1\\Ä 受 📡"));
        QVERIFY(instance);
        QCOMPARE(instance->name, QStringLiteral("RxDDC1\\Ä 受 📡"));
        QCOMPARE(StartupHost::FindInstance(QStringLiteral("libfixturegood")), instance);
        QVERIFY(!StartupHost::FindInstance(QStringLiteral("libfixturenull")));
        QVERIFY(m_Errors.isEmpty());
    }

    void aNameWithItsSuffixOrItsFolderIsFoundToo()
    {
        QVERIFY(Create(QStringLiteral("libfixturegood.so")));
        StartupHost::SetPluginFolders(QStringList());
        QVERIFY(Create(fixtures + QStringLiteral("/libfixturegood")));
        QVERIFY(Create(fixtures + QStringLiteral("/libfixturegood.so")));
    }

    void theFirstFolderThatHasTheFileCounts()
    {
        const QTemporaryDir first;
        Write(first.filePath(QStringLiteral("libfixturegood.so")), "no library");
        StartupHost::SetPluginFolders({QStringLiteral("/nowhere"), first.path(), fixtures});
        QVERIFY(!Create(QStringLiteral("libfixturegood")));
        StartupHost::SetPluginFolders({QStringLiteral("/nowhere"), fixtures, first.path()});
        QVERIFY(Create(QStringLiteral("libfixturegood")));
    }

    void brokenPluginsAreReportedWithFileAndReason_data()
    {
        QTest::addColumn<QString>("fileName");
        QTest::addColumn<QString>("argument");
        QTest::addColumn<QString>("reason");
        QTest::newRow("lacks ARCreate") << "libfixturenocreate"
                                        << ""
                                        << "not a plug-in: it lacks the function ARCreate";
        QTest::newRow("lacks ARDestroy") << "libfixturenodestroy"
                                         << ""
                                         << "not a plug-in: it lacks the function ARDestroy";
        QTest::newRow("returns null") << "libfixturenull"
                                      << ""
                                      << "ARCreate returned no instance";
        QTest::newRow("throws") << "libfixturethrowing"
                                << ""
                                << "ARCreate threw: no antenna";
        QTest::newRow("throws a number") << "libfixturethrowing"
                                         << "a number"
                                         << "ARCreate threw something that is no exception";
        QTest::newRow("needs what is not there") << "libfixtureunresolved"
                                                 << ""
                                                 << "FunctionThatNoLibraryHas";
    }

    void brokenPluginsAreReportedWithFileAndReason()
    {
        QFETCH(QString, fileName);
        QFETCH(QString, argument);
        QFETCH(QString, reason);
        QVERIFY(!Create(fileName, argument));
        QCOMPARE(m_Errors.size(), 1);
        const QString path = fixtures + QLatin1Char('/') + fileName + QStringLiteral(".so: ");
        QVERIFY2(m_Errors.first().startsWith(fileName + QStringLiteral(": ") + path),
                 qPrintable(m_Errors.first()));
        QVERIFY2(m_Errors.first().contains(reason), qPrintable(m_Errors.first()));
        QVERIFY(!StartupHost::FindInstance(fileName));
    }

    void anInstanceThatIsNotFitIsDestroyedAndReported()
    {
        QCoreApplication::instance()->setProperty("fixture.unfitDestroyed", false);
        QVERIFY(!Create(QStringLiteral("libfixtureunfit")));
        QCOMPARE(m_Errors, QStringList(QStringLiteral(
                               "libfixtureunfit: InstanceQuery says that the instance is not fit for use")));
        QVERIFY(QCoreApplication::instance()->property("fixture.unfitDestroyed").toBool());
    }

    void filesThatAreNoLibrariesAreReported_data()
    {
        QTest::addColumn<QByteArray>("content");
        QTest::addColumn<QString>("reason");
        QFile good(fixtures + QStringLiteral("/libfixturegood.so"));
        QVERIFY(good.open(QIODevice::ReadOnly));
        const QByteArray whole = good.readAll();
        QTest::newRow("text") << QByteArray("This is a text.\n")
                              << "not a library (16 bytes without a library's header)";
        QTest::newRow("empty") << QByteArray() << "not a library (0 bytes without a library's header)";
        QTest::newRow("cut in the first header") << whole.left(40) << "not a library (40 bytes";
        QTest::newRow("cut behind the first header")
            << whole.left(64) << "library cut short: 64 bytes of at least ";
        QTest::newRow("cut after a page") << whole.left(4096) << "library cut short: 4096 bytes of at least ";
        QTest::newRow("cut after two pages")
            << whole.left(8192) << "library cut short: 8192 bytes of at least ";
        QTest::newRow("only a header's start")
            << QByteArray("\177ELF") + QByteArray(200, '\0') << "cannot be loaded: ";
        QTest::newRow("nonsense behind the mark") << QByteArray("\177ELF\2\1\1") + QByteArray(200, '\x7f')
                                                  << "damaged library: no usable program headers";
    }

    void filesThatAreNoLibrariesAreReported()
    {
        QFETCH(QByteArray, content);
        QFETCH(QString, reason);
        const QTemporaryDir folder;
        const QString path = folder.filePath(QStringLiteral("libbroken.so"));
        Write(path, content);
        StartupHost::SetPluginFolders(QStringList(folder.path()));
        QVERIFY(!Create(QStringLiteral("libbroken")));
        QCOMPARE(m_Errors.size(), 1);
        QVERIFY2(m_Errors.first().startsWith("libbroken: " + path + ": " + reason),
                 qPrintable(m_Errors.first()));
    }

    void aMissingPluginThatAnotherAskedForIsLoggedOnceWithTheFoldersSearched()
    {
        StartupHost::SetPluginFolders({QStringLiteral("/nowhere"), fixtures});
        const QByteArray text = QByteArray("libabsent: not found; searched /nowhere, ") + fixtures.toUtf8() +
                                "; install the plug-in there or correct its FileName";
        QTest::ignoreMessage(QtWarningMsg, text.constData());
        QVERIFY(!Create(QStringLiteral("libabsent")));
        QVERIFY(!Create(QStringLiteral("libabsent")));
        QVERIFY(m_Errors.isEmpty());
    }

    void anEmptyFileNameIsNoPlugin() { QVERIFY(!Create(QString())); }

    void thePluginsOfTheConfigurationAreLoadedInTheOrderOfTheFile()
    {
        Load(
            QStringLiteral("[AdditionalDlls.Zulu]\nFileName = \"libfixturegood\"\n"
                           "[AdditionalDlls.Settings.Config]\nA = 1\n"
                           "[AdditionalDlls.Absent]\nFileName = \"libabsent\"\n"
                           "[AdditionalDlls.Broken]\nFileName = \"libfixturenull\"\n"
                           "[AdditionalDlls.Alpha]\nFileName = \"libfixturegood\"\n"));
        const QStringList failures = StartupHost::LoadPlugins();
        QCOMPARE(failures.size(), 2);
        QVERIFY2(failures.at(0).startsWith(QStringLiteral("libabsent: not found; searched ")),
                 qPrintable(failures.at(0)));
        QVERIFY2(failures.at(1).startsWith(QStringLiteral("libfixturenull: ")), qPrintable(failures.at(1)));
        QCOMPARE(m_Errors, failures);
        const QString zulu = QStringLiteral("RxDDC1\\AdditionalDlls\\Zulu\\Config");
        const QString alpha = QStringLiteral("RxDDC1\\AdditionalDlls\\Alpha\\Config");
        QCOMPARE(Calls(), QStringList({"create " + zulu, "create " + alpha, "A " + zulu, "A " + alpha}));
        StartupHost::DestroyPlugins();
        QCOMPARE(Calls().mid(4),
                 QStringList({"B " + alpha, "B " + zulu, "destroy " + alpha, "destroy " + zulu}));
        QVERIFY(!StartupHost::FindInstance(QStringLiteral("libfixturegood")));
    }

    void withoutAConfigurationNothingIsLoaded() { QCOMPARE(StartupHost::LoadPlugins(), QStringList()); }

    void aFactoryStandsInForALibrary()
    {
        QStringList log;
        StartupHost::RegisterFactory(QStringLiteral("libfixturegood"), [&](const QString& argument) {
            return new NotingInstance(argument, &log);
        });
        QVERIFY(Create(QStringLiteral("libfixturegood"), QStringLiteral("made")));
        QVERIFY(Calls().isEmpty());
        StartupHost::DestroyPlugins();
        QCOMPARE(log, QStringList({"B made", "destroy made"}));
    }

    void aFactoryThatFailsIsReported()
    {
        StartupHost::RegisterFactory(QStringLiteral("libnone"), [](const QString&) { return nullptr; });
        StartupHost::RegisterFactory(QStringLiteral("libthrows"),
                                     [](const QString&) -> IDllInstance* { throw std::runtime_error("no"); });
        QVERIFY(!Create(QStringLiteral("libnone")));
        QVERIFY(!Create(QStringLiteral("libthrows")));
        QCOMPARE(m_Errors,
                 QStringList({"libnone: its factory made no instance", "libthrows: its factory threw: no"}));
    }

    void anInstanceDeletedByItsUserIsNotDestroyedAgain()
    {
        QStringList log;
        StartupHost::RegisterFactory(QStringLiteral("libnoting"), [&](const QString& argument) {
            return new NotingInstance(argument, &log);
        });
        IDllInstance* const first = Create(QStringLiteral("libnoting"), QStringLiteral("first"));
        QVERIFY(Create(QStringLiteral("libnoting"), QStringLiteral("second")));
        delete first;
        StartupHost::DestroyPlugins();
        QCOMPARE(log, QStringList({"destroy first", "B second", "destroy second"}));
    }

    void whatAPluginMadeOutlivesIt()
    {
        QStringList log;
        StartupHost::RegisterFactory(QStringLiteral("libnoting"), [&](const QString& argument) {
            return new NotingInstance(argument, &log);
        });
        Load(QStringLiteral("[AdditionalDlls.Window]\nFileName = \"libnoting\""));
        QCOMPARE(StartupHost::LoadPlugins(), QStringList());
        QVERIFY(Create(QStringLiteral("libnoting"), QStringLiteral("sender")));
        log.clear();
        StartupHost::DestroyPlugins();
        const QString window = QStringLiteral("RxDDC1\\AdditionalDlls\\Window\\Config");
        QCOMPARE(log, QStringList({"B sender", "B " + window, "destroy " + window, "destroy sender"}));
    }

    void anInstanceThatThrowsAtItsEndHoldsNobodyUp()
    {
        QStringList log;
        StartupHost::RegisterFactory(QStringLiteral("libnoting"), [&](const QString& argument) {
            return new NotingInstance(argument, &log);
        });
        Create(QStringLiteral("libnoting"), QStringLiteral("good"));
        Create(QStringLiteral("libnoting"), QStringLiteral("bad"));
        StartupHost::DestroyPlugins();
        QCOMPARE(log, QStringList({"B bad", "B good", "destroy bad", "destroy good"}));
        QCOMPARE(m_Errors, QStringList("libnoting: InstanceNotifyB threw: does not want to end"));
    }

    void destroyingTwiceIsHarmless()
    {
        QVERIFY(Create(QStringLiteral("libfixturegood")));
        StartupHost::DestroyPlugins();
        StartupHost::DestroyPlugins();
        QVERIFY(Create(QStringLiteral("libfixturegood")));
    }

    void theDefaultsOfAnInstanceAreFitForUseAndSilent()
    {
        IDllInstance instance(QStringLiteral("key"));
        QVERIFY(instance.InstanceQuery());
        instance.InstanceNotifyA();
        instance.InstanceNotifyB();
        QCOMPARE(instance.name, QStringLiteral("key"));
    }

private:
    static void Write(const QString& fileName, const QByteArray& content)
    {
        QFile file(fileName);
        QVERIFY(file.open(QIODevice::WriteOnly));
        QCOMPARE(file.write(content), qint64(content.size()));
    }

    static void Load(const QString& toml)
    {
        QString error;
        QVERIFY2(StartupHost::LoadConfigurationText(toml, QStringLiteral("RxDDC1.toml"), &error),
                 qPrintable(error));
    }

    QStringList m_Errors;
};

QTEST_GUILESS_MAIN(TestPlugins)
#include "tst_plugins.moc"
