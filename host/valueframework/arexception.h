#ifndef HOST_AREXCEPTION_H
#define HOST_AREXCEPTION_H

#include <QtCore/QString>
#include <exception>

#include "valueframework/valueframework_global.h"

// Thrown by the few operations of the tree that can fail for a reason worth telling.
class VALUEFRAMEWORK_EXPORT ARException : public std::exception
{
public:
    explicit ARException(const QString& message);
    ARException(const ARException& other);
    ~ARException() noexcept;

    const char* what() const noexcept;  // UTF-8
    QString GetMessage() const;

private:
    ARException& operator=(const ARException&);
    QString* d;
};

#endif
