#include "base/rotatinglog.h"

#include <QDir>
#include <QFileInfo>
#include <QMutexLocker>

namespace {

const QIODevice::OpenMode appendAtOnce = QIODevice::WriteOnly | QIODevice::Append | QIODevice::Unbuffered;

QString Numbered(const QString& fileName, int number)
{
    return number == 0 ? fileName : fileName + QLatin1Char('.') + QString::number(number);
}

}  // namespace

bool RotatingLog::Open(const QString& fileName, qint64 maximumBytes, int files, QString* reason)
{
    const QMutexLocker lock(&m_Mutex);
    m_File.close();
    m_File.setFileName(fileName);
    m_MaximumBytes = qMax<qint64>(1, maximumBytes);
    m_Files = qMax(1, files);
    const QString folder = QFileInfo(fileName).absolutePath();
    if (!QDir().mkpath(folder)) {
        if (reason)
            *reason = fileName + QLatin1String(": cannot make the folder ") + folder;
        return false;
    }
    if (!m_File.open(appendAtOnce)) {
        if (reason)
            *reason = fileName + QLatin1String(": cannot be opened for writing: ") + m_File.errorString();
        return false;
    }
    return true;
}

void RotatingLog::Close()
{
    const QMutexLocker lock(&m_Mutex);
    m_File.close();
}

bool RotatingLog::IsOpen() const
{
    const QMutexLocker lock(&m_Mutex);
    return m_File.isOpen();
}

void RotatingLog::Write(const QString& record)
{
    QByteArray line = record.toUtf8();
    line.replace('\r', "\\r").replace('\n', "\\n");
    line.append('\n');
    const QMutexLocker lock(&m_Mutex);
    if (!m_File.isOpen())
        return;
    const qint64 size = m_File.size();
    if (size > 0 && size + line.size() > m_MaximumBytes)
        Rotate();
    m_File.write(line);
}

// Where the files cannot be moved (folder made read-only meanwhile), the log goes on growing in
// place: a file that is too long is better than lost records.
void RotatingLog::Rotate()
{
    const QString name = m_File.fileName();
    m_File.close();
    if (m_Files == 1) {
        QFile::remove(name);
    } else {
        QFile::remove(Numbered(name, m_Files - 1));
        for (int number = m_Files - 2; number >= 0; --number)
            QFile::rename(Numbered(name, number), Numbered(name, number + 1));
    }
    m_File.open(appendAtOnce);
}
