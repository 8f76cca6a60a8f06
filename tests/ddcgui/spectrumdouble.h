#pragma once

#include <QList>
#include <QPair>
#include <QString>
#include <QStringList>
#include <QWidget>

// What the spectrum library's classes were asked for. A program that links spectrumdouble.cpp has
// these classes in place of the library's: same interface, every call noted, nothing drawn.
namespace SpectrumDouble {

// Of the control's constructor.
struct Construction
{
    QWidget* parent = nullptr;
    QString title;
    bool showTitle = false;
    bool waterfall = false;
    QString settings;
    bool markers = false;
    unsigned axes = 0;
    bool keyboard = false;
};

struct Notes
{
    QList<Construction> constructions;
    QStringList calls;   // "class::operation(argument, argument)", in the order in which they came
    bool answer = true;  // what every binding gives back
};

Notes& notes();
void clear();

}  // namespace SpectrumDouble
