#include "spectrum/scanmarkers.h"

#include <cmath>
#include <limits>

#include "spectrum/scantext.h"

void ScanMarkers::add(double frequency, bool delta)
{
    if (!std::isfinite(frequency))
        return;
    if (count() == most)
        m_places.removeFirst();
    m_places.append({frequency, delta && count() > 0});
    m_places.first().delta = false;
    m_selected = count() - 1;
}

void ScanMarkers::removeSelected()
{
    if (m_places.isEmpty())
        return;
    m_places.removeAt(m_selected >= 0 ? m_selected : count() - 1);
    if (!m_places.isEmpty())
        m_places.first().delta = false;
    m_selected = count() - 1;
}

void ScanMarkers::clear()
{
    m_places.clear();
    m_selected = -1;
}

void ScanMarkers::select(int index)
{
    m_selected = index >= 0 && index < count() ? index : -1;
}

void ScanMarkers::move(int index, double frequency)
{
    if (index >= 0 && index < count() && std::isfinite(frequency))
        m_places[index].frequency = frequency;
}

QVector<ScanMarker> ScanMarkers::drawn(const ScanFrame* trace, double resolution) const
{
    QVector<ScanMarker> result;
    for (int i = 0; i < count(); ++i) {
        ScanMarker marker;
        marker.frequency = m_places[i].frequency;
        // As it is seen: a carrier between two pixels would be missed by the nearest bin.
        marker.level = trace ? ScanText::levelNear(*trace, marker.frequency, resolution)
                             : std::numeric_limits<float>::quiet_NaN();
        marker.delta = m_places[i].delta && i > 0;
        marker.text = QString::number(i + 1);
        if (marker.delta) {
            const ScanMarker& before = result.last();
            marker.text = QStringLiteral("Δ%1  %2")
                              .arg(marker.text)
                              .arg(ScanText::delta(marker.frequency - before.frequency,
                                                   double(marker.level) - double(before.level), resolution));
        }
        result.append(marker);
    }
    return result;
}
