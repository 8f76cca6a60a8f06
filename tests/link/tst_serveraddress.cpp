#include <QTcpServer>

#include "mirrorfixture.h"

// Where the client of the tree says that the driver's streams are.
class TestServerAddress : public QObject
{
    Q_OBJECT
private slots:
    void init() { ValueHost::CreateTree(); }
    void cleanup() { ValueHost::DestroyTree(); }

    void isEmptyWithoutADriver()
    {
        VtClient client(quickClient());
        QCOMPARE(client.GetServerAddress(), QString());
    }

    void isEmptyUntilTheDriverHasToldItsPort()
    {
        QTcpServer silent;
        QVERIFY(silent.listen(QHostAddress::LocalHost));
        VtClient client(quickClient());
        client.Start("127.0.0.1", silent.serverPort());
        RX_TRY(silent.hasPendingConnections());
        QCOMPARE(client.GetServerAddress(), QString());
    }

    void isTheDriversHostWithThePortThatTheDriverTold_data()
    {
        QTest::addColumn<QString>("listen");
        QTest::addColumn<QString>("host");
        QTest::addColumn<int>("streamPort");
        QTest::addColumn<QString>("address");
        QTest::newRow("number") << "127.0.0.1"
                                << "127.0.0.1" << 4711 << "127.0.0.1:4711";
        QTest::newRow("name") << "127.0.0.1"
                              << "localhost" << 4711 << "localhost:4711";
        QTest::newRow("highest port") << "127.0.0.1"
                                      << "127.0.0.1" << 65535 << "127.0.0.1:65535";
        QTest::newRow("IPv6 in brackets, which tell the port from the host") << "::1"
                                                                             << "::1" << 4711 << "[::1]:4711";
        QTest::newRow("a driver without streams") << "127.0.0.1"
                                                  << "127.0.0.1" << 0 << "";
    }
    void isTheDriversHostWithThePortThatTheDriverTold()
    {
        QFETCH(QString, listen);
        QFETCH(QString, host);
        QFETCH(int, streamPort);
        QFETCH(QString, address);
        Receiver::ValueStore store;
        Receiver::ServerOptions options;
        options.streamPort = quint16(streamPort);
        Receiver::Server server(store, options);
        QString error;
        if (!server.listen(listen, 0, &error))
            QSKIP(qPrintable("this machine cannot listen there: " + error));
        VtClient client(quickClient());
        client.Start(host, server.port());
        RX_TRY(client.IsConnected());
        QCOMPARE(client.GetServerAddress(), address);
    }

    void followsADriverThatComesBackWithAnotherPort()
    {
        Receiver::ValueStore store;
        Receiver::ServerOptions options;
        options.streamPort = 4711;
        auto server = std::make_unique<Receiver::Server>(store, options);
        QString error;
        QVERIFY2(server->listen("127.0.0.1", 0, &error), qPrintable(error));
        const quint16 port = server->port();
        VtClient client(quickClient());
        client.Start("127.0.0.1", port);
        RX_TRY(client.IsConnected());
        QCOMPARE(client.GetServerAddress(), QString("127.0.0.1:4711"));

        server.reset();
        RX_TRY(!client.IsConnected());
        options.streamPort = 4712;
        server = std::make_unique<Receiver::Server>(store, options);
        QVERIFY2(server->listen("127.0.0.1", port, &error), qPrintable(error));
        RX_TRY(client.IsConnected());
        QCOMPARE(client.GetServerAddress(), QString("127.0.0.1:4712"));
    }

    void isForgottenWhenTheClientTurnsToAnotherDriver()
    {
        Driver driver;
        VtClient client(quickClient());
        client.Start("127.0.0.1", driver.port());
        RX_TRY(client.IsConnected());
        QTcpServer silent;
        QVERIFY(silent.listen(QHostAddress::LocalHost));
        client.Start("127.0.0.1", silent.serverPort());
        QCOMPARE(client.GetServerAddress(), QString());
    }
};

QTEST_GUILESS_MAIN(TestServerAddress)
#include "tst_serveraddress.moc"
