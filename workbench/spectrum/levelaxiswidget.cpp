#include "spectrum/levelaxiswidget.h"

#include <QMouseEvent>
#include <QPainter>

#include "spectrum/axispainter.h"

namespace {

constexpr double endShare = 0.25;  // of the height, where dragging moves one end only

}

LevelAxisWidget::LevelAxisWidget(QWidget* parent) : AxisWidget(parent)
{
    setObjectName(QStringLiteral("levelAxis"));
    setAccessibleName(tr("Level axis"));
    setToolTip(
        tr("Drag the middle to move the level range, an end to stretch it. Double click fits it to "
           "the spectrum."));
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Expanding);
    setMouseTracking(true);
}

void LevelAxisWidget::setRange(float minimum, float maximum)
{
    if (minimum == m_minimum && maximum == m_maximum)
        return;
    m_minimum = minimum;
    m_maximum = maximum;
    update();
}

void LevelAxisWidget::setLabels(int wanted)
{
    m_labels = wanted;
    update();
}

QSize LevelAxisWidget::sizeHint() const
{
    return QSize(AxisPainter::levelAxisWidth(font()), 100);
}

void LevelAxisWidget::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    AxisPainter::paintLevel(painter, rect(), m_minimum, m_maximum, palette(), font(), m_labels);
}

LevelAxisWidget::Part LevelAxisWidget::partAt(double y) const
{
    if (y < height() * endShare)
        return Part::Top;
    return y > height() * (1 - endShare) ? Part::Bottom : Part::Middle;
}

void LevelAxisWidget::mousePressEvent(QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton) {
        event->ignore();
        return;
    }
    m_pressed = event->position().y();
    m_part = partAt(m_pressed);
    m_startMinimum = m_minimum;
    m_startMaximum = m_maximum;
}

// The level that was taken hold of stays under the pointer.
void LevelAxisWidget::mouseMoveEvent(QMouseEvent* event)
{
    if (m_part == Part::None) {
        setCursor(partAt(event->position().y()) == Part::Middle ? Qt::SizeVerCursor : Qt::SplitVCursor);
        return;
    }
    const double shift =
        (event->position().y() - m_pressed) / qMax(1, height()) * double(m_startMaximum - m_startMinimum);
    if (shift == 0 || !dragged)
        return;
    dragged(m_part == Part::Top ? double(m_startMinimum) : m_startMinimum + shift,
            m_part == Part::Bottom ? double(m_startMaximum) : m_startMaximum + shift);
}

void LevelAxisWidget::mouseReleaseEvent(QMouseEvent*)
{
    if (m_part == Part::None)
        return;
    m_part = Part::None;
    if (released)
        released();
}

void LevelAxisWidget::cancelDrag()
{
    if (m_part == Part::None)
        return;
    m_part = Part::None;
    if (dragged)
        dragged(double(m_startMinimum), double(m_startMaximum));
    if (released)
        released();
}

void LevelAxisWidget::mouseDoubleClickEvent(QMouseEvent* event)
{
    if (event->button() == Qt::LeftButton && fitted)
        fitted();
}
