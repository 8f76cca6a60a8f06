#include "spectrum/scancanvas.h"

#include <QPainter>
#include <cmath>
#include <limits>

namespace {

constexpr double nothing = std::numeric_limits<double>::quiet_NaN();
constexpr int historyRows = 1200;  // of a tall pane on a dense screen
constexpr int leastHeight = 60;

bool same(double one, double other)
{
    return one == other || (std::isnan(one) && std::isnan(other));
}

}  // namespace

SpectrumCanvas::SpectrumCanvas(QWidget* parent) : QWidget(parent)
{
    setObjectName(QStringLiteral("spectrumCanvas"));
    setAttribute(Qt::WA_OpaquePaintEvent);
    setMouseTracking(true);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
    setMinimumSize(leastHeight * 2, leastHeight * 2);
}

ScanHandle SpectrumCanvas::handleAt(const QPointF& position) const
{
    return SpectrumPainter::hitTest(scene, rect(), position);
}

int SpectrumCanvas::markerAt(const QPointF& position) const
{
    return SpectrumPainter::markerAt(scene, rect(), position);
}

ScanMapping SpectrumCanvas::mapping() const
{
    return SpectrumPainter::mapping(scene, rect());
}

void SpectrumCanvas::paintEvent(QPaintEvent*)
{
    ++m_paints;
    QPainter painter(this);
    m_painter.paint(painter, rect(), scene, palette(), font());
}

WaterfallCanvas::WaterfallCanvas(QWidget* parent)
    : QWidget(parent), history(historyRows), m_cursor(nothing), m_frequency(nothing)
{
    setObjectName(QStringLiteral("waterfallCanvas"));
    setAttribute(Qt::WA_OpaquePaintEvent);
    setMouseTracking(true);
    setCursor(Qt::CrossCursor);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
    setMinimumHeight(leastHeight);
}

void WaterfallCanvas::setCursorFrequency(double frequency)
{
    if (same(frequency, m_cursor))
        return;
    m_cursor = frequency;
    update();
}

void WaterfallCanvas::setView(const ScanRange& view)
{
    if (view == m_view)
        return;
    m_view = view;
    history.setView(view);
    update();
}

void WaterfallCanvas::setLook(float minimum, float maximum, ScanPalette::Kind palette, bool greyed)
{
    if (minimum == m_minimum && maximum == m_maximum && palette == m_palette && greyed == m_greyed)
        return;
    m_minimum = minimum;
    m_maximum = maximum;
    m_palette = palette;
    m_greyed = greyed;
    history.setLevels(minimum, maximum);
    history.setPalette(ScanPalette(palette));
    history.setGreyed(greyed);
    update();
}

void WaterfallCanvas::setChannel(const ScanChannel& channel)
{
    const double frequency = channel.visible ? channel.frequency : nothing;
    if (same(frequency, m_frequency))
        return;
    m_frequency = frequency;
    update();
}

const ScanFrame* WaterfallCanvas::rowAt(const QPointF& position) const
{
    return history.rowAt(int(position.y() * devicePixelRatioF()));
}

void WaterfallCanvas::paintEvent(QPaintEvent*)
{
    ++m_paints;
    QPainter painter(this);
    history.draw(painter, rect());
    paintLines(painter);
}

// The channel's line begins above in the spectrum; in the history it would cover what is looked
// for, so that only its two ends are drawn.
void WaterfallCanvas::paintLines(QPainter& painter)
{
    constexpr int endPixels = 8;
    if (!m_view.isValid())
        return;
    const auto place = [this](double frequency) {
        return (frequency - m_view.start) / m_view.width() * width();
    };
    if (m_view.contains(m_frequency)) {
        const double x = place(m_frequency);
        painter.setPen(QPen(Qt::white, 0));
        painter.drawLine(QPointF(x, 0), QPointF(x, endPixels));
        painter.drawLine(QPointF(x, height() - endPixels), QPointF(x, height()));
    }
    if (m_view.contains(m_cursor)) {
        const double x = place(m_cursor);
        painter.setPen(QPen(QColor(255, 255, 255, 150), 0, Qt::DashLine));
        painter.drawLine(QPointF(x, 0), QPointF(x, height()));
    }
}
