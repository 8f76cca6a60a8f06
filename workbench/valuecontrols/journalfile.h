#pragma once

#include <QFile>
#include <QQueue>
#include <QTimer>

// Appends lines to a file, each flushed on its own. Lines that cannot be written (disk full, file
// gone) are kept and tried again; the trouble is told once, and once when it is over.
class JournalFile
{
public:
    JournalFile();

    // An empty name closes. Lines that wait go to the file opened next.
    bool Open(const QString& fileName, QString* reason);
    void Append(const QByteArray& line);  // without its end
    int CountWaiting() const { return int(m_Waiting.size()); }

private:
    void WriteWaiting();

    QFile m_File;
    bool m_Wanted = false;   // a file was asked for; without one lines are not kept
    bool m_Trouble = false;  // told already
    QQueue<QByteArray> m_Waiting;
    QTimer m_TryAgain;
};
