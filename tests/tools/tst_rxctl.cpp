#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTcpServer>
#include <QtTest>
#include <memory>

#include "receiver/server/server.h"

using Link::AnswerKind;
using Receiver::ClientId;
using Receiver::WriteResult;

namespace {

constexpr int patienceMs = 30000;

struct Result
{
    int exitCode = -1;
    QString out;
    QString err;
};

}  // namespace

// The real program against a server of this process.
class TestRxctl : public QObject
{
    Q_OBJECT
private slots:
    void init();
    void cleanup();
    void listPrintsThePathsAtAndBelow();
    void getPrintsValuesWithUnits();
    void setPrintsTheDriversAnswer();
    void setTakesItemTextsAndRefusesOthers();
    void infoTellsTypeLimitsItemsAndAccess();
    void jsonIsOneObjectALine();
    void watchPrintsThePresentValueThenALinePerChange();
    void watchEndsAfterItsSeconds();
    void watchEndsQuietlyWhenNobodyReads();
    void watchReportsTheLossOfTheDriver();
    void whatIsNotThereIsNotFound_data();
    void whatIsNotThereIsNotFound();
    void exitCodesTellWhatWentWrong();
    void aSilentDriverIsTimedOut();
    void aDriverThatComesWithinTheTimeoutIsFound();

private:
    std::unique_ptr<QProcess> start(const QStringList& arguments, int port = -1);
    Result run(const QStringList& arguments, int port = -1);

    std::unique_ptr<Receiver::ValueStore> m_store;
    std::unique_ptr<Receiver::Server> m_server;
    Receiver::ValueId m_frequency = 0;
};

void TestRxctl::init()
{
    m_store = std::make_unique<Receiver::ValueStore>();
    Link::Description description;
    description.path = "/RX1/FREQUENCY";
    description.kind = Link::ValueKind::Float;
    description.unit = "Hz";
    description.hasLimits = true;
    description.minimum = 1e6;
    description.maximum = 108e6;
    m_frequency = m_store->define(description, 98.5e6);
    description = {};
    description.path = "/RX1/MODE";
    description.kind = Link::ValueKind::Selection;
    description.items = {{0, "AM", 0}, {1, "FM", 0}};
    m_store->define(description, qint64(0));
    description = {};
    description.path = "/RX1/CAPTION";
    description.kind = Link::ValueKind::Text;
    description.writable = false;
    m_store->define(description, QString("Two\nlines"));
    m_server = std::make_unique<Receiver::Server>(*m_store);
    QString error;
    QVERIFY2(m_server->listen("127.0.0.1", 0, &error), qPrintable(error));
}

void TestRxctl::cleanup()
{
    m_server.reset();
    m_store.reset();
}

std::unique_ptr<QProcess> TestRxctl::start(const QStringList& arguments, int port)
{
    auto process = std::make_unique<QProcess>();
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("RX_DRIVER", QStringLiteral("127.0.0.1:%1").arg(port < 0 ? m_server->port() : port));
    process->setProcessEnvironment(environment);
    process->start(QStringLiteral(RX_BIN_DIR "/rxctl"), arguments);
    return process;
}

Result TestRxctl::run(const QStringList& arguments, int port)
{
    const auto process = start(arguments, port);
    Result result;
    // Its peer lives on this thread: the event loop must go on.
    if (!QTest::qWaitFor([&] { return process->state() == QProcess::NotRunning; }, patienceMs))
        return result;
    result.exitCode = process->exitStatus() == QProcess::NormalExit ? process->exitCode() : -1;
    result.out = QString::fromUtf8(process->readAllStandardOutput());
    result.err = QString::fromUtf8(process->readAllStandardError());
    return result;
}

void TestRxctl::listPrintsThePathsAtAndBelow()
{
    const Result all = run({"list"});
    QCOMPARE(all.exitCode, 0);
    QCOMPARE(all.out,
             QString("/ADMINISTRATION/SERVERVALUESHOOKED\n/RX1/FREQUENCY\n/RX1/MODE\n/RX1/CAPTION\n"));
    QCOMPARE(run({"list", "/RX1/MODE"}).out, QString("/RX1/MODE\n"));
}

void TestRxctl::getPrintsValuesWithUnits()
{
    QCOMPARE(run({"get", "/RX1/FREQUENCY"}).out, QString("98500000 Hz\n"));
    QCOMPARE(run({"get", "/RX1/MODE", "/RX1/CAPTION"}).out,
             QString("/RX1/MODE\tAM\n/RX1/CAPTION\tTwo\\nlines\n"));
}

void TestRxctl::setPrintsTheDriversAnswer()
{
    Result result = run({"set", "/RX1/FREQUENCY", "99.1M"});
    QCOMPARE(result.exitCode, 0);
    QCOMPARE(result.out, QString("accepted\n"));
    QCOMPARE(m_store->number(m_frequency), 99.1e6);
    result = run({"set", "/RX1/FREQUENCY", "200 MHz"});
    QCOMPARE(result.exitCode, 0);
    QVERIFY2(result.out.startsWith("clamped to 108000000 Hz"), qPrintable(result.out));
    result = run({"set", "/RX1/CAPTION", "x"});
    QCOMPARE(result.exitCode, 1);
    QVERIFY2(result.out.startsWith("refused because: "), qPrintable(result.out));
}

void TestRxctl::setTakesItemTextsAndRefusesOthers()
{
    QCOMPARE(run({"set", "/RX1/MODE", "FM"}).exitCode, 0);
    QCOMPARE(m_store->key(m_store->find("/RX1/MODE")), qint64(1));
    const Result result = run({"set", "/RX1/MODE", "USB"});
    QCOMPARE(result.exitCode, 1);
    QVERIFY2(result.err.contains("expects one of \"AM\", \"FM\", not \"USB\""), qPrintable(result.err));
    QCOMPARE(m_store->key(m_store->find("/RX1/MODE")), qint64(1));
}

void TestRxctl::infoTellsTypeLimitsItemsAndAccess()
{
    const QString frequency = run({"info", "/RX1/FREQUENCY"}).out;
    QVERIFY2(frequency.contains("limits     1000000 Hz to 108000000 Hz"), qPrintable(frequency));
    QVERIFY(frequency.contains("access     read and write"));
    const QString mode = run({"info", "/RX1/MODE"}).out;
    QVERIFY2(mode.contains("item       1 FM"), qPrintable(mode));
    QVERIFY(run({"info", "/RX1/CAPTION"}).out.contains("read only"));
}

void TestRxctl::jsonIsOneObjectALine()
{
    const QStringList lines = run({"--json", "list", "/RX1"}).out.split('\n', Qt::SkipEmptyParts);
    QCOMPARE(lines.size(), 3);
    const QJsonObject frequency = QJsonDocument::fromJson(lines.first().toUtf8()).object();
    QCOMPARE(frequency.value("path").toString(), QString("/RX1/FREQUENCY"));
    QCOMPARE(frequency.value("value").toDouble(), 98.5e6);
    QCOMPARE(frequency.value("unit").toString(), QString("Hz"));
    const QJsonObject info =
        QJsonDocument::fromJson(run({"info", "/RX1/MODE", "--json"}).out.toUtf8()).object();
    QCOMPARE(info.value("items").toArray().size(), 2);
    const QJsonObject answer =
        QJsonDocument::fromJson(run({"set", "/RX1/MODE", "FM", "--json"}).out.toUtf8()).object();
    QCOMPARE(answer.value("answer").toString(), QString("accepted"));
    QCOMPARE(answer.value("value").toString(), QString("FM"));
}

void TestRxctl::watchPrintsThePresentValueThenALinePerChange()
{
    const auto process = start({"watch", "/RX1/FREQUENCY", "/RX1/MODE", "--count", "4"});
    QByteArray out;
    const auto lines = [&] {
        out += process->readAllStandardOutput();
        return out.count('\n');
    };
    QTRY_COMPARE_WITH_TIMEOUT(lines(), 2, patienceMs);
    m_store->set(m_frequency, 99e6, 1777777777000042);
    // Flushed at once, though the program goes on.
    QTRY_COMPARE_WITH_TIMEOUT(lines(), 3, patienceMs);
    m_store->set(m_store->find("/RX1/MODE"), qint64(1));
    QTRY_COMPARE_WITH_TIMEOUT(process->state(), QProcess::NotRunning, patienceMs);
    lines();
    QCOMPARE(process->exitCode(), 0);
    const QList<QByteArray> printed = out.trimmed().split('\n');
    QCOMPARE(printed.size(), 4);
    QVERIFY2(printed.at(0).endsWith("\t/RX1/FREQUENCY\t98500000 Hz"), printed.at(0).constData());
    QVERIFY2(printed.at(1).endsWith("\t/RX1/MODE\tAM"), printed.at(1).constData());
    QCOMPARE(printed.at(2), QByteArray("2026-05-03T03:09:37.000042Z\t/RX1/FREQUENCY\t99000000 Hz"));
    QVERIFY2(printed.at(3).endsWith("\t/RX1/MODE\tFM"), printed.at(3).constData());
}

void TestRxctl::watchEndsAfterItsSeconds()
{
    const Result result = run({"watch", "/RX1/MODE", "--seconds", "0.1"});
    QCOMPARE(result.exitCode, 0);
    QCOMPARE(result.out.count('\n'), 1);
}

void TestRxctl::watchEndsQuietlyWhenNobodyReads()
{
    QProcess shell;
    const QString driver = QStringLiteral("127.0.0.1:%1").arg(m_server->port());
    // head leaves after the first line; what the program says then goes to the standard error.
    shell.start("sh",
                {"-c", R"({ "$0" --driver "$1" watch /RX1/FREQUENCY; echo "exit $?" >&2; } | head -n 1)",
                 RX_BIN_DIR "/rxctl", driver});
    double frequency = 50e6;
    QTRY_VERIFY_WITH_TIMEOUT(
        (m_store->set(m_frequency, frequency += 1), shell.state() == QProcess::NotRunning), patienceMs);
    QCOMPARE(shell.readAllStandardError(), QByteArray("exit 0\n"));
    QCOMPARE(shell.readAllStandardOutput().count('\n'), 1);
}

void TestRxctl::watchReportsTheLossOfTheDriver()
{
    const auto process = start({"watch", "/RX1/FREQUENCY"});
    QTRY_VERIFY_WITH_TIMEOUT(process->bytesAvailable() > 0, patienceMs);
    m_server.reset();
    QTRY_COMPARE_WITH_TIMEOUT(process->state(), QProcess::NotRunning, patienceMs);
    QCOMPARE(process->exitCode(), 3);
    QVERIFY(process->readAllStandardError().contains("the connection to the driver was lost"));
    QVERIFY(m_store);
}

void TestRxctl::whatIsNotThereIsNotFound_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::newRow("list") << QStringList({"list", "/RX2"});
    QTest::newRow("get") << QStringList({"get", "/RX2"});
    QTest::newRow("get a node") << QStringList({"get", "/RX1"});
    QTest::newRow("get one of two") << QStringList({"get", "/RX1/MODE", "/RX2"});
    QTest::newRow("set") << QStringList({"set", "/RX2", "1"});
    QTest::newRow("watch") << QStringList({"watch", "/RX1/MODE", "/RX2"});
    QTest::newRow("info") << QStringList({"info", "/RX2"});
}

void TestRxctl::whatIsNotThereIsNotFound()
{
    QFETCH(QStringList, arguments);
    const Result result = run(arguments);
    QCOMPARE(result.exitCode, 1);
    QVERIFY2(result.err.startsWith("rxctl: no value at"), qPrintable(result.err));
}

void TestRxctl::exitCodesTellWhatWentWrong()
{
    const Result usage = run({"fly"});
    QCOMPARE(usage.exitCode, 2);
    QVERIFY(usage.err.contains("unknown command"));
    const Result help = run({"--help"});
    QCOMPARE(help.exitCode, 0);
    QVERIFY(help.out.contains("rxctl [OPTIONS] watch PATH..."));
    const int port = m_server->port();
    m_server.reset();
    const Result away = run({"list"}, port);
    QCOMPARE(away.exitCode, 3);
    QVERIFY2(away.err.contains(QStringLiteral("no connection to the driver at 127.0.0.1:%1").arg(port)),
             qPrintable(away.err));
}

void TestRxctl::aSilentDriverIsTimedOut()
{
    QTcpServer silent;
    QVERIFY(silent.listen(QHostAddress::LocalHost, 0));
    const Result result = run({"list", "--timeout", "0.2"}, silent.serverPort());
    QCOMPARE(result.exitCode, 3);
    QVERIFY2(result.err.contains("no connection to the driver"), qPrintable(result.err));
}

void TestRxctl::aDriverThatComesWithinTheTimeoutIsFound()
{
    const quint16 port = m_server->port();
    m_server.reset();
    const auto process = start({"get", "/RX1/MODE", "--timeout", "30"}, port);
    QTRY_COMPARE_WITH_TIMEOUT(process->state(), QProcess::Running, patienceMs);
    m_server = std::make_unique<Receiver::Server>(*m_store);
    QString error;
    QVERIFY2(m_server->listen("127.0.0.1", port, &error), qPrintable(error));
    QTRY_COMPARE_WITH_TIMEOUT(process->state(), QProcess::NotRunning, patienceMs);
    QCOMPARE(process->readAllStandardOutput(), QByteArray("AM\n"));
}

QTEST_GUILESS_MAIN(TestRxctl)
#include "tst_rxctl.moc"
