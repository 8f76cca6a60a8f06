#pragma once

#include <QByteArray>
#include <QString>

#include "spectrum/scanpalette.h"

// How an operator looks at a scan, kept between runs under the scan's settings name.
struct ScanSettings
{
    ScanPalette::Kind palette = ScanPalette::Thermal;
    int averaging = 0;    // frames; 0: off
    QByteArray splitter;  // as QSplitter keeps it; empty: as it is made

    // What was kept; unreadable or senseless entries are as at the first start.
    static ScanSettings read(const QString& name);

    // A file that cannot be written is said once in the log; nothing else happens.
    void write(const QString& name) const;

    bool operator==(const ScanSettings& other) const
    {
        return palette == other.palette && averaging == other.averaging && splitter == other.splitter;
    }
};
