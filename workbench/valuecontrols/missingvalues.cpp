#include "valuecontrols/missingvalues.h"

#include <QCoreApplication>
#include <QPointer>

#include "valuecontrols/valuebinding.h"

namespace {

const int lookAgainMs = 500;

}  // namespace

MissingValues::MissingValues() : m_Timer(nullptr) {}

MissingValues& MissingValues::Instance()
{
    static MissingValues instance;
    return instance;
}

void MissingValues::Add(ValueBinding* binding)
{
    if (m_Bindings.contains(binding))
        return;
    m_Bindings.append(binding);
    if (m_Timer)
        return;
    m_Timer = new QTimer(QCoreApplication::instance());
    QObject::connect(m_Timer, &QTimer::timeout, m_Timer, []() { Instance().LookAgain(); });
    QObject::connect(m_Timer, &QObject::destroyed, []() { Instance().m_Timer = nullptr; });
    m_Timer->start(lookAgainMs);
}

void MissingValues::Remove(ValueBinding* binding)
{
    m_Bindings.removeOne(binding);
    if (m_Bindings.isEmpty() && m_Timer) {
        m_Timer->disconnect();
        m_Timer->stop();
        m_Timer->deleteLater();
        m_Timer = nullptr;
    }
}

void MissingValues::LookAgain()
{
    // Showing a value may end other controls; those that left are skipped.
    const QList<ValueBinding*> round = m_Bindings;
    for (ValueBinding* binding : round) {
        if (m_Bindings.contains(binding))
            binding->LookAgain();
    }
}
