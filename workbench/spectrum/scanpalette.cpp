#include "spectrum/scanpalette.h"

#include <QCoreApplication>
#include <cmath>

namespace {

struct Stop
{
    double at;
    QRgb color;
};

// Each stop stands where its lightness (CIE L*) belongs on an even rise from the first to the last.
QVector<Stop> stops(ScanPalette::Kind kind)
{
    switch (kind) {
        case ScanPalette::Thermal:
            return {{0, 0xff050410},    {0.11, 0xff2b0a56}, {0.29, 0xff7a1c6d},
                    {0.47, 0xffc73e4c}, {0.70, 0xfff98e09}, {1, 0xfffcffb8}};
        case ScanPalette::Ocean:
            return {{0, 0xff02071f},
                    {0.245, 0xff153a6b},
                    {0.49, 0xff2a788e},
                    {0.78, 0xff5ec962},
                    {1, 0xfff5f07a}};
        case ScanPalette::Grey:
            return {{0, 0xff000000}, {1, 0xffffffff}};
    }
    return {{0, 0xff000000}, {1, 0xffffffff}};
}

int mixed(int from, int to, double share)
{
    return static_cast<int>(std::lround(from + (to - from) * share));
}

}  // namespace

ScanPalette::ScanPalette(Kind kind) : m_kind(kind)
{
    const QVector<Stop> all = stops(kind);
    int next = 1;
    for (int i = 0; i < 256; ++i) {
        const double at = i / 255.0;
        while (next < all.size() - 1 && at > all[next].at)
            ++next;
        const Stop& lower = all[next - 1];
        const Stop& upper = all[next];
        const double share = (at - lower.at) / (upper.at - lower.at);
        m_colors[static_cast<std::size_t>(i)] = qRgb(mixed(qRed(lower.color), qRed(upper.color), share),
                                                     mixed(qGreen(lower.color), qGreen(upper.color), share),
                                                     mixed(qBlue(lower.color), qBlue(upper.color), share));
    }
}

QString ScanPalette::name(Kind kind)
{
    switch (kind) {
        case Thermal:
            return QCoreApplication::translate("ScanPalette", "Thermal");
        case Ocean:
            return QCoreApplication::translate("ScanPalette", "Ocean");
        case Grey:
            return QCoreApplication::translate("ScanPalette", "Grey");
    }
    return {};
}
