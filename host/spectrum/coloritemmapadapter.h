#ifndef HOST_COLORITEMMAPADAPTER_H
#define HOST_COLORITEMMAPADAPTER_H

#include <QtCore/QString>

#include "spectrum/spectrum_global.h"

class ColorItemMapAdapterPrivate;

// Colours of the things drawn into a scan, chosen by the values that they stand for.
class SPECTRUM_EXPORT ColorItemMapAdapter
{
public:
    // The channel's passband takes the colour of its demodulation. `item` 1 is the passband, the
    // only one there is. True when the tree has a selection at the path.
    bool SetDemodulation_ValuePath(unsigned item, const QString& path);

private:
    Q_DISABLE_COPY(ColorItemMapAdapter)
    friend class ColorItemMapAdapterPrivate;
    ColorItemMapAdapter();
    ~ColorItemMapAdapter();
    ColorItemMapAdapterPrivate* d;
};

#endif
