#include <QDir>
#include <QFile>
#include <QTest>

#include "station.h"

using namespace RxTest;

// The real program where it cannot go on, and where it goes on nevertheless.
class RxWorkbenchTest : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void refusesABadConfigurationWithTheLine_data();
    void refusesABadConfigurationWithTheLine();
    void refusesAMissingConfiguration();
    void refusesWhatItDoesNotKnow();
    void endsWithoutADisplayInsteadOfCrashing();
    void endsWhenNoPluginCanBeLoaded_data();
    void endsWhenNoPluginCanBeLoaded();
    void goesOnWithThePluginsThatCouldBeLoaded();
    void endsByItselfWithoutADriver();
    void endsInOrderWhenItIsToldTo();
    void keepsItsRecordsInTheFolderGiven();

private:
    static QString write(const Station& station, const QString& text)
    {
        QFile file(station.folder() + "/test.toml");
        if (file.open(QIODevice::WriteOnly)) {
            file.write(text.toUtf8());
        }
        return file.fileName();
    }
    // Runs it to its end and gives what it said.
    static QString runToEnd(Station& station, const QStringList& arguments, int exitCode,
                            const QProcessEnvironment& environment)
    {
        Program program(station.marker(), environment);
        program.expectExitCode(exitCode);
        if (!program.start("rxworkbench", arguments) || !program.waitForEnd()) {
            return "it does not end";
        }
        const QString fault = program.fault();
        return fault.isEmpty() ? program.output() : "unexpected: " + fault;
    }
    static QString runToEnd(Station& station, const QStringList& arguments, int exitCode)
    {
        const QStringList own{"--headless", "--state", station.folder(), "--driver", "127.0.0.1:9"};
        return runToEnd(station, arguments + own, exitCode, station.environment());
    }
};

void RxWorkbenchTest::refusesABadConfigurationWithTheLine_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("where");
    QTest::newRow("syntax") << "Name = \"A\"\nTraceMask = = 3\n"
                            << ":2:";
    QTest::newRow("unfinished text") << "Name = \"A\n"
                                     << ":1:";
    QTest::newRow("nothing to show") << "Name = \"A\"\n"
                                     << "AdditionalDlls";
    QTest::newRow("driver that is none") << "Driver = \"here\"\n[AdditionalDlls.X]\nFileName = \"libx\"\n"
                                         << "Driver";
}

void RxWorkbenchTest::refusesABadConfigurationWithTheLine()
{
    QFETCH(QString, text);
    QFETCH(QString, where);
    Station station;
    const QString file = write(station, text);
    const QStringList arguments{"--config", file, "--headless", "--state", station.folder()};
    const QString said = runToEnd(station, arguments, 2, station.environment());
    QVERIFY2(said.contains("test.toml") && said.contains(where), qPrintable(said));
}

void RxWorkbenchTest::refusesAMissingConfiguration()
{
    Station station;
    const QString said = runToEnd(station, {"--config", station.folder() + "/nothing.toml"}, 2);
    QVERIFY2(said.contains("nothing.toml"), qPrintable(said));
}

void RxWorkbenchTest::refusesWhatItDoesNotKnow()
{
    Station station;
    const QString said = runToEnd(station, {"--config", "a", "--nonsense"}, 2);
    QVERIFY2(said.contains("--nonsense"), qPrintable(said));
}

void RxWorkbenchTest::endsWithoutADisplayInsteadOfCrashing()
{
    Station station;
    QProcessEnvironment environment = station.environment();
    for (const char* name : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"}) {
        environment.remove(name);
    }
    const QString said = runToEnd(station, {"--config", "a"}, 2, environment);
    QVERIFY2(said.contains("--headless"), qPrintable(said));
}

void RxWorkbenchTest::endsWhenNoPluginCanBeLoaded_data()
{
    QTest::addColumn<QString>("library");
    QTest::newRow("missing") << "libnowhere";
    QTest::newRow("no library") << "libtext";
}

void RxWorkbenchTest::endsWhenNoPluginCanBeLoaded()
{
    QFETCH(QString, library);
    Station station;
    QFile text(station.folder() + "/libtext.so");
    QVERIFY(text.open(QIODevice::WriteOnly));
    text.write("this is no library");
    text.close();
    const QString file = write(station, QString("[AdditionalDlls.A]\nFileName = \"%1\"\n").arg(library));
    const QString said = runToEnd(station, {"--config", file, "--plugins", station.folder()}, 2);
    QVERIFY2(said.contains(library), qPrintable(said));
}

void RxWorkbenchTest::goesOnWithThePluginsThatCouldBeLoaded()
{
    Station station;
    const QString socket = station.folder() + "/pilot";
    const QString file = write(station, QString("[AdditionalDlls.A]\nFileName = \"libnowhere\"\n"
                                                "[AdditionalDlls.Pilot]\nFileName = \"libtestpilot\"\n"
                                                "[AdditionalDlls.Pilot.Config]\nSocket = \"%1\"\n")
                                            .arg(socket));
    Program program(station.marker(), station.environment());
    QVERIFY(program.start("rxworkbench", {"--config", file, "--plugins", RX_PILOT_DIR, "--headless",
                                          "--state", station.folder(), "--driver", "127.0.0.1:9"}));
    Pilot pilot(socket);
    QVERIFY2(pilot.reach(patienceMs), qPrintable(program.output()));
    // The box says what is missing, and waits for nobody.
    QTRY_VERIFY_WITH_TIMEOUT(pilot.text({{"name", "PluginFailures"}}).contains("libnowhere"), patienceMs);
    QVERIFY(pilot.box().isEmpty());
    program.terminate();
    QVERIFY(program.waitForEnd());
    QCOMPARE(program.fault(), QString());
}

void RxWorkbenchTest::endsByItselfWithoutADriver()
{
    Station station;
    const QString file = station.writeConfiguration({}, station.folder() + "/pilot");
    const QString said = runToEnd(
        station, {"--config", file, "--plugins", RX_PILOT_DIR, "--seconds", "2", "--set", "/no/such=1"}, 0);
    QVERIFY2(!said.startsWith("unexpected") && said.contains("/no/such"), qPrintable(said));
}

void RxWorkbenchTest::endsInOrderWhenItIsToldTo()
{
    Station station;
    Window* window = station.openWindow();
    QVERIFY(window != nullptr);
    window->program.terminate();
    QVERIFY(window->program.waitForEnd());
    QCOMPARE(station.finish(), QString());
}

void RxWorkbenchTest::keepsItsRecordsInTheFolderGiven()
{
    Station station;
    Window* window = station.openWindow();
    QVERIFY(window != nullptr);
    const QStringList files = QDir(window->state).entryList(QDir::Files);
    QVERIFY2(!files.filter(".log").isEmpty(), qPrintable(files.join(' ')));
    QVERIFY2(!files.filter("journal").isEmpty(), qPrintable(files.join(' ')));
    QCOMPARE(station.finish(), QString());
}

QTEST_GUILESS_MAIN(RxWorkbenchTest)
#include "tst_rxworkbench.moc"
