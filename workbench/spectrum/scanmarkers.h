#pragma once

#include <QVector>

#include "spectrum/scanscene.h"

// The operator's markers. They stand at frequencies; their levels and texts are those of the trace
// of the moment.
class ScanMarkers
{
public:
    // More of them would cover the picture; the oldest leaves.
    static constexpr int most = 8;

    // A delta marker is measured against the one before it; the first is never one. It is selected.
    void add(double frequency, bool delta);

    void removeSelected();  // without a selection the newest
    void clear();
    void select(int index);
    void move(int index, double frequency);

    int count() const { return static_cast<int>(m_places.size()); }
    int selected() const { return m_selected; }
    double frequency(int index) const { return m_places[index].frequency; }

    // As they are drawn over `trace` (null: none); `resolution` is what a pixel stands
    // for in Hz: levels are those that are seen there.
    QVector<ScanMarker> drawn(const ScanFrame* trace, double resolution) const;

private:
    struct Place
    {
        double frequency;
        bool delta;
    };
    QVector<Place> m_places;
    int m_selected = -1;
};
