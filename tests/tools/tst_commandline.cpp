#include <QtTest>

#include "tools/commandline.h"

using namespace RxCtl;

class TestCommandLine : public QObject
{
    Q_OBJECT
private slots:
    void acceptedLines_data();
    void acceptedLines();
    void refusedLines_data();
    void refusedLines();
    void theDriverComesFromTheOptionElseTheEnvironmentElseLoopback();
    void helpNamesEveryCommandOptionAndExitCode();
};

void TestCommandLine::acceptedLines_data()
{
    QTest::addColumn<QString>("line");
    QTest::addColumn<int>("verb");
    QTest::addColumn<QStringList>("paths");
    QTest::addColumn<QString>("value");
    const auto row = [](const char* line, Verb verb, const QStringList& paths, const char* value = "") {
        QTest::newRow(line) << QString(line) << int(verb) << paths << QString(value);
    };
    row("list", Verb::List, {});
    row("list /RX1", Verb::List, {"/RX1"});
    row("list /", Verb::List, {""});
    row("get /A /B/", Verb::Get, {"/A", "/B"});
    row("set /A 98.5M", Verb::Set, {"/A"}, "98.5M");
    row("set /A -3", Verb::Set, {"/A"}, "-3");
    row("set /A -.5", Verb::Set, {"/A"}, "-.5");
    row("set -- /A --text", Verb::Set, {"/A"}, "--text");
    row("--json watch /A --count 3 --seconds=2.5", Verb::Watch, {"/A"});
    row("info /A --timeout 3", Verb::Info, {"/A"});
    row("--help", Verb::Help, {});
    row("get -h", Verb::Help, {});
}

void TestCommandLine::acceptedLines()
{
    QFETCH(QString, line);
    QFETCH(int, verb);
    QFETCH(QStringList, paths);
    QFETCH(QString, value);
    CommandLine command;
    QString error;
    QVERIFY2(parseCommandLine(line.split(' '), QString(), &command, &error), qPrintable(error));
    QCOMPARE(int(command.verb), verb);
    QCOMPARE(command.paths, paths);
    QCOMPARE(command.value, value);
    if (line.contains("--count")) {
        QVERIFY(command.json);
        QCOMPARE(command.count, 3);
        QCOMPARE(command.seconds, 2.5);
    }
}

void TestCommandLine::refusedLines_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("reason");
    const auto row = [](const QStringList& arguments, const char* reason) {
        QTest::newRow(qPrintable(arguments.join(' ') + '.')) << arguments << QString(reason);
    };
    row({}, "what shall be done?");
    row({"fly"}, "unknown command \"fly\"");
    row({"get"}, "expected: get PATH...");
    row({"set", "/A"}, "expected: set PATH VALUE");
    row({"set", "/A", "1", "2"}, "expected: set PATH VALUE");
    row({"info", "/A", "/B"}, "expected: info PATH");
    row({"list", "/A", "/B"}, "expected: list [PREFIX]");
    row({"get", "A"}, "a path begins with \"/\": \"A\"");
    row({"get", ""}, "a path begins with \"/\"");
    row({"--fast", "list"}, "unknown option --fast");
    row({"list", "--driver"}, "--driver needs something behind it");
    for (const char* address : {"", "host", ":1", "host:", "host:0", "host:65536", "host:x"})
        row({"list", "--driver", address}, "--driver expects HOST:PORT");
    for (const char* seconds : {"0", "-1", "x", "inf", "nan"})
        row({"list", "--timeout", seconds}, "--timeout expects seconds");
    for (const char* count : {"0", "-1", "1.5"})
        row({"watch", "/A", "--count", count}, "--count expects a number of lines");
}

void TestCommandLine::refusedLines()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, reason);
    CommandLine command;
    QString error;
    QVERIFY(!parseCommandLine(arguments, QString(), &command, &error));
    QVERIFY2(error.contains(reason), qPrintable(error));
}

void TestCommandLine::theDriverComesFromTheOptionElseTheEnvironmentElseLoopback()
{
    CommandLine command;
    QString error;
    QVERIFY(parseCommandLine({"list"}, QString(), &command, &error));
    QCOMPARE(command.host, QString("127.0.0.1"));
    QCOMPARE(command.port, quint16(4600));
    QVERIFY(parseCommandLine({"list"}, "[::1]:4601", &command, &error));
    QCOMPARE(command.host, QString("::1"));
    QCOMPARE(command.port, quint16(4601));
    QVERIFY(parseCommandLine({"list", "--driver=other:7"}, "nonsense", &command, &error));
    QCOMPARE(command.host, QString("other"));
    QCOMPARE(command.port, quint16(7));
    QVERIFY(!parseCommandLine({"list"}, "nonsense", &command, &error));
    QVERIFY(error.contains("RX_DRIVER"));
}

void TestCommandLine::helpNamesEveryCommandOptionAndExitCode()
{
    const QString help = helpText();
    for (const char* word :
         {"list", "get", "set", "watch", "info", "--driver", "--json", "--timeout", "--count", "--seconds",
          "--help", "RX_DRIVER", "0 done", "1 not found", "2 wrong", "3 no connection", "4 no answer"})
        QVERIFY2(help.contains(word), word);
}

QTEST_GUILESS_MAIN(TestCommandLine)
#include "tst_commandline.moc"
