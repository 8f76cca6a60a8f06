#pragma once

#include <QIcon>

// The tool bar's icons, drawn in several sizes, in colour and greyed.
namespace RecorderIcons {

QIcon Record();   // a red disc
QIcon Stop();     // a square
QIcon Warning();  // a yellow triangle with an exclamation mark

}  // namespace RecorderIcons
