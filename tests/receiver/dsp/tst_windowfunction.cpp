#include <QTest>
#include <cmath>
#include <complex>
#include <numeric>

#include "receiver/dsp/windowfunction.h"

using namespace Receiver;

namespace {

constexpr double pi = 3.14159265358979323846;

// Magnitude of the window's spectrum `offset` bins beside a tone, in dB.
double response(const std::vector<float>& window, double offset)
{
    std::complex<double> sum;
    for (std::size_t i = 0; i < window.size(); ++i)
        sum += double(window[i]) * std::polar(1.0, -2 * pi * offset * double(i) / double(window.size()));
    return 20 * std::log10(std::max(std::abs(sum), 1e-12));
}

void addWindows()
{
    QTest::addColumn<int>("function");
    QTest::addColumn<double>("noiseBins");   // from the literature, see the header
    QTest::addColumn<double>("sideLobes");   // dB, of the highest
    QTest::addColumn<double>("mainLobe");    // bins from the middle to the first zero
    QTest::addColumn<double>("scalloping");  // dB, half way between two bins
    QTest::newRow("Hann") << int(WindowFunction::Hann) << 1.50 << -31.5 << 2.0 << -1.42;
    QTest::newRow("Blackman-Harris") << int(WindowFunction::BlackmanHarris) << 2.00 << -92.0 << 4.0 << -0.83;
    QTest::newRow("flat top") << int(WindowFunction::FlatTop) << 3.81 << -95.0 << 5.0 << -0.004;
}

}  // namespace

class TestWindowFunction : public QObject
{
    Q_OBJECT
private slots:
    void coefficientsSumToOne_data();
    void coefficientsSumToOne();
    void aPeriodHasItsLargestCoefficientInTheMiddle();
    void noiseBandwidthIsThatOfTheLiterature_data() { addWindows(); }
    void noiseBandwidthIsThatOfTheLiterature();
    void sideLobesAreAsFarDownAsTheLiteratureSays_data() { addWindows(); }
    void sideLobesAreAsFarDownAsTheLiteratureSays();
    void scallopingIsThatOfTheLiterature_data() { addWindows(); }
    void scallopingIsThatOfTheLiterature();
    void nothingComesOfASizeBelowOne();
};

void TestWindowFunction::coefficientsSumToOne_data()
{
    QTest::addColumn<int>("function");
    QTest::addColumn<int>("size");
    for (int function = int(WindowFunction::Hann); function <= int(WindowFunction::FlatTop); ++function) {
        for (const int size : {1, 2, 3, 64, 1000, 5120, 131072})
            QTest::addRow("window %d of %d", function, size) << function << size;
    }
}

void TestWindowFunction::coefficientsSumToOne()
{
    QFETCH(int, function);
    QFETCH(int, size);
    const std::vector<float> window = makeWindow(WindowFunction(function), size);
    QCOMPARE(int(window.size()), size);
    const double sum = std::accumulate(window.begin(), window.end(), 0.0);
    QVERIFY2(std::abs(sum - 1) < 1e-5, qPrintable(QString::number(sum, 'g', 10)));
}

void TestWindowFunction::aPeriodHasItsLargestCoefficientInTheMiddle()
{
    for (const auto function :
         {WindowFunction::Hann, WindowFunction::BlackmanHarris, WindowFunction::FlatTop}) {
        const std::vector<float> window = makeWindow(function, 128);
        QCOMPARE(int(std::max_element(window.begin(), window.end()) - window.begin()), 64);
        for (std::size_t i = 1; i < 64; ++i)
            QVERIFY(std::abs(window[i] - window[128 - i]) < 1e-8f);
    }
}

void TestWindowFunction::noiseBandwidthIsThatOfTheLiterature()
{
    QFETCH(int, function);
    QFETCH(double, noiseBins);
    for (const int size : {256, 5120}) {
        const double measured = noiseBandwidth(makeWindow(WindowFunction(function), size));
        QVERIFY2(std::abs(measured - noiseBins) < 0.01, qPrintable(QString::number(measured)));
    }
    QCOMPARE(noiseBandwidth({}), 0.0);
}

void TestWindowFunction::sideLobesAreAsFarDownAsTheLiteratureSays()
{
    QFETCH(int, function);
    QFETCH(double, sideLobes);
    QFETCH(double, mainLobe);
    const std::vector<float> window = makeWindow(WindowFunction(function), 512);
    double highest = -200;
    for (double offset = mainLobe; offset < 200; offset += 0.05)
        highest = std::max(highest, response(window, offset));
    qInfo("highest side lobe %.2f dB", highest);
    QVERIFY2(highest < sideLobes + 0.2, qPrintable(QString::number(highest)));
}

void TestWindowFunction::scallopingIsThatOfTheLiterature()
{
    QFETCH(int, function);
    QFETCH(double, scalloping);
    const std::vector<float> window = makeWindow(WindowFunction(function), 512);
    QVERIFY(std::abs(response(window, 0)) < 1e-4);
    const double measured = response(window, 0.5);
    QVERIFY2(std::abs(measured - scalloping) < 0.02, qPrintable(QString::number(measured)));
}

void TestWindowFunction::nothingComesOfASizeBelowOne()
{
    QVERIFY(makeWindow(WindowFunction::Hann, 0).empty());
    QVERIFY(makeWindow(WindowFunction::FlatTop, -5).empty());
}

QTEST_GUILESS_MAIN(TestWindowFunction)
#include "tst_windowfunction.moc"
