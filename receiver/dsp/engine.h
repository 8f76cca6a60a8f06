#pragma once

#include <QObject>
#include <QString>
#include <QVector>
#include <memory>
#include <optional>

#include "receiver/dsp/panoramatap.h"
#include "receiver/sources/iqsource.h"

namespace Receiver {

// Runs a source in real time on a thread of its own and measures every channel's level: the power
// in the channel's bandwidth around its frequency, from one windowed FFT that all channels share.
// All operations may be called from the thread that made the engine; signals arrive there.
class Engine : public QObject
{
    Q_OBJECT
public:
    struct Options
    {
        bool loop = true;          // begin again at the end; false: end
        double fullScale = 80.0;   // dBµV of a full-scale complex tone
        double reportRate = 20.0;  // level reports per second of signal
        bool realTime = true;      // false: as fast as it goes (tests, measurements)
    };

    // One report: the level of every channel over the report's time.
    struct Levels
    {
        qint64 time = 0;  // microseconds since 1970 of the end of the measured interval
        // Seconds of signal since the source's first sample, same instant. Begins again at 0 with
        // each round of a loop.
        double position = 0;
        QVector<float> levels;      // dBµV, by channel; a channel outside the band: its floor, -200
        qint64 invalidSamples = 0;  // not a number, infinite or absurd; taken as 0; since start()
        qint64 skipped = 0;         // reports that the receiving thread had no time for; since start()
    };

    Engine(std::unique_ptr<IqSource> source, const Options& options, QObject* parent = nullptr);
    ~Engine() override;  // stops

    QString sourceName() const;
    double sampleRate() const;
    double center() const;  // as asked for last
    double centerMinimum() const;
    double centerMaximum() const;

    void start();  // from the source's first sample
    void stop();   // returns when the thread has ended; nothing is emitted after it

    // Clamped to the source's limits. Taken over at the next report's beginning, so that a report
    // never mixes two centres.
    void setCenter(double hertz);
    void setChannelCount(int count);
    // Counts for the whole of the report that is being measured.
    void setChannel(int channel, double frequencyHz, double bandwidthHz);

    // A picture of the spectrum beside the levels; nothing: none, at no cost. While its transform is
    // planned, the panorama before goes on.
    void setPanorama(const std::optional<PanoramaSettings>& settings);

signals:
    void levelsReady(const Receiver::Engine::Levels& levels);
    // The newest frame, and how many the receiving thread had no time for since the one before.
    void panoramaReady(const Receiver::PanoramaPicture& frame, quint64 skipped);
    void ended();                        // a source without loop came to its end
    void failed(const QString& reason);  // the source stopped for an error

private:
    struct Private;
    std::unique_ptr<Private> d;
};

}  // namespace Receiver

Q_DECLARE_METATYPE(Receiver::Engine::Levels)
