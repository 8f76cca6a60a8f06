#pragma once

#include <QObject>

class QSocketNotifier;

namespace Receiver {

// Turns SIGTERM and SIGINT into a call on the event loop. One object in a process.
class EndSignals : public QObject
{
    Q_OBJECT
public:
    explicit EndSignals(QObject* parent = nullptr);
    ~EndSignals() override;  // the signals end the process again

signals:
    void asked();

private:
    QSocketNotifier* m_notifier = nullptr;
};

}  // namespace Receiver
