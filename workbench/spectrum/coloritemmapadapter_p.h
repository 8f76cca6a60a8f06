#pragma once

#include <QColor>

#include "spectrum/coloritemmapadapter.h"
#include "spectrum/scanvalue.h"

// What an adapter holds, and its making: only a scan makes one.
class ColorItemMapAdapterPrivate
{
public:
    ColorItemMapAdapterPrivate(QWidget* noteHome, std::function<void()> changed)
        : demodulation(noteHome, ScanValue::Selection, std::move(changed))
    {}

    static ColorItemMapAdapter* make(QWidget* noteHome, std::function<void()> changed);
    static void destroy(ColorItemMapAdapter* adapter);
    static ColorItemMapAdapterPrivate* of(ColorItemMapAdapter* adapter) { return adapter->d; }

    QColor passbandColor() const;
    QString demodulationText() const;  // empty: none is known

    ScanValue demodulation;
};
