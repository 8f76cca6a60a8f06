#pragma once

#include <QString>
#include <functional>

// The workbench's side of the base library: what the application sets up and listens to.
namespace BaseHost {

void SetTraceMask(unsigned mask);

// Where log lines go besides stderr: a file that is rotated at `maximumBytes` and kept `files`
// times (name, name.1, ...), the one being written included. An empty name closes it. False with a
// reason, and no log open, when it cannot be opened.
bool OpenLog(const QString& fileName, qint64 maximumBytes, int files, QString* reason);

// Called on the GUI thread for every reported error, after it was logged.
void SetErrorListener(std::function<void(const QString& message)> listener);

}  // namespace BaseHost
