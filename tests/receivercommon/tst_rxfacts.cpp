#include <QTest>
#include <limits>
#include <memory>

#include "receivercommon/receivercommonhost.h"
#include "receivercommon/rxconfiguration.h"
#include "receivercommon/rxdatarateconverter.h"

using RxCommon::Configuration;
using RxCommon::RxDataRateConverter;

// What all receiver plug-ins share: the kind of installation, and data rates.
class TestRxFacts : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void anInstallationIsNotBoxedUntilToldSo()
    {
        QVERIFY(!Configuration::Instance()->GetBoxedVersion());
        ReceiverCommonHost::SetBoxedVersion(true);
        QVERIFY(Configuration::Instance()->GetBoxedVersion());
        ReceiverCommonHost::SetBoxedVersion(false);
        QVERIFY(!Configuration::Instance()->GetBoxedVersion());
    }

    void thereIsOneConfiguration()
    {
        QCOMPARE(Configuration::Instance(), Configuration::Instance(QStringLiteral("reserved")));
    }

    void dataRatesFollowTheBandwidth_data()
    {
        QTest::addColumn<int>("type");
        QTest::addColumn<double>("bandwidth");
        QTest::addColumn<double>("content");  // bytes per second before the packets' headers
        QTest::newRow("channel, 15 kHz") << 13 << 15e3 << 15e3 * 1.25 * 4 + 96e3;
        QTest::newRow("channel, 1 MHz") << 13 << 1e6 << 5e6 + 96e3;
        QTest::newRow("pulses, 1 MHz") << 30 << 1e6 << 32.0 * 1e4;
        QTest::newRow("pulses, at most a million a second") << 30 << 1e9 << 32e6;
        QTest::newRow("no bandwidth") << 13 << 0.0 << 0.0;
        QTest::newRow("a negative bandwidth") << 13 << -1e6 << 0.0;
        QTest::newRow("no number") << 13 << std::numeric_limits<double>::quiet_NaN() << 0.0;
        QTest::newRow("without end") << 30 << std::numeric_limits<double>::infinity() << 0.0;
    }

    void dataRatesFollowTheBandwidth()
    {
        QFETCH(int, type);
        QFETCH(double, bandwidth);
        QFETCH(double, content);
        const std::unique_ptr<VordaCommon::IDataRateConverter> converter(
            new RxDataRateConverter(static_cast<RECEIVERTYPE>(type), RxDataRateConverter::INTERFACE_LAN));
        QCOMPARE(converter->BytesPerSecond(bandwidth), content * 1500 / 1440);
    }
};

QTEST_GUILESS_MAIN(TestRxFacts)
#include "tst_rxfacts.moc"
