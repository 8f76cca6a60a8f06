#include "guibase/splitter.h"

#include <QKeyEvent>
#include <QPainter>
#include <QStyleOptionFocusRect>

namespace {

const int handlePixels = 9;  // wide enough to be seen and hit
const int keyStepPixels = 16;
const int fineStepPixels = 1;  // with Shift or Ctrl
const int gripDots = 5;
const int gripSpacingPixels = 6;
const int gripDotPixels = 3;

class SplitterHandle : public QSplitterHandle
{
public:
    SplitterHandle(Qt::Orientation orientation, QSplitter* splitter) : QSplitterHandle(orientation, splitter)
    {
        setFocusPolicy(Qt::StrongFocus);
        setObjectName(QStringLiteral("SplitterHandle"));
        setAccessibleName(orientation == Qt::Horizontal ? Splitter::tr("Divider between left and right")
                                                        : Splitter::tr("Divider between top and bottom"));
        setAccessibleDescription(Splitter::tr("Arrow keys move it, with Shift by one pixel"));
        setToolTip(Splitter::tr("Drag, or move with the arrow keys"));
    }

protected:
    void keyPressEvent(QKeyEvent* event) override
    {
        const int direction = DirectionOf(event->key());
        if (direction == 0) {
            QSplitterHandle::keyPressEvent(event);
            return;
        }
        const bool fine = event->modifiers() & (Qt::ShiftModifier | Qt::ControlModifier);
        MoveBy(direction * (fine ? fineStepPixels : keyStepPixels));
        event->accept();
    }

    void focusInEvent(QFocusEvent* event) override
    {
        QSplitterHandle::focusInEvent(event);
        update();
    }

    void focusOutEvent(QFocusEvent* event) override
    {
        QSplitterHandle::focusOutEvent(event);
        update();
    }

    void paintEvent(QPaintEvent*) override
    {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.fillRect(rect(), palette().color(hasFocus() ? QPalette::Midlight : QPalette::Window));
        painter.setPen(Qt::NoPen);
        painter.setBrush(palette().color(hasFocus() ? QPalette::Highlight : QPalette::Dark));
        const QPointF centre = QRectF(rect()).center();
        for (int dot = 0; dot < gripDots; ++dot) {
            const double offset = (dot - (gripDots - 1) / 2.0) * gripSpacingPixels;
            const QPointF place = orientation() == Qt::Horizontal ? QPointF(0, offset) : QPointF(offset, 0);
            painter.drawEllipse(centre + place, gripDotPixels / 2.0, gripDotPixels / 2.0);
        }
        if (hasFocus()) {
            QStyleOptionFocusRect option;
            option.initFrom(this);
            style()->drawPrimitive(QStyle::PE_FrameFocusRect, &option, &painter, this);
        }
    }

private:
    int DirectionOf(int key) const
    {
        const bool horizontal = orientation() == Qt::Horizontal;
        if (key == (horizontal ? Qt::Key_Left : Qt::Key_Up))
            return -1;
        if (key == (horizontal ? Qt::Key_Right : Qt::Key_Down))
            return 1;
        return 0;
    }

    // Positions are counted from the leading edge, which is the right one in right-to-left layouts.
    void MoveBy(int pixels)
    {
        const bool horizontal = orientation() == Qt::Horizontal;
        const bool mirrored = horizontal && splitter()->isRightToLeft();
        const int position = horizontal ? (mirrored ? x() + width() : x()) : y();
        moveSplitter(closestLegalPosition(position + pixels));
    }
};

}  // namespace

Splitter::Splitter(QWidget* parent) : QSplitter(parent)
{
    setHandleWidth(handlePixels);
}

Splitter::Splitter(Qt::Orientation orientation, QWidget* parent) : QSplitter(orientation, parent)
{
    setHandleWidth(handlePixels);
}

Splitter::~Splitter() {}

QSplitterHandle* Splitter::createHandle()
{
    return new SplitterHandle(orientation(), this);
}
