#pragma once

#include <QString>
#include <QStringList>

#include "startup/idllinstance.h"

// A plug-in library on disk.
namespace LibraryFile {

// The library's full path: `fileName` with the platform's suffix (or as it stands, when it has it)
// in the first of `folders` that has it; a name with a folder is taken as a path. Empty when there is none.
QString Find(const QString& fileName, const QStringList& folders);

// The two functions of a loaded plug-in library.
struct Entries
{
    ARCreateFunction create = nullptr;
    ARDestroyFunction destroy = nullptr;
};

// Loads a library for the rest of the process and resolves its functions. False with the reason.
bool Load(const QString& path, Entries* entries, QString* reason);

}  // namespace LibraryFile
