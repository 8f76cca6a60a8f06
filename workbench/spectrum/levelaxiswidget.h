#pragma once

#include <functional>

#include "spectrum/xaxiswidget.h"

// The level axis left of a spectrum. Dragging its middle moves the range, dragging near an end moves
// that end; a double click fits. The wheel changes nothing here: it would write values.
class LevelAxisWidget : public AxisWidget
{
public:
    explicit LevelAxisWidget(QWidget* parent);

    void setRange(float minimum, float maximum);
    void setLabels(int wanted);

    std::function<void(double minimum, double maximum)> dragged;
    std::function<void()> released;  // also after a drag that was cancelled
    std::function<void()> fitted;

    bool isDragging() const { return m_part != Part::None; }
    void cancelDrag();  // gives the range back

    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;

private:
    enum class Part
    {
        None,
        Top,
        Middle,
        Bottom
    };
    Part partAt(double y) const;

    float m_minimum = -20;
    float m_maximum = 80;
    int m_labels = 0;
    Part m_part = Part::None;
    double m_pressed = 0;  // y
    float m_startMinimum = 0;
    float m_startMaximum = 0;
};
