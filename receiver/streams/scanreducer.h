#pragma once

#include <vector>

#include "link/messages.h"
#include "receiver/dsp/panorama.h"

namespace Receiver {

// Makes of the panorama's frames what one client asked for: the detector, averaged over time, in no
// more points than it wants.
class ScanReducer
{
public:
    explicit ScanReducer(const Link::StreamRequest& request) : m_request(request) {}

    // All but the sequence and the count of skipped frames.
    //
    // Averaging is exponential, of power, over the frames that come here; it begins anew where the
    // bins are others or time goes back. Where there are more bins than points, each point is the
    // highest of a group: a carrier keeps its level, and the resolution bandwidth stays that of a bin.
    Link::ScanData reduce(const PanoramaFrame& frame);

private:
    const std::vector<float>& averaged(const PanoramaFrame& frame, const std::vector<float>& levels);

    Link::StreamRequest m_request;
    std::vector<float> m_powers;  // averaged; of 1 dBµV
    std::vector<float> m_levels;
    double m_start = 0;
    double m_step = 0;
    qint64 m_time = 0;
};

}  // namespace Receiver
