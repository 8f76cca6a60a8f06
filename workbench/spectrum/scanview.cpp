#include "spectrum/scanview.h"

#include <algorithm>
#include <cmath>

bool ScanView::setFull(const ScanRange& full)
{
    if (!full.isValid() || !std::isfinite(full.start) || !std::isfinite(full.stop))
        return false;
    if (full == m_full)
        return true;
    const bool fits = !m_range.isValid() || isFit();
    const double shift = full.center() - m_full.center();
    m_full = full;
    m_range = fits ? full : kept(m_range.start + shift, m_range.width());
    return true;
}

// Exactly the panorama where nothing of it would be left out.
ScanRange ScanView::kept(double start, double width) const
{
    if (!(width < m_full.width()))
        return m_full;
    const double low = std::clamp(start, m_full.start, m_full.stop - width);
    return {low, std::min(low + width, m_full.stop)};
}

void ScanView::show(const ScanRange& range)
{
    if (!m_full.isValid() || !range.isValid())
        return;
    const double width = std::max(range.width(), std::min(m_finest, m_full.width()));
    m_range = kept(range.center() - width / 2, width);
}

void ScanView::zoom(double frequency, double factor)
{
    if (!m_range.isValid() || !(factor > 0) || !std::isfinite(factor) || !std::isfinite(frequency))
        return;
    const double width = std::max(m_range.width() / factor, std::min(m_finest, m_full.width()));
    const double share = std::clamp((frequency - m_range.start) / m_range.width(), 0.0, 1.0);
    m_range = kept(m_range.start + share * (m_range.width() - width), width);
}

void ScanView::pan(double hertz)
{
    if (m_range.isValid() && std::isfinite(hertz))
        m_range = kept(m_range.start + hertz, m_range.width());
}

double ScanView::tuningStep() const
{
    const double most = m_range.isValid() ? m_range.width() / 1000 : 1;
    if (!(most > 1))
        return 1;
    const double power = std::pow(10.0, std::floor(std::log10(most) + 1e-9));
    for (const double factor : {5.0, 2.0}) {
        if (factor * power <= most * (1 + 1e-9))
            return factor * power;
    }
    return power;
}

double ScanView::rounded(double frequency) const
{
    const double step = tuningStep();
    return std::round(frequency / step) * step;
}
