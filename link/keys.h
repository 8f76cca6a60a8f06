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
    Bye = 11
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
