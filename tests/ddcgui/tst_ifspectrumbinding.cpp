#include <QScopedPointer>
#include <QTcpServer>
#include <QTcpSocket>

#include "ddcifspectrum.h"
#include "spectrum/vcifcontrol.h"
#include "tests/ddcgui/modulefixture.h"

namespace {

const char* const paths[] = {
    "/GUICOMMON/IF_LEVELMAXIMUM",
    "/GUICOMMON/IF_LEVELMINIMUM",
    "/GUICOMMON/IFPANHALFWIDTH",
    "/GUICOMMON/IFPANSTARTFREQ",
    "/GUICOMMON/IFPANSTOPFREQ",
    "/RX1/IFMAPPING",
    "/RX1/FREQUENCY",
    "/RX1/DDC/DDC1/Frequency",
    "/RX1/DDC/DDC1/SquelchValue",
    "/RX1/DDC/DDC1/Bandwidth",
    "/RX1/DDC/DDC1/Demodulation",
};

}  // namespace

// The pane with the real spectrum library on a tree.
class tst_IfSpectrumBinding : public QObject
{
    Q_OBJECT
private slots:
    void init() { m_Tree.reset(new TestTree); }
    void cleanup()
    {
        m_Pane.reset();
        m_Tree.reset();
    }

    void everyPathIsFollowed_data() { Paths(); }
    void everyPathIsFollowed()
    {
        QFETCH(QString, path);
        Fill();
        const int before = TestTree::Find(path)->CountObservers();
        Make();
        QVERIFY2(TestTree::Find(path)->CountObservers() > before, qPrintable(path));
        m_Pane.reset();
        QCOMPARE(TestTree::Find(path)->CountObservers(), before);
    }

    void valueThatComesLaterIsFollowedThen_data() { Paths(); }
    void valueThatComesLaterIsFollowedThen()
    {
        QFETCH(QString, path);
        Make();
        Fill();
        QTRY_VERIFY_WITH_TIMEOUT(TestTree::Find(path)->CountObservers() > 0, 20000);
    }

    void valuesThatGoLeaveThePaneStanding()
    {
        Fill();
        Make();
        m_Pane->show();
        QVERIFY(QTest::qWaitForWindowExposed(m_Pane.data()));
        TestTree::Delete("/RX1");
        TestTree::Delete("/GUICOMMON");
        QVERIFY(!m_Pane->grab().isNull());
    }

    void withoutAnyValueThePaneIsShownAllTheSame()
    {
        Make();
        m_Pane->show();
        QVERIFY(QTest::qWaitForWindowExposed(m_Pane.data()));
        QVERIFY(m_Pane->findChild<glWidgets::VCIFControl*>()->isVisible());
        QVERIFY(m_Pane->width() >= 400 && m_Pane->height() >= 400);
    }

    void streamIsSoughtWhereTheClientSaysAndOnlyWhileThePaneIsShown()
    {
        QTcpServer buffer;
        QVERIFY(buffer.listen(QHostAddress::LocalHost));
        TestClient client;
        client.streamAddress = QString("127.0.0.1:%1").arg(buffer.serverPort());
        Fill();
        Make();
        QVERIFY(!buffer.waitForNewConnection(0));
        m_Pane->show();
        QTRY_VERIFY_WITH_TIMEOUT(buffer.hasPendingConnections(), 20000);
        QScopedPointer<QTcpSocket> stream(buffer.nextPendingConnection());
        QTRY_VERIFY_WITH_TIMEOUT(stream->bytesAvailable() > 0, 20000);
        QVERIFY(stream->peek(400).contains("/RX1"));
        m_Pane->hide();
        QTRY_COMPARE_WITH_TIMEOUT(stream->state(), QAbstractSocket::UnconnectedState, 20000);
    }

private:
    static void Paths()
    {
        QTest::addColumn<QString>("path");
        for (const char* path : paths)
            QTest::newRow(path) << path;
    }

    void Fill()
    {
        m_Tree->AddDevice();
        m_Tree->AddChannel("/RX1/DDC/DDC1");
        TestTree::AddSelection("/RX1/IFMAPPING", {{0, "Maximum", 0}, {1, "Mean", 0}}, 0);
        for (const char* path : paths)
            if (!TestTree::Find(path))
                TestTree::AddFloat(path, 0, "");
    }

    void Make()
    {
        m_Pane.reset(new DdcIfSpectrum(nullptr, "/RX1", "/RX1/DDC/DDC1"));
        m_Pane->BindValuePaths();
    }

    QScopedPointer<TestTree> m_Tree;
    QScopedPointer<DdcIfSpectrum> m_Pane;
};

DDCGUI_TEST_MAIN(tst_IfSpectrumBinding)
#include "tst_ifspectrumbinding.moc"
