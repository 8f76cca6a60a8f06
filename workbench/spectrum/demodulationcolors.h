#pragma once

#include <QColor>
#include <QString>

// The one table of the passband's colours. Told apart by those who do not tell red from green (after
// Okabe and Ito); the name of the demodulation stands beside the passband all the same.
QColor demodulationColor(const QString& demodulation);
