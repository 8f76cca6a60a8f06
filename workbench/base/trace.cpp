#include <QLoggingCategory>

#include "base/errorhandler.h"

namespace {

// Information, not debug output: the trace mask alone decides what is traced.
Q_LOGGING_CATEGORY(traceLog, "rx.trace", QtInfoMsg)

}  // namespace

void _Q_Trace(const QString& message, const QString& source, unsigned short line)
{
    const QByteArray file = source.toUtf8();
    QMessageLogger(file.constData(), line, nullptr).info(traceLog).noquote().nospace()
        << message << " [" << source << ':' << line << ']';
}
