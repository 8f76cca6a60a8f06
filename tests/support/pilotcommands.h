#pragma once

#include <QJsonObject>

// What the pilot can do. Each takes the command's object and gives the answer: {"ok": true, ...}
// or {"ok": false, "error": "..."}.
//
// A widget is chosen by "window" (part of a top-level window's title, object name or class; empty:
// any), "name" (object name), "class" (class name, also a base class), "text" (the whole text,
// without "&") and "index" among those that fit, all optional.
namespace PilotCommands {

QJsonObject run(const QJsonObject& command);

}  // namespace PilotCommands
