#include "spectrum/waterfallhistory.h"

#include <QPainter>
#include <algorithm>
#include <cmath>

#include "spectrum/devicespace.h"
#include "spectrum/levelpower.h"

namespace {

// Where a row has nothing to show.
constexpr QRgb emptyColor = 0xff000000;

constexpr int mostRows = 8192;

// The frame with at most WaterfallHistory::mostLevels bins, each the highest of those it stands for
// and in their middle.
ScanFrame reduced(const ScanFrame& frame)
{
    const int count = static_cast<int>(frame.levels.size());
    if (count <= WaterfallHistory::mostLevels)
        return frame;
    // Bins in groups that differ by one at most, so that they fill the frame's width exactly.
    const qint64 groups = WaterfallHistory::mostLevels;
    ScanFrame result = frame;
    result.step = frame.step * count / groups;
    result.start = frame.start + (result.step - frame.step) / 2;
    result.levels = QVector<float>(static_cast<int>(groups), LevelPower::none);
    for (qint64 i = 0; i < groups; ++i) {
        const int end = static_cast<int>((i + 1) * count / groups);
        float highest = LevelPower::none;
        for (int bin = static_cast<int>(i * count / groups); bin < end; ++bin) {
            const float level = frame.levels[bin];
            if (LevelPower::isLevel(level) && !(level <= highest))
                highest = level;
        }
        result.levels[static_cast<int>(i)] = highest;
    }
    return result;
}

qint64 bytesOf(const ScanFrame& frame)
{
    return frame.levels.size() * static_cast<qint64>(sizeof(float));
}

}  // namespace

WaterfallHistory::WaterfallHistory(int rows) : m_rows(std::clamp(rows, 1, mostRows))
{
    m_ring.resize(static_cast<std::size_t>(m_rows));
    setColors();
}

void WaterfallHistory::setRows(int rows)
{
    rows = std::clamp(rows, 1, mostRows);
    if (rows == m_rows)
        return;
    std::vector<ScanFrame> kept(static_cast<std::size_t>(rows));
    const int count = std::min(m_filled, rows);
    m_bytes = 0;
    for (int i = 0; i < count; ++i) {
        ScanFrame& frame = m_ring[static_cast<std::size_t>(slot(i))];
        m_bytes += bytesOf(frame);
        kept[static_cast<std::size_t>(count - 1 - i)] = std::move(frame);
    }
    m_ring = std::move(kept);
    m_filled = count;
    m_newest = std::max(0, count - 1);
    m_rows = rows;
    m_stale = true;
}

void WaterfallHistory::dropOldest()
{
    ScanFrame& oldest = m_ring[static_cast<std::size_t>(slot(m_filled - 1))];
    m_bytes -= bytesOf(oldest);
    oldest = ScanFrame();
    --m_filled;
}

void WaterfallHistory::add(const ScanFrame& frame)
{
    if (m_filled == m_rows)
        dropOldest();
    m_newest = (m_newest + 1) % m_rows;
    ScanFrame& place = m_ring[static_cast<std::size_t>(m_newest)];
    place = frame.isValid() ? reduced(frame) : ScanFrame();
    ++m_filled;
    m_bytes += bytesOf(place);
    while (m_bytes > mostBytes && m_filled > 1)
        dropOldest();
    if (!m_stale)
        paintLine(m_newest);
}

void WaterfallHistory::clear()
{
    while (m_filled > 0)
        dropOldest();
}

const ScanFrame* WaterfallHistory::row(int index) const
{
    if (index < 0 || index >= m_filled)
        return nullptr;
    return &m_ring[static_cast<std::size_t>(slot(index))];
}

void WaterfallHistory::setView(const ScanRange& view)
{
    m_stale = m_stale || !(view == m_view);
    m_view = view;
}

void WaterfallHistory::setLevels(float minimum, float maximum)
{
    if (!(maximum > minimum) || !std::isfinite(maximum - minimum))
        return;
    m_stale = m_stale || minimum != m_minimum || maximum != m_maximum;
    m_minimum = minimum;
    m_maximum = maximum;
}

void WaterfallHistory::setPalette(const ScanPalette& palette)
{
    m_stale = m_stale || palette.kind() != m_palette.kind();
    m_palette = palette;
    setColors();
}

void WaterfallHistory::setGreyed(bool greyed)
{
    m_stale = m_stale || greyed != m_greyed;
    m_greyed = greyed;
    setColors();
}

void WaterfallHistory::setColors()
{
    for (std::size_t i = 0; i < m_colors.size(); ++i) {
        const QRgb color = m_palette.colors()[i];
        const int grey = qGray(color);
        m_colors[i] = m_greyed ? qRgb(grey, grey, grey) : color;
    }
}

void WaterfallHistory::setWidth(int pixels)
{
    m_stale = m_stale || pixels != m_width;
    m_width = std::max(pixels, 0);
}

void WaterfallHistory::paintLine(int slot)
{
    QRgb* pixels = reinterpret_cast<QRgb*>(m_image.scanLine(m_rows - 1 - slot));
    ++m_painted;
    m_columns.fillMaximum(m_ring[static_cast<std::size_t>(slot)], m_view, m_width);
    const float* levels = m_columns.maximum.constData();
    const float scale = 256 / (m_maximum - m_minimum);
    for (int x = 0; x < m_width; ++x) {
        const float position = (levels[x] - m_minimum) * scale;
        if (std::isnan(position))
            pixels[x] = emptyColor;
        else
            pixels[x] = m_colors[static_cast<std::size_t>(std::clamp(position, 0.0f, 255.0f))];
    }
}

void WaterfallHistory::paintAll()
{
    if (m_image.width() != m_width || m_image.height() != m_rows) {
        m_image = QImage(m_width, m_rows, QImage::Format_RGB32);
        m_image.fill(emptyColor);
    }
    // Without memory for it the picture stays empty, and is tried again.
    m_stale = m_image.isNull();
    for (int i = 0; i < m_filled && !m_stale; ++i)
        paintLine(slot(i));
}

void WaterfallHistory::draw(QPainter& painter, const QRect& target)
{
    const DeviceSpace device(painter);
    const QRect pixels = device.pixels(target);
    if (pixels.isEmpty())
        return;
    setWidth(pixels.width());
    if (m_stale)
        paintAll();
    const int shown = std::min(m_filled, pixels.height());
    // From the newest line down to the image's last one, then from the first.
    const int line = m_rows - 1 - m_newest;
    const int stretch = std::min(shown, m_rows - line);
    if (stretch > 0)
        painter.drawImage(pixels.left(), pixels.top(), m_image, 0, line, m_width, stretch);
    if (shown > stretch)
        painter.drawImage(pixels.left(), pixels.top() + stretch, m_image, 0, 0, m_width, shown - stretch);
    if (shown < pixels.height())
        painter.fillRect(pixels.adjusted(0, shown, 0, 0), QColor::fromRgb(emptyColor));
}

int WaterfallHistory::takePaintedLines()
{
    const int painted = m_painted;
    m_painted = 0;
    return painted;
}
