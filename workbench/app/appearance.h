#pragma once

#include <QString>

class QApplication;

// How the whole application looks: the face that fits the controls' fixed widths, and the colours.
namespace Appearance {

// Installs face and colours; `theme` is "dark", "light" or empty (the desktop's).
// Returns what the operator should know, empty when all is well.
QString apply(QApplication* application, const QString& theme);

}  // namespace Appearance
