#pragma once

#include <QString>

// The workbench's side of the spectrum library.
namespace SpectrumHost {

// The file (INI) in which scans keep how they are looked at: colours, averaging, how the pictures
// share the height. Other programs' parts in it are left alone. Empty, as at the start: keep nothing.
void SetSettingsFile(const QString& fileName);

}  // namespace SpectrumHost
