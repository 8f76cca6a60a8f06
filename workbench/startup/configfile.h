#pragma once

#include <QByteArray>
#include <QString>

// Reading a configuration file as bytes, and what is refused before it is parsed.
namespace ConfigFile {

// "FILE:LINE:COLUMN: what"
QString Message(const QString& origin, unsigned line, unsigned column, const QString& what);

// False with a message when the file is missing, unreadable or larger than a configuration can be.
bool Read(const QString& fileName, QByteArray* content, QString* error);

// False with a message for key names of so many parts that nesting them would exhaust the stack.
bool CheckNesting(const QByteArray& content, const QString& origin, QString* error);

}  // namespace ConfigFile
