#include "spectrum/xaxiswidget.h"

#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>
#include <QToolButton>
#include <cmath>
#include <limits>

#include "spectrum/axispainter.h"
#include "spectrum/xaxiswidget_p.h"

namespace {

constexpr double notchDegrees = 120;  // eighths of a degree in a notch of the wheel
constexpr int centreMarkPixels = 5;

}  // namespace

AxisWidget::AxisWidget(QWidget* parent) : QWidget(parent) {}

AxisWidget::~AxisWidget() {}

XAxisWidgetPrivate::XAxisWidgetPrivate(XAxisWidget* widget)
    : axis(widget), center(std::numeric_limits<double>::quiet_NaN())
{
    const auto button = [this](Qt::ArrowType arrow, const QString& name, const QString& text, int direction) {
        auto* const made = new QToolButton(axis);
        made->setObjectName(name);
        made->setArrowType(arrow);
        made->setAutoRaise(true);
        made->setAutoRepeat(true);
        made->setToolTip(text);
        made->setAccessibleName(text);
        QObject::connect(made, &QToolButton::clicked, axis, [this, direction] {
            if (step)
                step(direction);
        });
        return made;
    };
    leftButton = button(Qt::LeftArrow, QStringLiteral("leftButton"),
                        XAxisWidget::tr("To lower frequencies by half of the view"), -1);
    rightButton = button(Qt::RightArrow, QStringLiteral("rightButton"),
                         XAxisWidget::tr("To higher frequencies by half of the view"), 1);
}

void XAxisWidgetPrivate::setRange(const ScanRange& range, double centre)
{
    if (range == view && (centre == center || (std::isnan(centre) && std::isnan(center))))
        return;
    view = range;
    center = centre;
    axis->update();
}

void XAxisWidgetPrivate::setMargins(int leftPixels, int rightPixels)
{
    left = leftPixels;
    right = rightPixels;
    placeButtons();
    axis->update();
}

int XAxisWidgetPrivate::buttonWidth() const
{
    return leftButton->isHidden() ? 0 : leftButton->sizeHint().width();
}

QRect XAxisWidgetPrivate::scale() const
{
    return axis->rect().adjusted(left, 0, -right, 0);
}

void XAxisWidgetPrivate::placeButtons()
{
    const QSize size(buttonWidth(), axis->height());
    leftButton->setGeometry(QRect(QPoint(qMax(0, left - size.width()), 0), size));
    rightButton->setGeometry(QRect(QPoint(axis->width() - right, 0), size));
}

// The receiver's centre is marked by a small triangle on the scale.
void XAxisWidgetPrivate::paint(QPainter& painter)
{
    const QRect place = scale();
    AxisPainter::paintFrequency(painter, place, view, axis->palette(), axis->font());
    if (!view.isValid() || !view.contains(center))
        return;
    const double x = place.left() + (center - view.start) / view.width() * place.width();
    QPainterPath mark;
    mark.moveTo(x, 0);
    mark.lineTo(x - centreMarkPixels, centreMarkPixels * 1.6);
    mark.lineTo(x + centreMarkPixels, centreMarkPixels * 1.6);
    mark.closeSubpath();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.fillPath(mark, axis->palette().color(QPalette::Highlight));
}

XAxisWidget::XAxisWidget(QWidget* parent) : AxisWidget(parent), d(new XAxisWidgetPrivate(this))
{
    setObjectName(QStringLiteral("xAxis"));
    setAccessibleName(tr("Frequency axis"));
    setToolTip(
        tr("Drag moves the view, the wheel zooms, double click shows all. The triangle is the "
           "receiver's centre frequency."));
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    setCursor(Qt::SizeHorCursor);
}

XAxisWidget::~XAxisWidget()
{
    delete d;
}

void XAxisWidget::ApplyLeftRightButtons(bool apply)
{
    d->leftButton->setVisible(apply);
    d->rightButton->setVisible(apply);
    if (d->buttonsChanged)
        d->buttonsChanged();
}

QSize XAxisWidget::sizeHint() const
{
    return QSize(200, AxisPainter::frequencyAxisHeight(font()));
}

void XAxisWidget::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    d->paint(painter);
}

void XAxisWidget::resizeEvent(QResizeEvent*)
{
    d->placeButtons();
}

void XAxisWidget::mousePressEvent(QMouseEvent* event)
{
    d->dragging = event->button() == Qt::LeftButton;
    d->dragX = event->position().x();
    if (!d->dragging)
        event->ignore();
}

// The frequency that was taken hold of stays under the pointer.
void XAxisWidget::mouseMoveEvent(QMouseEvent* event)
{
    if (!d->dragging || !d->view.isValid() || !d->pan)
        return;
    const double x = event->position().x();
    const double shift = (d->dragX - x) / qMax(1, d->scale().width()) * d->view.width();
    d->dragX = x;
    d->pan(shift);
}

void XAxisWidget::mouseReleaseEvent(QMouseEvent*)
{
    d->dragging = false;
}

void XAxisWidget::mouseDoubleClickEvent(QMouseEvent* event)
{
    if (event->button() == Qt::LeftButton && d->fit)
        d->fit();
}

void XAxisWidget::wheelEvent(QWheelEvent* event)
{
    event->accept();
    if (!d->view.isValid() || !d->zoom)
        return;
    const QRect place = d->scale();
    const double share = (event->position().x() - place.left()) / qMax(1, place.width());
    d->zoom(d->view.start + share * d->view.width(), event->angleDelta().y() / notchDegrees);
}
