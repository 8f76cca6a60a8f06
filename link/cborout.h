#pragma once

#include <QByteArray>
#include <QCborStreamWriter>
#include <QString>
#include <type_traits>

#include "link/keys.h"
#include "link/messages.h"

namespace Link {

// Writes one message: a map whose first entry is its type.
class CborOut
{
public:
    explicit CborOut(MessageType type) : m_writer(&m_bytes)
    {
        m_writer.startMap();
        number(Keys::type, qint64(type));
    }

    QCborStreamWriter& writer() { return m_writer; }

    void key(int key) { m_writer.append(key); }
    void number(int key, qint64 value)
    {
        m_writer.append(key);
        m_writer.append(value);
    }
    void number(int key, quint64 value)
    {
        m_writer.append(key);
        m_writer.append(value);
    }
    void number(int key, quint32 value) { number(key, quint64(value)); }
    void real(int key, double value)
    {
        m_writer.append(key);
        m_writer.append(value);
    }
    void flag(int key, bool value)
    {
        m_writer.append(key);
        m_writer.append(value);
    }
    void text(int key, const QString& value)
    {
        m_writer.append(key);
        m_writer.append(QStringView(value));
    }
    void bytes(int key, const QByteArray& value)
    {
        m_writer.append(key);
        m_writer.append(value);
    }
    void content(const Content& content)
    {
        std::visit(
            [this](const auto& what) {
                using What = std::decay_t<decltype(what)>;
                if constexpr (std::is_same_v<What, std::monostate>)
                    m_writer.append(nullptr);
                else if constexpr (std::is_same_v<What, QString>)
                    m_writer.append(QStringView(what));
                else
                    m_writer.append(what);
            },
            content);
    }

    QByteArray finish()
    {
        m_writer.endMap();
        return m_bytes;
    }

private:
    QByteArray m_bytes;
    QCborStreamWriter m_writer;
};

}  // namespace Link
