#ifndef HOST_RECORDING_H
#define HOST_RECORDING_H

#include <QtCore/QDateTime>
#include <QtCore/QString>

#include "reportgenerator/reportgenerator_global.h"

// Descriptions of recordings for reports. The XML is documented in docs/recording-xml.md.
namespace REPORTGENERATOR {

class RecordingPrivate;
class RecordingMetadataPrivate;
class RecordingMetadataDetailPrivate;

class REPORTGENERATOR_EXPORT IRGObject
{
public:
    virtual ~IRGObject();
    virtual QString GetXmlString() const = 0;
};

class REPORTGENERATOR_EXPORT RecordingMetadataDetail
{
public:
    void SetRecordData(const QString& kind);   // what was recorded: "PDW", "AUDIO", "IF"
    void SetStartFrequency(double frequency);  // Hz
    void SetStopFrequency(double frequency);   // Hz

private:
    Q_DISABLE_COPY(RecordingMetadataDetail)
    friend class RecordingMetadataPrivate;
    friend class RecordingPrivate;
    RecordingMetadataDetail();
    ~RecordingMetadataDetail();
    RecordingMetadataDetailPrivate* d;
};

class REPORTGENERATOR_EXPORT RecordingMetadata
{
public:
    void SetStartTime(const QDateTime& time);
    void SetStopTime(const QDateTime& time);
    RecordingMetadataDetail* GetDetail();  // owned by this

private:
    Q_DISABLE_COPY(RecordingMetadata)
    friend class RecordingPrivate;
    RecordingMetadata();
    ~RecordingMetadata();
    RecordingMetadataPrivate* d;
};

class REPORTGENERATOR_EXPORT Recording : public IRGObject
{
public:
    Recording();
    ~Recording();

    RecordingMetadata* GetMetadata();  // owned by this
    void SetURL(const QString& url);   // where the recording lies
    QString GetXmlString() const;

private:
    Q_DISABLE_COPY(Recording)
    RecordingPrivate* d;
};

}  // namespace REPORTGENERATOR

#endif
