// What a frame costs on its way to the pixels, 1200 x 600, beside the packaged plotting widget and
// beside a plain polyline, all in this one run on the offscreen platform.

#include <qcustomplot.h>

#include <QApplication>
#include <QPainter>
#include <QtTest>
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <ctime>
#include <functional>
#include <random>
#include <vector>

#include "spectrum/spectrumpainter.h"
#include "spectrum/waterfallhistory.h"

namespace {

constexpr int pictureWidth = 1200;
constexpr int traceHeight = 300;
constexpr int waterfallHeight = 300;
constexpr int framesInTurn = 8;  // different ones, so that nothing is kept from the frame before
constexpr int rounds = 9;
const ScanRange view{97.5e6, 99.5e6};

void print(const char* name, double value, const char* unit, double bound, const char* sense)
{
    std::printf(R"({"name": "%s", "value": %.6g, "unit": "%s", "bound": %.6g, "sense": "%s"})", name, value,
                unit, bound, sense);
    std::printf("\n");
    std::fflush(stdout);
}

std::vector<ScanFrame> framesOf(int bins)
{
    std::vector<ScanFrame> frames;
    std::mt19937 random(7);
    for (int i = 0; i < framesInTurn; ++i) {
        ScanFrame frame;
        frame.sequence = static_cast<quint64>(i) + 1;
        frame.step = view.width() / bins;
        frame.start = view.start + frame.step / 2;
        frame.resolutionBandwidth = frame.step * 1.5;
        frame.levels.resize(bins);
        for (float& level : frame.levels)
            level = static_cast<float>(10 * std::log10(-std::log((random() + 1.0) / 4294967297.0)));
        frame.levels[bins / 3] = 60;
        frames.push_back(frame);
    }
    return frames;
}

// Spectrum above, waterfall below, painted through a widget's paint event like the peer's.
class OwnPicture : public QWidget
{
public:
    OwnPicture() : m_history(waterfallHeight)
    {
        resize(pictureWidth, traceHeight + waterfallHeight);
        setAttribute(Qt::WA_OpaquePaintEvent);
        m_scene.view = view;
        m_history.setView(view);
        m_palette.setColor(QPalette::Base, Qt::black);
        m_palette.setColor(QPalette::Text, Qt::white);
    }

    void paint(const ScanFrame& frame)
    {
        m_scene.trace = &frame;
        m_history.add(frame);
        repaint();
    }

    QImage image() { return grab().toImage(); }
    int paints() const { return m_paints; }

protected:
    void paintEvent(QPaintEvent*) override
    {
        QPainter painter(this);
        m_spectrum.paint(painter, QRect(0, 0, pictureWidth, traceHeight), m_scene, m_palette, font());
        m_history.draw(painter, QRect(0, traceHeight, pictureWidth, waterfallHeight));
        ++m_paints;
    }

private:
    int m_paints = 0;
    SpectrumPainter m_spectrum;
    WaterfallHistory m_history;
    ScanScene m_scene;
    QPalette m_palette;
};

// The same in the plotting widget: graph above, colour map below, data changed in place. Like our
// history the map keeps all levels, so that zooming shows what was there.
class PlotPicture
{
public:
    // `columns` of the map; fewer than the bins leave out levels.
    PlotPicture(int bins, int columns)
    {
        m_plot.resize(pictureWidth, traceHeight + waterfallHeight);
        m_plot.plotLayout()->clear();
        auto* above = new QCPAxisRect(&m_plot);
        auto* below = new QCPAxisRect(&m_plot);
        m_plot.plotLayout()->addElement(0, 0, above);
        m_plot.plotLayout()->addElement(1, 0, below);
        m_graph = m_plot.addGraph(above->axis(QCPAxis::atBottom), above->axis(QCPAxis::atLeft));
        m_map = new QCPColorMap(below->axis(QCPAxis::atBottom), below->axis(QCPAxis::atLeft));
        m_map->data()->setSize(columns, waterfallHeight);
        m_map->data()->setRange(QCPRange(view.start, view.stop), QCPRange(0, waterfallHeight - 1));
        m_map->data()->fill(-20);
        m_map->setGradient(QCPColorGradient::gpThermal);
        m_map->setDataRange(QCPRange(-20, 80));
        m_map->setInterpolate(false);
        for (QCPAxisRect* rect : {above, below})
            rect->axis(QCPAxis::atBottom)->setRange(view.start, view.stop);
        above->axis(QCPAxis::atLeft)->setRange(-20, 80);
        below->axis(QCPAxis::atLeft)->setRange(0, waterfallHeight);
        QVector<double> keys(bins);
        for (int i = 0; i < bins; ++i)
            keys[i] = view.start + (i + 0.5) * view.width() / bins;
        m_graph->setData(keys, QVector<double>(bins, 0.0), true);
    }

    void paint(const ScanFrame& frame)
    {
        int bin = 0;
        for (auto point = m_graph->data()->begin(); point != m_graph->data()->end(); ++point)
            point->value = static_cast<double>(frame.levels[bin++]);
        const int columns = m_map->data()->keySize();
        for (int x = 0; x < columns; ++x)
            m_map->data()->setCell(x, m_line, static_cast<double>(frame.levels[x * bin / columns]));
        m_line = (m_line + 1) % waterfallHeight;
        m_plot.replot(QCustomPlot::rpImmediateRefresh);
    }

    QImage image() { return m_plot.toPixmap().toImage(); }
    QWidget& widget() { return m_plot; }

private:
    QCustomPlot m_plot;
    QCPGraph* m_graph = nullptr;
    QCPColorMap* m_map = nullptr;
    int m_line = 0;
};

// A line through all points, into an image of the same size.
void paintPolyline(QImage& image, const ScanFrame& frame)
{
    const int bins = static_cast<int>(frame.levels.size());
    QPolygonF points;
    points.reserve(bins);
    for (int i = 0; i < bins; ++i)
        points.append({(i + 0.5) * pictureWidth / bins,
                       (80 - static_cast<double>(frame.levels[i])) / 100 * (traceHeight + waterfallHeight)});
    image.fill(Qt::black);
    QPainter painter(&image);
    painter.setPen(Qt::green);
    painter.drawPolyline(points);
}

// Milliseconds of processor time for each of the frames; other programs do not count.
double millisecondsOf(const std::vector<ScanFrame>& frames,
                      const std::function<void(const ScanFrame&)>& paint)
{
    const std::clock_t begin = std::clock();
    for (const ScanFrame& frame : frames)
        paint(frame);
    const double seconds = static_cast<double>(std::clock() - begin) / CLOCKS_PER_SEC;
    return seconds * 1e3 / static_cast<double>(frames.size());
}

double median(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

// Pixels of the trace in the column of the frame's only strong bin, and whether the waterfall has it.
bool isRight(const QImage& image)
{
    const int x = pictureWidth / 3;
    bool inTrace = false;
    for (int column = x - 1; column <= x + 1; ++column)
        inTrace =
            inTrace || image.pixel(column, traceHeight * 22 / 100) != image.pixel(10, traceHeight * 22 / 100);
    bool inWaterfall = false;
    for (int column = x - 1; column <= x + 1; ++column)
        inWaterfall = inWaterfall || qGray(image.pixel(column, traceHeight)) > 100;
    return inTrace && inWaterfall && qGray(image.pixel(50, traceHeight)) < 100;
}

// Before a window is exposed nothing of it is painted, and nothing would be measured.
bool showAndWait(QWidget& widget)
{
    widget.show();
    return QTest::qWaitForWindowExposed(&widget, 30000);
}

int fail(const char* what)
{
    std::fprintf(stderr, "bench_spectrum: %s\n", what);
    return 1;
}

}  // namespace

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    const std::vector<ScanFrame> small = framesOf(4096);
    const std::vector<ScanFrame> large = framesOf(65536);
    OwnPicture ownSmall;
    OwnPicture ownLarge;
    PlotPicture plot(4096, 4096);
    PlotPicture plotOfPixels(4096, pictureWidth);
    QImage line(pictureWidth, traceHeight + waterfallHeight, QImage::Format_RGB32);

    if (!showAndWait(ownSmall) || !showAndWait(ownLarge) || !showAndWait(plot.widget()) ||
        !showAndWait(plotOfPixels.widget()))
        return fail("no window is exposed");

    // What is measured must be right, and everything warm.
    millisecondsOf(small, [&](const ScanFrame& frame) { ownSmall.paint(frame); });
    millisecondsOf(large, [&](const ScanFrame& frame) { ownLarge.paint(frame); });
    millisecondsOf(small, [&](const ScanFrame& frame) { plot.paint(frame); });

    if (!isRight(ownSmall.image()) || !isRight(ownLarge.image()))
        return fail("the strong bin is not in the picture");
    if (plot.image().size() != QSize(pictureWidth, traceHeight + waterfallHeight))
        return fail("the peer's picture has another size");

    // In turns, so that whatever else the machine does meets all of them.
    std::vector<double> own4k, own64k, peer, peerOfPixels, polyline;
    for (int i = 0; i < rounds; ++i) {
        own4k.push_back(millisecondsOf(small, [&](const ScanFrame& frame) { ownSmall.paint(frame); }));
        own64k.push_back(millisecondsOf(large, [&](const ScanFrame& frame) { ownLarge.paint(frame); }));
        peer.push_back(millisecondsOf(small, [&](const ScanFrame& frame) { plot.paint(frame); }));
        peerOfPixels.push_back(
            millisecondsOf(small, [&](const ScanFrame& frame) { plotOfPixels.paint(frame); }));
        polyline.push_back(
            millisecondsOf(large, [&](const ScanFrame& frame) { paintPolyline(line, frame); }));
    }
    if (ownSmall.paints() < (rounds + 1) * framesInTurn || ownLarge.paints() < (rounds + 1) * framesInTurn)
        return fail("frames were not painted");
    print("spectrum.frame_4096", median(own4k), "ms", 0, "info");
    print("spectrum.frame_65536", median(own64k), "ms", 0, "info");
    print("spectrum.qcustomplot_4096", median(peer), "ms", 0, "info");
    print("spectrum.polyline_65536", median(polyline), "ms", 0, "info");
    print("spectrum.ratio_qcustomplot", median(own4k) / median(peer), "ratio", 0.2, "max");
    print("spectrum.ratio_polyline", median(own64k) / median(polyline), "ratio", 0.08, "max");
    // Beside a map that keeps one level a pixel and could not be zoomed.
    print("spectrum.ratio_qcustomplot_pixels", median(own4k) / median(peerOfPixels), "ratio", 0, "info");
    print("spectrum.growth_bins", median(own64k) / median(own4k), "ratio", 4, "max");
    return 0;
}
