#pragma once

#include <QJsonObject>
#include <QString>

#include "link/messages.h"

// Contents of values as people type and read them on a command line.
namespace ValueText {

// "98500000 Hz", "On", the text of a selection's item; empty when there is no content.
QString text(const Link::Description& description, const Link::Content& content);

// Reads what fits the value's kind: numbers with the unit prefixes k, M, G and with or without the
// unit ("98.5M", "98.5 MHz"), on/off/true/false/yes/no/1/0, the text, number or key of a selection's
// item. False with `error`, which says what would fit.
bool parse(const Link::Description& description, const QString& text, Link::Content* content, QString* error);

// "2026-05-01T12:00:00.123456Z"; empty for 0.
QString time(qint64 microseconds);

QString kindName(Link::ValueKind kind);

// Path, kind, value, unit, state and time; a selection's key beside its text.
QJsonObject json(const Link::Description& description, const Link::Update& update);

// All of the description besides.
QJsonObject infoJson(const Link::Description& description, const Link::Update& update);

// The same for people, a line per fact.
QString infoText(const Link::Description& description, const Link::Update& update);

}  // namespace ValueText
