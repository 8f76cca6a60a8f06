#pragma once

#include <functional>

#include "spectrum/scanframe.h"
#include "spectrum/xaxiswidget.h"

class QToolButton;

// What a scan tells its frequency axis and hears of it. An axis without a scan shows nothing.
class XAxisWidgetPrivate
{
public:
    explicit XAxisWidgetPrivate(XAxisWidget* axis);

    static XAxisWidgetPrivate* of(XAxisWidget* axis) { return axis->d; }

    void setRange(const ScanRange& view, double center);  // `center` of the receiver, NaN: not known
    void setMargins(int left, int right);                 // beside the picture above, in pixels
    int buttonWidth() const;                              // 0: there are none
    QRect scale() const;                                  // where the picture is above
    void placeButtons();
    void paint(QPainter& painter);

    std::function<void(double hertz)> pan;
    std::function<void(double frequency, double notches)> zoom;
    std::function<void()> fit;
    std::function<void(int direction)> step;
    std::function<void()> buttonsChanged;

    XAxisWidget* axis;
    ScanRange view;
    double center;
    int left = 0;
    int right = 0;
    bool dragging = false;
    double dragX = 0;
    QToolButton* leftButton;
    QToolButton* rightButton;
};
