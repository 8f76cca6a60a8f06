#pragma once

#include <QObject>
#include <QPair>
#include <QString>
#include <QTimer>
#include <QVector>

// Writes values from the command line as an operator would: in the order given, each once its
// value is there, the next when the one before was answered. Says how each fared.
class OperatorWrites : public QObject
{
    Q_OBJECT
public:
    explicit OperatorWrites(const QVector<QPair<QString, QString>>& writes);

    // Says what was never written, as the application ends.
    void finish();

private:
    void step();

    QVector<QPair<QString, QString>> m_waiting;
    bool m_written = false;  // the first of those was written and waits for its answer
    QTimer m_timer;
};
