#pragma once

#include <QByteArray>
#include <QString>
#include <QVector>
#include <cstdint>
#include <variant>

#include "link/streammessages.h"

// What driver and workbench say to each other. Every message is one CBOR map with integer keys in
// a frame of its own (framing.h); key 0 is the message type, unknown keys are ignored.
namespace Link {

constexpr int protocolVersion = 1;
constexpr quint16 defaultPort = 4600;

// Content of a value on the wire. A selection travels as the key of its item.
using Content = std::variant<std::monostate, bool, qint64, double, QString, QByteArray>;

enum class ValueKind : quint8
{
    Bool = 0,
    Float = 1,
    Integer = 2,
    Text = 3,
    Selection = 4,
    Bearing = 5
};

// Mirrors TValueState as far as a driver tells it.
enum class ValueStatus : quint8
{
    Usable = 0,
    NotAvailable = 2
};

struct Item
{
    qint64 key = 0;
    QString text;
    double number = 0;  // 0: the item stands for no quantity
};

// One value as the driver describes it.
struct Description
{
    quint32 id = 0;  // valid within one epoch
    QString path;
    ValueKind kind = ValueKind::Text;
    QString unit;
    bool hasLimits = false;
    double minimum = 0;
    double maximum = 0;
    double step = 0;
    int precision = -1;
    bool writable = true;
    bool event = false;  // never merged on the way
    QVector<Item> items;
};

struct Update
{
    quint32 id = 0;
    qint64 time = 0;  // microseconds since 1970, UTC
    ValueStatus status = ValueStatus::Usable;
    Content content;  // monostate: only the status changed
};

enum class AnswerKind : quint8
{
    Accepted = 0,
    Clamped = 1,
    Refused = 2
};

// --- messages, client to driver ---------------------------------------------------------------

struct Hello
{
    int version = protocolVersion;
    QString client;      // host name, for people
    QByteArray session;  // 16 random bytes, the same over all reconnections of one process
};

struct Hook
{
    quint32 number = 0;  // chosen by the client, comes back with the snapshot
    QString path;        // source path; everything at and below it
};

struct Release
{
    quint32 number = 0;
};

struct Write
{
    quint32 number = 0;  // comes back with the answer
    quint32 id = 0;
    Content content;
};

struct Resync
{
};

// --- messages, driver to client ---------------------------------------------------------------

struct Welcome
{
    int version = protocolVersion;
    quint64 epoch = 0;       // changes whenever the driver starts
    QString driver;          // name and version, for people
    quint16 streamPort = 0;  // 0: no streams
};

// Part of the answer to a hook; `last` ends it.
struct Snapshot
{
    quint32 hook = 0;
    bool last = false;
    QVector<Description> descriptions;
    QVector<Update> contents;  // of the same values
};

// Descriptions that changed later, and values that came or went.
struct Describe
{
    QVector<Description> descriptions;
    QVector<quint32> removed;
};

struct Batch
{
    quint64 epoch = 0;
    quint64 sequence = 0;  // counts from 1 within a connection, without gaps
    quint64 skipped = 0;   // changes merged into newer ones since the last batch
    quint64 lost = 0;      // events dropped since the last batch
    QVector<Update> updates;
};

struct Answer
{
    quint32 number = 0;
    AnswerKind kind = AnswerKind::Accepted;
    QString reason;   // for the operator; empty when accepted
    Content content;  // what stands now
};

// --- both ways ---------------------------------------------------------------------------------

struct Heartbeat
{
    qint64 time = 0;
};

struct Bye
{
    QString reason;
};

using Message = std::variant<Hello, Hook, Release, Write, Resync, Welcome, Snapshot, Describe, Batch, Answer,
                             Heartbeat, Bye, StreamRequest, StreamStart, ScanData, StreamReady>;

}  // namespace Link
