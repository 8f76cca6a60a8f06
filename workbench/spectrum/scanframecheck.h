#pragma once

#include <QElapsedTimer>
#include <QString>

#include "link/streammessages.h"
#include "spectrum/scanframe.h"

// Lets frames of the stream through that can be drawn, and says of the others what is wrong. One for
// each connection: it knows the frames before.
class ScanFrameCheck
{
public:
    // So many frames in a row with older times mean that the driver's clock was set back.
    static constexpr int clockSetBack = 10;

    // True with `frame`; false with `problem`, for the operator. Levels that are no numbers stay as
    // empty bins and are counted.
    bool take(const Link::ScanData& data, ScanFrame* frame, QString* problem);

    quint64 emptied() const { return m_emptied; }  // levels that were no numbers

private:
    bool isBack(const Link::ScanData& data, QString* problem);

    bool m_any = false;
    quint64 m_sequence = 0;
    qint64 m_time = 0;
    int m_back = 0;
    quint64 m_emptied = 0;
};
