#pragma once

#include <QString>

// The workbench's side of the device control library.
namespace DeviceControlHost {

// The file (INI) in which window geometry is kept; empty keeps none.
void SetGeometryFile(const QString& fileName);

}  // namespace DeviceControlHost
