#include "spectrum/coloritemmapadapter.h"

#include "spectrum/coloritemmapadapter_p.h"
#include "spectrum/demodulationcolors.h"

namespace {

constexpr unsigned passbandItem = 1;

struct Entry
{
    const char* demodulation;
    QRgb color;
};

constexpr Entry colors[] = {
    {"AM", 0xffe69f00},   // orange
    {"FM", 0xff56b4e9},   // sky blue
    {"USB", 0xff009e73},  // bluish green
    {"LSB", 0xfff0e442},  // yellow
    {"CW", 0xffcc79a7},   // reddish purple
    {"IQ", 0xffd55e00},   // vermilion
};
constexpr QRgb otherColor = 0xff9a9a9a;

}  // namespace

QColor demodulationColor(const QString& demodulation)
{
    for (const Entry& entry : colors) {
        if (demodulation.compare(QLatin1String(entry.demodulation), Qt::CaseInsensitive) == 0)
            return QColor::fromRgb(entry.color);
    }
    return QColor::fromRgb(otherColor);
}

ColorItemMapAdapter::ColorItemMapAdapter() : d(nullptr) {}

ColorItemMapAdapter::~ColorItemMapAdapter()
{
    delete d;
}

bool ColorItemMapAdapter::SetDemodulation_ValuePath(unsigned item, const QString& path)
{
    return item == passbandItem && d->demodulation.Bind(path);
}

ColorItemMapAdapter* ColorItemMapAdapterPrivate::make(QWidget* noteHome, std::function<void()> changed)
{
    auto* const adapter = new ColorItemMapAdapter;
    adapter->d = new ColorItemMapAdapterPrivate(noteHome, std::move(changed));
    return adapter;
}

void ColorItemMapAdapterPrivate::destroy(ColorItemMapAdapter* adapter)
{
    delete adapter;
}

QColor ColorItemMapAdapterPrivate::passbandColor() const
{
    return demodulationColor(demodulationText());
}

QString ColorItemMapAdapterPrivate::demodulationText() const
{
    const ValueSelection* const items = demodulation.selection();
    return items ? items->GetCurrentText() : QString();
}
