#ifndef DDCGUI_FREQUENCYRANGEVALIDATOR_H
#define DDCGUI_FREQUENCYRANGEVALIDATOR_H

#include <QObject>

#include "valuetree/valueptr.h"

// Tells whether a channel's frequency lies inside the receiver's IF panorama: the centre frequency
// plus and minus half the span, both bounds included. All in Hz.
class FrequencyRangeValidator : public QObject, public IObserver
{
    Q_OBJECT
public:
    explicit FrequencyRangeValidator(QObject* parent);
    ~FrequencyRangeValidator() override;

    // Follows three values; connecting again follows others. True when all three are there; then
    // si_inRangeChanged comes once at once, whatever the answer.
    bool Connect(const QString& frequencyPath, const QString& centerFrequencyPath, const QString& spanPath);

    void Update(Observable* observable, TChangeCode code) override;

Q_SIGNALS:
    void si_inRangeChanged(bool inRange);

private:
    Q_DISABLE_COPY(FrequencyRangeValidator)

    void Evaluate(bool force);

    ValueObservingPtr<FloatValue> m_frequency;        // of the channel
    ValueObservingPtr<FloatValue> m_centerFrequency;  // of the receiver
    ValueObservingPtr<ValueSelection> m_span;         // its current number is the width
    bool m_inRange;
};

#endif
