#include "valuecontrols/journalfile.h"

#include <QLoggingCategory>

namespace {

Q_LOGGING_CATEGORY(log, "workbench.journal")

const int tryAgainMs = 5000;

// A file that ends in the middle of a line (a process that was killed) gets its line end first.
bool EndsWithinLine(const QString& fileName)
{
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly) || file.size() == 0 || !file.seek(file.size() - 1))
        return false;
    return file.read(1) != "\n";
}

}  // namespace

JournalFile::JournalFile()
{
    m_TryAgain.setInterval(tryAgainMs);
    QObject::connect(&m_TryAgain, &QTimer::timeout, &m_TryAgain, [this]() { WriteWaiting(); });
}

bool JournalFile::Open(const QString& fileName, QString* reason)
{
    m_TryAgain.stop();
    m_File.close();
    m_Trouble = false;
    m_Wanted = !fileName.isEmpty();
    if (!m_Wanted) {
        m_Waiting.clear();
        return true;
    }
    const bool cut = EndsWithinLine(fileName);
    m_File.setFileName(fileName);
    if (!m_File.open(QIODevice::WriteOnly | QIODevice::Append | QIODevice::Unbuffered)) {
        if (reason)
            *reason = QStringLiteral(
                          "Cannot open the operator journal \"%1\": %2. Give a file that can be "
                          "written.")
                          .arg(fileName, m_File.errorString());
        m_Wanted = false;
        return false;
    }
    if (cut)
        m_Waiting.prepend("\n");
    WriteWaiting();
    return true;
}

void JournalFile::Append(const QByteArray& line)
{
    if (!m_Wanted)
        return;
    m_Waiting.enqueue(line + '\n');
    WriteWaiting();
}

void JournalFile::WriteWaiting()
{
    while (!m_Waiting.isEmpty()) {
        const qint64 written = m_File.write(m_Waiting.head());
        if (written == m_Waiting.head().size()) {
            m_Waiting.dequeue();
            continue;
        }
        if (written > 0)
            m_Waiting.head().remove(0, written);
        if (!m_Trouble)
            qCWarning(log, "Cannot write the operator journal \"%s\": %s. %d lines wait in memory.",
                      qPrintable(m_File.fileName()), qPrintable(m_File.errorString()), int(m_Waiting.size()));
        m_Trouble = true;
        m_TryAgain.start();
        return;
    }
    if (m_Trouble)
        qCInfo(log, "The operator journal \"%s\" is written again.", qPrintable(m_File.fileName()));
    m_Trouble = false;
    m_TryAgain.stop();
}
