#include "ddcifspectrum.h"

#include <QScopedPointer>
#include <QTest>

#include "spectrum/vcifcontrol.h"
#include "tests/ddcgui/spectrumdouble.h"
#include "valueframework/ivtclient.h"
#include "valueframework/valuehost.h"

namespace {

// A client that only knows where the streams are.
class AddressClient : public IVtClient
{
public:
    AddressClient(const char* name, const QString& address) : m_Name(name), m_Address(address)
    {
        ValueHost::SetClient(m_Name, this);
    }
    ~AddressClient() override { ValueHost::SetClient(m_Name, nullptr); }

    void AddObserver(IObserver*) override {}
    void DeleteObserver(IObserver*) override {}
    QString GetServerAddress() override
    {
        ++asked;
        return m_Address;
    }
    void Flush() override {}
    void HookValues(const QByteArray&, const QByteArray&) override {}
    void ReleaseValues(const QByteArray&) override {}
    bool IsNodeServed(Node*) override { return true; }
    bool HasServedValues() override { return true; }
    bool IsConnected() override { return true; }

    int asked = 0;

private:
    QString m_Name;
    QString m_Address;
};

const QStringList bindings = {
    "VCScanWidget::SetScanbufferIPAddress(receiver.example:4711)",
    "VCScanWidget::SetZStop_ValuePath(0, /GUICOMMON/IF_LEVELMAXIMUM)",
    "VCScanWidget::SetZStart_ValuePath(0, /GUICOMMON/IF_LEVELMINIMUM)",
    "VCIFControl::SetHalfWidth_ValuePath(/GUICOMMON/IFPANHALFWIDTH, false)",
    "VCScanWidget::SetMapping_ValuePath(/Station/RX7/IFMAPPING)",
    "VCScanWidget::SetCenter_ValuePath(/Station/RX7/FREQUENCY)",
    "VCScanWidget::SetFrequency_ValuePath(/Station/RX7/DDC/DDC3/Frequency)",
    "VCScanWidgetWrapper::SetAudioBandWidthCenter_ValuePath(/Station/RX7/DDC/DDC3/Frequency, true)",
    "VCScanWidget::SetThreshold_ValuePath(0, /Station/RX7/DDC/DDC3/SquelchValue)",
    "VCScanWidgetWrapper::SetAudioBandWidth_ValuePath(/Station/RX7/DDC/DDC3/Bandwidth)",
    "ColorItemMapAdapter::SetDemodulation_ValuePath(1, /Station/RX7/DDC/DDC3/Demodulation)",
    "VCScanWidget::SetXStart_ValuePath(/GUICOMMON/IFPANSTARTFREQ)",
    "VCScanWidget::SetXStop_ValuePath(/GUICOMMON/IFPANSTOPFREQ)",
};

}  // namespace

// The pane against a library that only notes what it is asked for.
class tst_DdcIfSpectrum : public QObject
{
    Q_OBJECT
private slots:
    void init()
    {
        SpectrumDouble::clear();
        m_Parent.reset(new QWidget);
    }
    void cleanup() { m_Parent.reset(); }

    void paneIsAVerticalSplitterThatTakesAllTheRoomThereIs()
    {
        const DdcIfSpectrum& pane = Make();
        QCOMPARE(pane.parentWidget(), m_Parent.data());
        QCOMPARE(pane.orientation(), Qt::Vertical);
        QVERIFY(!pane.opaqueResize());
        QCOMPARE(pane.sizePolicy(), QSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding));
    }

    void controlIsMadeOnceWithItsTitleAndOptions()
    {
        DdcIfSpectrum& pane = Make();
        QCOMPARE(SpectrumDouble::notes().constructions.size(), 1);
        const SpectrumDouble::Construction& made = SpectrumDouble::notes().constructions.first();
        QCOMPARE(made.parent, static_cast<QWidget*>(&pane));
        QCOMPARE(made.title, QString("IF Panorama"));
        QCOMPARE(made.showTitle, false);
        QCOMPARE(made.waterfall, true);
        QCOMPARE(made.settings, QString("IFCONTROL"));
        QCOMPARE(made.markers, true);
        QCOMPARE(made.axes, 4u);
        QCOMPARE(made.keyboard, true);
    }

    void controlFillsThePaneAndHasALeastSize()
    {
        const DdcIfSpectrum& pane = Make();
        const glWidgets::VCIFControl* control = Control();
        QVERIFY(control);
        QCOMPARE(pane.count(), 1);
        QCOMPARE(pane.widget(0), static_cast<const QWidget*>(control));
        QCOMPARE(control->sizePolicy(), QSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding));
        QCOMPARE(control->minimumSize(), QSize(400, 400));
    }

    void constructionHidesTheAxisButtonsAndBindsNothing()
    {
        Make();
        QCOMPARE(SpectrumDouble::notes().calls, QStringList("XAxisWidget::ApplyLeftRightButtons(false)"));
    }

    void everyBindingIsMadeOnceInOrderWithItsArguments()
    {
        AddressClient client("VTConnectToDRV", "receiver.example:4711");
        DdcIfSpectrum& pane = Make();
        QCOMPARE(client.asked, 0);
        SpectrumDouble::clear();
        pane.BindValuePaths();
        QCOMPARE(client.asked, 1);
        for (int i = 0; i < bindings.size(); ++i)
            QCOMPARE(SpectrumDouble::notes().calls.value(i), bindings.at(i));
        QCOMPARE(SpectrumDouble::notes().calls.size(), bindings.size());
        QVERIFY(SpectrumDouble::notes().constructions.isEmpty());
    }

    void bindingsThatFindNoValueDoNotEndTheRow()
    {
        AddressClient client("VTConnectToDRV", "receiver.example:4711");
        DdcIfSpectrum& pane = Make();
        SpectrumDouble::clear();
        SpectrumDouble::notes().answer = false;
        pane.BindValuePaths();
        QCOMPARE(SpectrumDouble::notes().calls, bindings);
    }

    void addressIsWhatTheDriversClientAnswers_data()
    {
        QTest::addColumn<QString>("client");
        QTest::addColumn<QString>("answer");
        QTest::addColumn<QString>("address");
        QTest::newRow("host and port") << "VTConnectToDRV"
                                       << "10.1.2.3:4711"
                                       << "10.1.2.3:4711";
        QTest::newRow("bare host") << "VTConnectToDRV"
                                   << "station-7"
                                   << "station-7";
        QTest::newRow("not known yet") << "VTConnectToDRV"
                                       << ""
                                       << "";
        QTest::newRow("other client only") << "VTConnectToMSH"
                                           << "10.1.2.3:4711"
                                           << "127.0.0.1";
    }
    void addressIsWhatTheDriversClientAnswers()
    {
        QFETCH(QString, client);
        QFETCH(QString, answer);
        QFETCH(QString, address);
        AddressClient only(qPrintable(client), answer);
        Make().BindValuePaths();
        QVERIFY(
            SpectrumDouble::notes().calls.contains("VCScanWidget::SetScanbufferIPAddress(" + address + ')'));
    }

    void addressIsTheLoopbackWithoutAClient()
    {
        Make().BindValuePaths();
        QVERIFY(SpectrumDouble::notes().calls.contains("VCScanWidget::SetScanbufferIPAddress(127.0.0.1)"));
    }

    void commonPathsAreAbsoluteDevicePathsUnderTheReceiverAndChannelPathsUnderTheChannel()
    {
        DdcIfSpectrum pane(m_Parent.data(), "/A", "/B/C");
        pane.BindValuePaths();
        QStringList common;
        QStringList device;
        QStringList channel;
        for (const QString& call : SpectrumDouble::notes().calls) {
            if (call.contains("/GUICOMMON/"))
                common.append(call);
            else if (call.contains("/A/"))
                device.append(call);
            else if (call.contains("/B/C/"))
                channel.append(call);
        }
        QCOMPARE(common.size(), 5);
        QCOMPARE(device.size(), 2);
        QCOMPARE(channel.size(), 5);
        for (const QString& call : common)
            QVERIFY2(call.contains("(/GUICOMMON/") || call.contains(", /GUICOMMON/"), qPrintable(call));
        QVERIFY(device.first().contains("SetMapping_ValuePath(/A/IFMAPPING)"));
        QVERIFY(device.last().contains("SetCenter_ValuePath(/A/FREQUENCY)"));
    }

    void frequencyAndAudioBandwidthCentreFollowTheSameValue()
    {
        Make().BindValuePaths();
        const QString path = "/Station/RX7/DDC/DDC3/Frequency";
        const QStringList& calls = SpectrumDouble::notes().calls;
        QVERIFY(calls.contains("VCScanWidget::SetFrequency_ValuePath(" + path + ')'));
        QVERIFY(calls.contains("VCScanWidgetWrapper::SetAudioBandWidthCenter_ValuePath(" + path + ", true)"));
        QCOMPARE(calls.filter(path).size(), 2);
    }

private:
    DdcIfSpectrum& Make()
    {
        return *new DdcIfSpectrum(m_Parent.data(), "/Station/RX7", "/Station/RX7/DDC/DDC3");
    }
    glWidgets::VCIFControl* Control() const { return m_Parent->findChild<glWidgets::VCIFControl*>(); }

    QScopedPointer<QWidget> m_Parent;
};

QTEST_MAIN(tst_DdcIfSpectrum)
#include "tst_ddcifspectrum.moc"
