#pragma once

#include <QElapsedTimer>
#include <QTimer>
#include <functional>

#include "valuecontrols/valuebinding.h"
#include "valueframework/valueselection.h"

// One bound value of a scan: followed like every control's, read as a number, written for the
// operator. What it says about a write stands beside `noteHome`.
class ScanValue : public ValueBinding
{
public:
    enum Kind
    {
        Number,    // a float or an integer
        Selection  // one of several items, its number counts
    };

    // `changed` is called for every change of content or state, at a bearable rate.
    ScanValue(QWidget* noteHome, Kind kind, std::function<void()> changed);
    ~ScanValue() override;

    // NaN while there is no value, or where it is not finite.
    double number() const;
    bool has() const;
    bool isStale() const;

    // The selection at hand; null while there is none.
    const ValueSelection* selection() const;

    // At most 30 times a second, the last one always. False, with a note, when it cannot be written.
    bool writeMerged(double number);
    void writeNow(double number);  // ends the merging with this one
    void flush();                  // writes what waits
    void forget();                 // drops what waits

    // What stands, or what waits to be written.
    double target() const;

protected:
    bool Accepts(ValueType type) const override;
    void ShowContent() override { m_changed(); }

private:
    bool checkWritable();
    void writeWaiting();

    Kind m_kind;
    std::function<void()> m_changed;
    QTimer m_timer;
    QElapsedTimer m_since;  // the last write
    double m_waiting = 0;
};
