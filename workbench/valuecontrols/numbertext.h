#pragma once

#include <QString>

// How numbers are written for an operator and how an operator's entry is read. Everything is in the
// C locale: a station's log and its screen show the same text wherever it stands.
namespace NumberText {

struct Reading
{
    bool ok = false;
    double value = 0;  // in the plain unit: "98.5 MHz" gives 98500000
    int power = 0;     // of ten, of the prefix that was entered: 6 for M
    QString problem;   // for the operator, when not ok: what is wrong and what to enter instead
};

// Reads digits (grouped or not), an exponent, one of the prefixes k, M, G, and the unit or nothing.
// A comma is a decimal point where it cannot be meant otherwise; "98,500" is refused, since it means a
// fraction to some and thousands to others. Always finite when ok.
Reading Read(const QString& entry, const QString& unit);

// "98 500 000 Hz"; `precision` digits after the point, -1 as many as needed (at most 6). Without a
// unit the number alone.
QString Show(double value, int precision, const QString& unit);

// The decimals that Show uses.
int Decimals(double value, int precision);

// Sums in units of the last shown digit, so that steps leave no rounding dust behind.
double AddDecimal(double value, double step, int decimals);

// How an entry is quoted in a message: cut where it is long.
QString Quoted(const QString& entry);

}  // namespace NumberText
