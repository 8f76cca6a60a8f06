#include "reportgenerator/recording.h"

#include "reportgenerator/recordingxml.h"

namespace REPORTGENERATOR {

class RecordingMetadataDetailPrivate
{
public:
    QString m_RecordData;
    std::optional<double> m_StartFrequency;
    std::optional<double> m_StopFrequency;
};

class RecordingMetadataPrivate
{
public:
    RecordingMetadataDetail m_Detail;
    QDateTime m_StartTime;
    QDateTime m_StopTime;
};

class RecordingPrivate
{
public:
    RecordingFacts Facts() const
    {
        const RecordingMetadataPrivate& metadata = *m_Metadata.d;
        const RecordingMetadataDetailPrivate& detail = *metadata.m_Detail.d;
        RecordingFacts facts;
        facts.startTime = metadata.m_StartTime;
        facts.stopTime = metadata.m_StopTime;
        facts.recordData = detail.m_RecordData;
        facts.startFrequency = detail.m_StartFrequency;
        facts.stopFrequency = detail.m_StopFrequency;
        facts.url = m_Url;
        return facts;
    }

    RecordingMetadata m_Metadata;
    QString m_Url;
};

IRGObject::~IRGObject() {}

RecordingMetadataDetail::RecordingMetadataDetail() : d(new RecordingMetadataDetailPrivate) {}

RecordingMetadataDetail::~RecordingMetadataDetail()
{
    delete d;
}

void RecordingMetadataDetail::SetRecordData(const QString& kind)
{
    d->m_RecordData = kind;
}

void RecordingMetadataDetail::SetStartFrequency(double frequency)
{
    d->m_StartFrequency = frequency;
}

void RecordingMetadataDetail::SetStopFrequency(double frequency)
{
    d->m_StopFrequency = frequency;
}

RecordingMetadata::RecordingMetadata() : d(new RecordingMetadataPrivate) {}

RecordingMetadata::~RecordingMetadata()
{
    delete d;
}

void RecordingMetadata::SetStartTime(const QDateTime& time)
{
    d->m_StartTime = time;
}

void RecordingMetadata::SetStopTime(const QDateTime& time)
{
    d->m_StopTime = time;
}

RecordingMetadataDetail* RecordingMetadata::GetDetail()
{
    return &d->m_Detail;
}

Recording::Recording() : d(new RecordingPrivate) {}

Recording::~Recording()
{
    delete d;
}

RecordingMetadata* Recording::GetMetadata()
{
    return &d->m_Metadata;
}

void Recording::SetURL(const QString& url)
{
    d->m_Url = url;
}

QString Recording::GetXmlString() const
{
    return ToRecordingXml(d->Facts());
}

}  // namespace REPORTGENERATOR
