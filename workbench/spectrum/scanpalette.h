#pragma once

#include <QColor>
#include <QRgb>
#include <QString>
#include <QVector>
#include <array>

// Colours of the waterfall: 256 steps from the lowest to the highest level. All of them rise in
// lightness from end to end, so that they can be read without telling hues apart, and in print.
class ScanPalette
{
public:
    enum Kind
    {
        Thermal,  // black, violet, orange, pale yellow
        Ocean,    // dark blue, teal, yellow
        Grey
    };

    explicit ScanPalette(Kind kind = Thermal);

    Kind kind() const { return m_kind; }
    QRgb color(int index) const { return m_colors[static_cast<std::size_t>(index)]; }
    const std::array<QRgb, 256>& colors() const { return m_colors; }

    static QString name(Kind kind);  // for menus, translated

private:
    Kind m_kind;
    std::array<QRgb, 256> m_colors;
};
