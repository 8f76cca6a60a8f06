#ifndef DDCGUI_DDCTRACE_H
#define DDCGUI_DDCTRACE_H

#include <QString>

// Diagnostics of this module for maintainers. Nothing is written unless the host's trace mask has
// the bit of the device control plug-ins.
namespace DdcTrace {

// `unit` is a source file of this module without extension, `line` the line that maintainers know
// the message by; both stand in the trace as they are given here.
void Write(const QString& message, const char* unit, unsigned short line);

}  // namespace DdcTrace

#endif
