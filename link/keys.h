#pragma once

// Numbers on the wire. They never change their meaning within one protocol version.
namespace Link {

enum class MessageType : int
{
    Hello = 0,
    Hook = 1,
    Release = 2,
    Write = 3,
    Resync = 4,
    Welcome = 5,
    Snapshot = 6,
    Describe = 7,
    Batch = 8,
    Answer = 9,
    Heartbeat = 10,
    Bye = 11,
    StreamRequest = 12,
    StreamStart = 13,
    ScanData = 14,
    StreamReady = 15
};

namespace Keys {

constexpr int type = 0;

constexpr int helloVersion = 1;
constexpr int helloClient = 2;
constexpr int helloSession = 3;

constexpr int number = 1;  // of Hook, Release, Write, Answer
constexpr int hookPath = 2;
constexpr int writeId = 2;
constexpr int writeContent = 3;

constexpr int welcomeVersion = 1;
constexpr int welcomeEpoch = 2;
constexpr int welcomeDriver = 3;
constexpr int welcomeStreamPort = 4;

constexpr int snapshotHook = 1;
constexpr int snapshotLast = 2;
constexpr int snapshotDescriptions = 3;
constexpr int snapshotContents = 4;

constexpr int describeDescriptions = 1;
constexpr int describeRemoved = 2;

constexpr int batchEpoch = 1;
constexpr int batchSequence = 2;
constexpr int batchSkipped = 3;
constexpr int batchLost = 4;
constexpr int batchUpdates = 5;

constexpr int answerKind = 2;
constexpr int answerReason = 3;
constexpr int answerContent = 4;

constexpr int heartbeatTime = 1;
constexpr int byeReason = 1;

constexpr int streamVersion = 1;  // of StreamRequest, StreamStart
constexpr int requestKind = 2;
constexpr int requestPath = 3;
constexpr int requestPoints = 4;
constexpr int requestFrameRate = 5;
constexpr int requestWindow = 6;
constexpr int requestDetector = 7;
constexpr int requestAveraging = 8;

constexpr int startUnacknowledged = 2;
constexpr int startFrameRate = 3;
constexpr int startWindow = 4;

constexpr int scanSequence = 1;
constexpr int scanTime = 2;
constexpr int scanStart = 3;
constexpr int scanStep = 4;
constexpr int scanResolution = 5;
constexpr int scanSkipped = 6;
constexpr int scanLevels = 7;

constexpr int readySequence = 1;

constexpr int descriptionId = 1;
constexpr int descriptionPath = 2;
constexpr int descriptionKind = 3;
constexpr int descriptionUnit = 4;
constexpr int descriptionLimits = 5;  // [minimum, maximum]
constexpr int descriptionStep = 6;
constexpr int descriptionPrecision = 7;
constexpr int descriptionWritable = 8;
constexpr int descriptionEvent = 9;
constexpr int descriptionItems = 10;  // [[key, text, number] ...]

}  // namespace Keys
}  // namespace Link
