#ifndef HOST_ERRORHANDLER_H
#define HOST_ERRORHANDLER_H

#include <QtCore/QString>

#include "base/base_global.h"

class ErrorHandlerPrivate;

// Collects what operators and maintainers must hear of.
class BASE_EXPORT ErrorHandler
{
public:
    static ErrorHandler* Instance();

    // Which classes of traces are written, a bit each; 0x20 are the device control plug-ins.
    unsigned GetTraceMask() const;

    // Tells an error: into the log, and to the operator without stopping him.
    void ReportError(const QString& message);

private:
    Q_DISABLE_COPY(ErrorHandler)
    friend class ErrorHandlerPrivate;
    ErrorHandler();
    ~ErrorHandler();
    ErrorHandlerPrivate* d;
};

// Writes one trace line: message, source path without extension, line. Callers ask the mask first.
BASE_EXPORT void _Q_Trace(const QString& message, const QString& source, unsigned short line);

#endif
