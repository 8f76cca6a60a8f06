#include "valuecontrols/levelhistory.h"

namespace {

const qint64 sliceMs = 100;

}  // namespace

void LevelHistory::Add(double level, qint64 nowMs)
{
    if (m_Slices.empty() || nowMs - m_Slices.back().start >= sliceMs) {
        m_Slices.push_back({nowMs, level, level});
        while (nowMs - m_Slices.front().start > spanMs)
            m_Slices.pop_front();
        return;
    }
    Slice& slice = m_Slices.back();
    slice.lowest = qMin(slice.lowest, level);
    slice.highest = qMax(slice.highest, level);
}

bool LevelHistory::Extremes(qint64 nowMs, double* lowest, double* highest)
{
    while (!m_Slices.empty() && nowMs - m_Slices.front().start > spanMs)
        m_Slices.pop_front();
    if (m_Slices.empty())
        return false;
    *lowest = m_Slices.front().lowest;
    *highest = m_Slices.front().highest;
    for (const Slice& slice : m_Slices) {
        *lowest = qMin(*lowest, slice.lowest);
        *highest = qMax(*highest, slice.highest);
    }
    return true;
}

qint64 LevelHistory::NextChangeMs(qint64 nowMs) const
{
    return m_Slices.empty() ? -1 : qMax<qint64>(0, m_Slices.front().start + spanMs + 1 - nowMs);
}
