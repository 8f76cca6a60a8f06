#include "base/errorhandler.h"

#include <QCoreApplication>
#include <QLoggingCategory>
#include <QMutex>
#include <QMutexLocker>
#include <QThread>
#include <atomic>
#include <functional>
#include <utility>

#include "base/basehost.h"

namespace {

Q_LOGGING_CATEGORY(errorLog, "rx.error", QtInfoMsg)

const unsigned defaultTraceMask = 0x20;  // the device control plug-ins

}  // namespace

class ErrorHandlerPrivate
{
public:
    // Never destroyed: plug-ins that are never unloaded may report until the very end of the process.
    static ErrorHandler* Create() { return new ErrorHandler; }
    static ErrorHandlerPrivate& Get() { return *ErrorHandler::Instance()->d; }

    void Tell(const QString& message)
    {
        std::function<void(const QString&)> listener;
        {
            const QMutexLocker lock(&m_Mutex);
            listener = m_Listener;
        }
        if (listener)
            listener(message);
    }

    void SetListener(std::function<void(const QString&)> listener)
    {
        const QMutexLocker lock(&m_Mutex);
        m_Listener.swap(listener);
    }

    std::atomic<unsigned> m_TraceMask{defaultTraceMask};

private:
    QMutex m_Mutex;  // guards the listener
    std::function<void(const QString&)> m_Listener;
};

ErrorHandler::ErrorHandler() : d(new ErrorHandlerPrivate) {}

ErrorHandler::~ErrorHandler()
{
    delete d;
}

ErrorHandler* ErrorHandler::Instance()
{
    static ErrorHandler* const instance = ErrorHandlerPrivate::Create();
    return instance;
}

unsigned ErrorHandler::GetTraceMask() const
{
    return d->m_TraceMask.load(std::memory_order_relaxed);
}

void ErrorHandler::ReportError(const QString& message)
{
    qCWarning(errorLog).noquote() << message;
    QCoreApplication* const application = QCoreApplication::instance();
    if (!application || application->thread() == QThread::currentThread()) {
        d->Tell(message);
        return;
    }
    QMetaObject::invokeMethod(
        application, [this, message] { d->Tell(message); }, Qt::QueuedConnection);
}

void BaseHost::SetTraceMask(unsigned mask)
{
    ErrorHandlerPrivate::Get().m_TraceMask.store(mask, std::memory_order_relaxed);
}

void BaseHost::SetErrorListener(std::function<void(const QString&)> listener)
{
    ErrorHandlerPrivate::Get().SetListener(std::move(listener));
}
