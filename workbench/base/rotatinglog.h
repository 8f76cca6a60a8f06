#pragma once

#include <QFile>
#include <QMutex>
#include <QString>

// An append-only text file that is put aside when it is full: NAME becomes NAME.1, NAME.1 becomes
// NAME.2, and so on. `files` counts all of them, NAME included. Safe from every thread.
class RotatingLog
{
public:
    // Replaces the file written so far. On failure nothing is open and `reason` (may be null) says why.
    bool Open(const QString& fileName, qint64 maximumBytes, int files, QString* reason);
    void Close();
    bool IsOpen() const;

    // One record. Line breaks inside become "\n", so that a record stays a line of the file. A
    // record that does not fit begins a new file; it is written whole even if longer than a file may be.
    void Write(const QString& record);

private:
    void Rotate();

    mutable QMutex m_Mutex;
    QFile m_File;
    qint64 m_MaximumBytes = 0;
    int m_Files = 1;
};
