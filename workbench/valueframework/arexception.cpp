#include "valueframework/arexception.h"

#include <QtCore/QByteArray>

namespace {

// The text, and its UTF-8 form that what() points into.
struct Message : QString
{
    explicit Message(const QString& text) : QString(text), utf8(text.toUtf8()) {}
    QByteArray utf8;
};

}  // namespace

ARException::ARException(const QString& message) : d(new Message(message)) {}

ARException::ARException(const ARException& other) : std::exception(other), d(new Message(*other.d)) {}

ARException::~ARException() noexcept
{
    delete static_cast<Message*>(d);
}

const char* ARException::what() const noexcept
{
    return static_cast<const Message*>(d)->utf8.constData();
}

QString ARException::GetMessage() const
{
    return *d;
}
