#include "frequencyrangevalidator.h"

FrequencyRangeValidator::FrequencyRangeValidator(QObject* parent)
    : QObject(parent), m_frequency(this), m_centerFrequency(this), m_span(this), m_inRange(false)
{}

FrequencyRangeValidator::~FrequencyRangeValidator() {}

bool FrequencyRangeValidator::Connect(const QString& frequencyPath, const QString& centerFrequencyPath,
                                      const QString& spanPath)
{
    m_frequency.Attach(frequencyPath);
    m_centerFrequency.Attach(centerFrequencyPath);
    m_span.Attach(spanPath);
    Evaluate(true);
    return m_frequency.value && m_centerFrequency.value && m_span.value;
}

void FrequencyRangeValidator::Update(Observable* observable, TChangeCode code)
{
    if (code == CC_VALUE) {
        Evaluate(false);
    } else if (code == CC_STATE) {
        // Silent on purpose: who shows the answer keeps the last one until there is a new one.
        const ValueBase* value = dynamic_cast<ValueBase*>(observable);
        if (value && value->GetState() == VS_DELETING)
            m_inRange = false;
    }
}

void FrequencyRangeValidator::Evaluate(bool force)
{
    if (!m_frequency.value || !m_centerFrequency.value || !m_span.value)
        return;
    const double halfSpan = m_span.value->GetCurrentNumber() * 0.5;
    const double low = m_centerFrequency.value->GetValue() - halfSpan;
    const double high = m_centerFrequency.value->GetValue() + halfSpan;
    const double frequency = m_frequency.value->GetValue();

    // Written so that a not-a-number anywhere is out of range.
    const bool inRange = frequency >= low && high >= frequency;
    if (inRange != m_inRange || force) {
        m_inRange = inRange;
        Q_EMIT si_inRangeChanged(inRange);
    }
}
