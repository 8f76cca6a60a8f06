#pragma once

#include "spectrum/scanframe.h"
#include "spectrum/scanvalue.h"

// The values that say what the two axes of a scan reach over.
class ScanAxes
{
public:
    ScanAxes(QWidget* noteHome, std::function<void()> changed);

    // The panorama: from the start to the stop value; without those, the half width around the
    // centre; without those, the frame's bins. Not valid: nothing is known. `problem` says what is
    // wrong with the values; empty: nothing.
    ScanRange panorama(const ScanFrame* frame, QString* problem) const;

    // Keeps the last good range where the minimum is not below the maximum.
    void readLevels(QString* problem);
    float minimum() const { return m_minimum; }  // dBµV
    float maximum() const { return m_maximum; }

    // For the operator: writes both ends, ordered and rounded, at most 30 times a second.
    void writeLevels(double minimum, double maximum);
    void flushLevels();

    // Bins that share a pixel's time are joined by their highest level.
    bool wantsPeaks() const;

    ScanValue levelStart;
    ScanValue levelStop;
    ScanValue center;
    ScanValue halfWidth;
    ScanValue start;
    ScanValue stop;
    ScanValue mapping;
    bool halfWidthWritable = false;

private:
    float m_minimum = -20;
    float m_maximum = 80;
};
