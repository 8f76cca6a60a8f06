#include "spectrum/scanpointer.h"

#include <QApplication>
#include <QMouseEvent>
#include <QWheelEvent>
#include <cmath>
#include <limits>

#include "spectrum/vcscanwidget_p.h"

namespace {

constexpr double notchDegrees = 120;    // eighths of a degree in a notch of the wheel
constexpr double pannedPerNotch = 0.1;  // of the view
constexpr double nothing = std::numeric_limits<double>::quiet_NaN();

Qt::CursorShape shapeFor(ScanHandle part)
{
    switch (part) {
        case ScanHandle::Frequency:
        case ScanHandle::Marker:
            return Qt::SizeHorCursor;
        case ScanHandle::LowerEdge:
        case ScanHandle::UpperEdge:
            return Qt::SplitHCursor;
        case ScanHandle::Threshold:
            return Qt::SplitVCursor;
        default:
            return Qt::CrossCursor;
    }
}

}  // namespace

ScanPointer::ScanPointer(VCScanWidgetPrivate& scan) : m_scan(scan), m_beforeClick(nothing)
{
    scan.spectrum->installEventFilter(this);
    scan.waterfall->installEventFilter(this);
}

bool ScanPointer::isSpectrum(const QWidget* canvas) const
{
    return canvas == m_scan.spectrum;
}

// Of the middle of the pixel.
double ScanPointer::frequencyAt(const QWidget* canvas, double x) const
{
    const ScanRange& view = m_scan.view.range();
    return view.start + (x + 0.5) / qMax(1, canvas->width()) * view.width();
}

ScanHandle ScanPointer::partAt(QWidget* canvas, const QPointF& position) const
{
    return isSpectrum(canvas) ? m_scan.spectrum->handleAt(position) : ScanHandle::None;
}

bool ScanPointer::eventFilter(QObject* watched, QEvent* event)
{
    auto* const canvas = static_cast<QWidget*>(watched);
    switch (event->type()) {
        case QEvent::MouseButtonPress:
            return press(canvas, static_cast<QMouseEvent*>(event));
        case QEvent::MouseMove:
            move(canvas, static_cast<QMouseEvent*>(event));
            return true;
        case QEvent::MouseButtonRelease:
            release(canvas, static_cast<QMouseEvent*>(event));
            return true;
        case QEvent::MouseButtonDblClick:
            doubleClick(static_cast<QMouseEvent*>(event));
            return true;
        case QEvent::Wheel:
            wheel(canvas, static_cast<QWheelEvent*>(event));
            return true;
        case QEvent::Leave:
            leave();
            return false;
        default:
            return false;
    }
}

bool ScanPointer::press(QWidget* canvas, QMouseEvent* event)
{
    if (m_scan.options.keyboard)
        m_scan.widget->setFocus(Qt::MouseFocusReason);
    if (event->button() != Qt::LeftButton || !m_scan.view.range().isValid())
        return event->button() == Qt::LeftButton;  // others go on to the context menu
    m_held = Held::Button;
    m_pressed = event->position();
    m_part = partAt(canvas, m_pressed);
    m_beforeClick = nothing;
    m_startView = m_scan.view.range();
    m_grabbed = frequencyAt(canvas, m_pressed.x());
    m_startFrequency = m_scan.channel.frequency.number();
    m_startThreshold = m_scan.channel.threshold.number();
    m_startKey = m_scan.channel.bandwidthKey();
    if (isSpectrum(canvas))
        m_grabbedLevel =
            m_scan.spectrum->mapping().level(m_pressed.y()) - m_scan.spectrum->scene.channel.thresholdLine;
    m_marker = m_part == ScanHandle::Marker ? m_scan.spectrum->markerAt(m_pressed) : -1;
    if (m_marker >= 0) {
        m_startMarker = m_scan.markers.frequency(m_marker);
        m_scan.markers.select(m_marker);
        m_scan.changed();
    }
    return true;
}

void ScanPointer::move(QWidget* canvas, QMouseEvent* event)
{
    const QPointF position = event->position();
    if (m_held == Held::Nothing || !(event->buttons() & Qt::LeftButton)) {
        m_held = Held::Nothing;
        hover(canvas, position);
        return;
    }
    const QPointF way = position - m_pressed;
    if (m_held == Held::Button && way.manhattanLength() >= QApplication::startDragDistance() / 2.0)
        beginDrag();
    if (m_held == Held::View || m_held == Held::Part)
        drag(canvas, position);
}

void ScanPointer::beginDrag()
{
    m_held = m_part == ScanHandle::None ? Held::View : Held::Part;
}

void ScanPointer::drag(QWidget* canvas, const QPointF& position)
{
    if (m_held == Held::View) {
        const double shift = (m_pressed.x() - position.x()) / qMax(1, canvas->width()) * m_startView.width();
        m_scan.view.show({m_startView.start + shift, m_startView.stop + shift});
        m_scan.changed();
        return;
    }
    dragPart(frequencyAt(canvas, position.x()), position.y());
    m_scan.setCursor(frequencyAt(canvas, position.x()), m_part == ScanHandle::Threshold
                                                            ? m_scan.spectrum->mapping().level(position.y())
                                                            : nothing);
}

void ScanPointer::dragPart(double frequency, double y)
{
    switch (m_part) {
        case ScanHandle::Frequency:
            m_scan.tuneTo(m_startFrequency + frequency - m_grabbed);
            break;
        case ScanHandle::LowerEdge:
        case ScanHandle::UpperEdge: {
            const double half = std::fabs(frequency - m_scan.spectrum->scene.channel.center);
            m_scan.chooseBandwidth(m_scan.channel.bandwidthKeyNear(2 * half));
            break;
        }
        case ScanHandle::Threshold:
            m_scan.dragThreshold(m_scan.spectrum->mapping().level(y) - m_grabbedLevel);
            break;
        case ScanHandle::Marker:
            m_scan.markers.move(m_marker, m_startMarker + frequency - m_grabbed);
            m_scan.changed();
            break;
        default:
            break;
    }
}

void ScanPointer::release(QWidget* canvas, QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton)
        return;
    const Held held = m_held;
    m_held = Held::Nothing;
    if (held == Held::Part) {
        m_scan.channel.frequency.flush();
        m_scan.channel.bandwidth.flush();
        m_scan.channel.threshold.flush();
    } else if (held == Held::Button && (m_part == ScanHandle::None || m_part == ScanHandle::Frequency)) {
        m_beforeClick = m_startFrequency;
        m_scan.channel.frequency.writeNow(m_scan.view.rounded(frequencyAt(canvas, m_pressed.x())));
    }
    hover(canvas, event->position());
}

void ScanPointer::doubleClick(QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton)
        return;
    m_held = Held::Released;
    if (!std::isnan(m_beforeClick))
        m_scan.channel.frequency.writeNow(m_beforeClick);
    m_beforeClick = nothing;
    m_scan.fit();
}

// Shift, or a wheel that goes sideways, moves the view.
void ScanPointer::wheel(QWidget* canvas, QWheelEvent* event)
{
    event->accept();
    if (!m_scan.view.range().isValid() || m_held == Held::View || m_held == Held::Part)
        return;
    const double up = event->angleDelta().y() / notchDegrees;
    const double aside = event->angleDelta().x() / notchDegrees;
    if (event->modifiers() & Qt::ShiftModifier)
        m_scan.panBy(-(up + aside) * pannedPerNotch * m_scan.view.range().width());
    else if (up != 0)
        m_scan.zoomBy(frequencyAt(canvas, event->position().x()), up);
    else
        m_scan.panBy(-aside * pannedPerNotch * m_scan.view.range().width());
    hover(canvas, event->position());
}

void ScanPointer::leave()
{
    if (m_held == Held::View || m_held == Held::Part)
        return;
    m_scan.spectrum->scene.hovered = ScanHandle::None;
    m_scan.clearCursor();
}

void ScanPointer::hover(QWidget* canvas, const QPointF& position)
{
    if (!m_scan.view.range().isValid() || !canvas->rect().contains(position.toPoint()))
        return;
    const ScanHandle part = partAt(canvas, position);
    m_scan.spectrum->scene.hovered = part;
    m_scan.cursorTime = 0;
    const double frequency = frequencyAt(canvas, position.x());
    if (isSpectrum(canvas)) {
        if (canvas->cursor().shape() != shapeFor(part))
            canvas->setCursor(shapeFor(part));
    } else if (const ScanFrame* const row = m_scan.waterfall->rowAt(position)) {
        m_scan.showRow(*row, frequency);
    }
    m_scan.setCursor(frequency, nothing);
}

void ScanPointer::cancel()
{
    if (m_held == Held::View || m_held == Held::Part)
        giveBack();
    if (m_held != Held::Nothing)
        m_held = Held::Released;
}

void ScanPointer::giveBack()
{
    if (m_held == Held::View) {
        m_scan.view.show(m_startView);
    } else if (m_part == ScanHandle::Frequency) {
        m_scan.channel.frequency.writeNow(m_startFrequency);
    } else if (m_part == ScanHandle::LowerEdge || m_part == ScanHandle::UpperEdge) {
        m_scan.channel.bandwidth.writeNow(m_startKey);
    } else if (m_part == ScanHandle::Threshold) {
        m_scan.channel.threshold.writeNow(m_startThreshold);
    } else if (m_part == ScanHandle::Marker) {
        m_scan.markers.move(m_marker, m_startMarker);
    }
    m_scan.changed();
}
