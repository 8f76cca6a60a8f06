#include "ddctrace.h"

#include "base/errorhandler.h"

namespace {

const unsigned deviceControlTraces = 0x20;
const char* const sourceFolder = "devicecontrol\\receiver\\common\\ddcgui\\";

}  // namespace

void DdcTrace::Write(const QString& message, const char* unit, unsigned short line)
{
    if ((ErrorHandler::Instance()->GetTraceMask() & deviceControlTraces) == 0)
        return;
    _Q_Trace(message, QString::fromLatin1(sourceFolder) + QString::fromLatin1(unit), line);
}
