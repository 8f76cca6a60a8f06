#include "spectrum/waterfallhistory.h"

#include <QPainter>
#include <algorithm>
#include <cmath>
#include <limits>

namespace {

// Where a row has nothing to show.
constexpr QRgb emptyColor = 0xff000000;

// The highest level of every column; what a waterfall is looked at for are the signals.
void columnMaxima(const ScanFrame& frame, const ScanRange& view, QVector<float>& columns)
{
    const int width = static_cast<int>(columns.size());
    const int count = static_cast<int>(frame.levels.size());
    const float* levels = frame.levels.constData();
    const double binsPerColumn = view.width() / width / frame.step;
    const double first = (view.start - frame.start) / frame.step;
    for (int x = 0; x < width; ++x) {
        const double edge = first + x * binsPerColumn;
        const double next = edge + binsPerColumn;
        const int begin = static_cast<int>(std::clamp(std::ceil(edge), 0.0, static_cast<double>(count)));
        const int end = static_cast<int>(std::clamp(std::ceil(next), 0.0, static_cast<double>(count)));
        if (end > begin) {
            columns[x] = *std::max_element(levels + begin, levels + end);
        } else {
            const double nearest = std::round((edge + next) / 2);
            columns[x] = nearest >= 0 && nearest < count ? levels[static_cast<int>(nearest)]
                                                         : std::numeric_limits<float>::quiet_NaN();
        }
    }
}

}  // namespace

WaterfallHistory::WaterfallHistory(int rows) : m_rows(std::max(rows, 1)) {}

void WaterfallHistory::setRows(int rows)
{
    rows = std::max(rows, 1);
    if (rows == m_rows)
        return;
    QVector<ScanFrame> kept;
    for (int i = std::min(filled(), rows) - 1; i >= 0; --i)
        kept.append(*row(i));
    m_ring = kept;
    m_newest = static_cast<int>(kept.size()) - 1;
    m_rows = rows;
    m_stale = true;
}

void WaterfallHistory::add(const ScanFrame& frame)
{
    if (m_ring.size() < m_rows) {
        m_ring.append(frame);
        m_newest = static_cast<int>(m_ring.size()) - 1;
    } else {
        m_newest = (m_newest + 1) % m_rows;
        m_ring[m_newest] = frame;
    }
    if (!m_stale)
        paintLine(m_newest, frame);
}

void WaterfallHistory::clear()
{
    m_ring.clear();
    m_newest = -1;
    m_stale = true;
}

const ScanFrame* WaterfallHistory::row(int index) const
{
    if (index < 0 || index >= filled())
        return nullptr;
    const int size = filled();
    return &m_ring[(m_newest - index + size) % size];
}

void WaterfallHistory::setView(const ScanRange& view)
{
    m_stale = m_stale || !(view == m_view);
    m_view = view;
}

void WaterfallHistory::setLevels(float minimum, float maximum)
{
    if (!(maximum > minimum))
        return;
    m_stale = m_stale || minimum != m_minimum || maximum != m_maximum;
    m_minimum = minimum;
    m_maximum = maximum;
}

void WaterfallHistory::setPalette(const ScanPalette& palette)
{
    m_stale = m_stale || palette.kind() != m_palette.kind();
    m_palette = palette;
}

void WaterfallHistory::setWidth(int pixels)
{
    m_stale = m_stale || pixels != m_width;
    m_width = std::max(pixels, 0);
}

void WaterfallHistory::paintLine(int index, const ScanFrame& frame)
{
    QRgb* pixels = reinterpret_cast<QRgb*>(m_image.scanLine(m_rows - 1 - index));
    ++m_painted;
    if (frame.isEmpty() || !(frame.step > 0) || !m_view.isValid()) {
        std::fill_n(pixels, m_width, emptyColor);
        return;
    }
    m_columns.resize(m_width);
    columnMaxima(frame, m_view, m_columns);
    const float scale = 255 / (m_maximum - m_minimum);
    for (int x = 0; x < m_width; ++x) {
        const float position = (m_columns[x] - m_minimum) * scale;
        if (std::isnan(position))
            pixels[x] = emptyColor;
        else
            pixels[x] = m_palette.color(static_cast<int>(std::clamp(position, 0.0f, 255.0f)));
    }
}

void WaterfallHistory::paintAll()
{
    if (m_image.width() != m_width || m_image.height() != m_rows)
        m_image = QImage(m_width, m_rows, QImage::Format_RGB32);
    for (int i = 0; i < filled(); ++i)
        paintLine(i, m_ring[i]);
    m_stale = false;
}

void WaterfallHistory::draw(QPainter& painter, const QRect& target)
{
    setWidth(target.width());
    if (m_width == 0 || target.height() <= 0)
        return;
    if (m_stale)
        paintAll();
    const int shown = std::min(filled(), target.height());
    // From the newest line down to the image's last one, then from the oldest stretch's first.
    int y = target.top();
    int index = m_newest;
    for (int done = 0; done < shown;) {
        const int stretch = std::min(index + 1, shown - done);
        painter.drawImage(target.left(), y, m_image, 0, m_rows - 1 - index, m_width, stretch);
        y += stretch;
        done += stretch;
        index = filled() - 1;
    }
    if (shown < target.height())
        painter.fillRect(target.adjusted(0, shown, 0, 0), QColor::fromRgb(emptyColor));
}

int WaterfallHistory::takePaintedLines()
{
    const int painted = m_painted;
    m_painted = 0;
    return painted;
}
