#include "startup/libraryfile.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLibrary>

#ifdef Q_OS_LINUX
#include <elf.h>

#include <cstring>
#endif

namespace {

#if defined(Q_OS_WIN)
const char librarySuffix[] = ".dll";
#elif defined(Q_OS_MACOS)
const char librarySuffix[] = ".dylib";
#else
const char librarySuffix[] = ".so";
#endif

#ifdef Q_OS_LINUX

// The loader maps a library by its headers without looking at the file's length: a file that was
// cut short would end the process when the missing pages are touched.
bool CheckSegments(QFile& file, const Elf64_Ehdr& header, QString* reason)
{
    quint64 needed = header.e_phoff + quint64(header.e_phnum) * sizeof(Elf64_Phdr);
    if (header.e_phentsize != sizeof(Elf64_Phdr) || header.e_phnum == 0) {
        *reason = QStringLiteral("damaged library: no usable program headers; install the plug-in again");
        return false;
    }
    if (needed <= quint64(file.size()) && file.seek(qint64(header.e_phoff))) {
        for (int i = 0; i < header.e_phnum; ++i) {
            Elf64_Phdr segment;
            if (file.read(reinterpret_cast<char*>(&segment), sizeof segment) != sizeof segment)
                break;
            needed = qMax(needed, quint64(segment.p_offset) + quint64(segment.p_filesz));
        }
    }
    if (needed <= quint64(file.size()))
        return true;
    *reason = QStringLiteral("library cut short: %1 bytes of at least %2; install the plug-in again")
                  .arg(file.size())
                  .arg(needed);
    return false;
}

bool CheckFormat(const QString& path, QString* reason)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        *reason = QStringLiteral("cannot be read: ") + file.errorString();
        return false;
    }
    Elf64_Ehdr header;
    const bool whole = file.read(reinterpret_cast<char*>(&header), sizeof header) == sizeof header;
    if (!whole || std::memcmp(header.e_ident, ELFMAG, SELFMAG) != 0) {
        *reason =
            QStringLiteral("not a library (%1 bytes without a library's header); install the plug-in again")
                .arg(file.size());
        return false;
    }
    if (header.e_ident[EI_CLASS] != ELFCLASS64)
        return true;  // left to the loader, which refuses what is not for this machine
    return CheckSegments(file, header, reason);
}

#else

bool CheckFormat(const QString&, QString*)
{
    return true;
}

#endif

}  // namespace

namespace LibraryFile {

QString Find(const QString& fileName, const QStringList& folders)
{
    if (fileName.isEmpty())
        return QString();
    const QString suffix = QLatin1String(librarySuffix);
    const QString name = fileName.endsWith(suffix) ? fileName : fileName + suffix;
    const QStringList searched =
        QFileInfo(fileName).fileName() == fileName ? folders : QStringList(QStringLiteral("."));
    for (const QString& folder : searched) {
        const QFileInfo candidate(QDir(folder), name);
        if (candidate.isFile())
            return candidate.absoluteFilePath();
    }
    return QString();
}

bool Load(const QString& path, Entries* entries, QString* reason)
{
    if (!CheckFormat(path, reason))
        return false;
    QLibrary library(path);
    // All symbols at once: one that is missing is told now, not by a crash later.
    library.setLoadHints(QLibrary::ResolveAllSymbolsHint | QLibrary::PreventUnloadHint);
    if (!library.load()) {
        *reason = QStringLiteral("cannot be loaded: ") + library.errorString();
        return false;
    }
    entries->create = reinterpret_cast<ARCreateFunction>(library.resolve("ARCreate"));
    entries->destroy = reinterpret_cast<ARDestroyFunction>(library.resolve("ARDestroy"));
    if (!entries->create || !entries->destroy) {
        *reason = QStringLiteral("not a plug-in: it lacks the function %1")
                      .arg(QLatin1String(entries->create ? "ARDestroy" : "ARCreate"));
        return false;
    }
    return true;
}

}  // namespace LibraryFile
