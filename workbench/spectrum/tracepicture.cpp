#include "spectrum/tracepicture.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace {

// The row of a column without a level: below every picture.
constexpr int nowhere = 1 << 28;

// Rows of levels. One above the range shows in the first row, so that it is not overlooked; one
// below it does not show.
void rowsOf(const float* levels, int count, const ScanMapping& mapping, int* rows)
{
    const float top = static_cast<float>(mapping.levelMaximum);
    const float lowest = static_cast<float>(mapping.levelMinimum);
    const float height = static_cast<float>(mapping.rect.height());
    const float scale = height / (top - lowest);
    for (int x = 0; x < count; ++x) {
        const float level = levels[x];
        const float row = (top - level) * scale;
        const float inside = row < 0 ? 0 : (row > height ? height : row);
        const float last = level >= lowest && inside > height - 1 ? height - 1 : inside;
        rows[x] = level == level ? static_cast<int>(last) : nowhere;
    }
}

// One row of the picture, see TracePicture::compose. Both backgrounds are read always: plain selects
// become vector code.
void composeRow(int y, int width, const QRgb* plain, const QRgb* tinted, const int* maximum, const int* top,
                const int* bottom, TracePicture::Colors colors, QRgb* __restrict out)
{
    for (int x = 0; x < width; ++x) {
        const QRgb above = plain[x];
        const QRgb below = tinted[x];
        const int first = maximum[x] < top[x] ? maximum[x] : top[x];
        QRgb color = y < top[x] ? colors.maximum : colors.mean;
        color = y > bottom[x] ? below : color;
        out[x] = y < first ? above : color;
    }
}

void copyRows(const QImage& from, QImage& to, int begin, int end)
{
    if (end > begin)
        std::memcpy(to.scanLine(begin), from.constScanLine(begin),
                    static_cast<std::size_t>(from.bytesPerLine()) * static_cast<std::size_t>(end - begin));
}

}  // namespace

void TracePicture::Extents::fill(const QVector<float>& levels, const ScanMapping& mapping, int thickness)
{
    const int count = static_cast<int>(levels.size());
    top.resize(count);
    bottom.resize(count);
    rowsOf(levels.constData(), count, mapping, top.data());
    // Each column reaches half of the way to its neighbours, so that steep flanks stay closed.
    const int* rows = top.constData();
    for (int x = 0; x < count; ++x) {
        const int row = rows[x];
        int low = row;
        if (x > 0 && rows[x - 1] != nowhere)
            low = std::max(low, (row + rows[x - 1]) / 2);
        if (x + 1 < count && rows[x + 1] != nowhere)
            low = std::max(low, (row + rows[x + 1]) / 2);
        bottom[x] = low;
    }
    int before = nowhere;
    for (int x = 0; x < count; ++x) {
        const int row = top[x];
        const int after = x + 1 < count ? top[x + 1] : nowhere;
        int high = std::min(row, (row + before + 1) / 2);
        high = std::min(high, (row + after + 1) / 2);
        before = row;
        top[x] = row == nowhere ? nowhere : high;
        bottom[x] = row == nowhere ? nowhere : bottom[x] + thickness - 1;
    }
}

bool TracePicture::prepare(const QSize& size)
{
    if (m_image.size() != size) {
        m_image = QImage(size, QImage::Format_RGB32);
        m_plain = m_tinted = 0;
    }
    return !m_image.isNull();
}

void TracePicture::compose(const QImage& plain)
{
    if (prepare(plain.size()))
        copyRows(plain, m_image, 0, plain.height());
    m_plain = m_tinted = 0;
}

void TracePicture::compose(const QImage& plain, const QImage& tinted, const TraceColumns& columns,
                           const ScanMapping& mapping, const Colors& colors, int thickness)
{
    const int width = plain.width();
    const int height = plain.height();
    if (!prepare(plain.size()) || columns.mean.size() != width || columns.maximum.size() != width)
        return;
    m_line.fill(columns.mean, mapping, thickness);
    m_maximum.resize(width);
    rowsOf(columns.maximum.constData(), width, mapping, m_maximum.data());
    int first = height;
    int last = 0;
    for (int x = 0; x < width; ++x) {
        first = std::min({first, m_maximum[x], m_line.top[x]});
        last = std::max(last, m_line.bottom[x]);
    }
    first = std::clamp(first, 0, height);
    last = std::clamp(last + 1, first, height);
    // What still stands from the frame before is not copied again.
    const bool known = m_plain == plain.cacheKey() && m_tinted == tinted.cacheKey();
    copyRows(plain, m_image, known ? m_first : 0, first);
    copyRows(tinted, m_image, last, known ? m_behind : height);
    for (int y = first; y < last; ++y) {
        composeRow(y, width, reinterpret_cast<const QRgb*>(plain.constScanLine(y)),
                   reinterpret_cast<const QRgb*>(tinted.constScanLine(y)), m_maximum.constData(),
                   m_line.top.constData(), m_line.bottom.constData(), colors,
                   reinterpret_cast<QRgb*>(m_image.scanLine(y)));
    }
    m_plain = plain.cacheKey();
    m_tinted = tinted.cacheKey();
    m_first = first;
    m_behind = last;
}

void TracePicture::drawLine(const QVector<float>& levels, const ScanMapping& mapping, QRgb color,
                            int thickness)
{
    const int width = m_image.width();
    const int height = m_image.height();
    if (levels.size() != width)
        return;
    m_line.fill(levels, mapping, thickness);
    const qsizetype stride = m_image.bytesPerLine() / static_cast<qsizetype>(sizeof(QRgb));
    QRgb* pixels = reinterpret_cast<QRgb*>(m_image.bits());
    for (int x = 0; x < width; ++x) {
        const int end = std::min(m_line.bottom[x] + 1, height);
        if (m_line.top[x] < end) {
            m_first = std::min(m_first, m_line.top[x]);
            m_behind = std::max(m_behind, end);
        }
        for (int y = m_line.top[x]; y < end; ++y)
            pixels[y * stride + x] = color;
    }
}
