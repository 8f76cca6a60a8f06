#pragma once

#include <QDateTime>
#include <QString>
#include <optional>

// What a recording's description holds, and its XML (docs/recording-xml.md).
struct RecordingFacts
{
    QDateTime startTime;  // invalid: not told
    QDateTime stopTime;
    QString recordData;                    // "PDW", "AUDIO", "IF"; empty: not told
    std::optional<double> startFrequency;  // Hz
    std::optional<double> stopFrequency;   // Hz
    QString url;
};

QString ToRecordingXml(const RecordingFacts& facts);
