#include "valuecontrols/vcslider.h"

#include <QElapsedTimer>
#include <QKeyEvent>
#include <QPainter>
#include <QWheelEvent>
#include <cmath>

#include "valuecontrols/numbertext.h"
#include "valuecontrols/valuebinding.h"

namespace {

const int finestPositions = 1000;       // where the value tells no step
const int mostPositions = 10000;        // more than any screen has pixels
const int writeIntervalMs = 34;         // while dragging; at most 30 writes a second
const double rangeWithoutLimits = 100;  // a value without limits is taken as per cent

}  // namespace

class VCSliderPrivate : public ValueBinding
{
public:
    explicit VCSliderPrivate(VCSlider* slider) : ValueBinding(slider), m_Slider(slider)
    {
        m_WriteTimer.setSingleShot(true);
        m_WriteTimer.setTimerType(Qt::PreciseTimer);
        connect(&m_WriteTimer, &QTimer::timeout, this, [this]() { WritePosition(); });
        connect(slider, &QSlider::valueChanged, this, [this]() { Moved(); });
        connect(slider, &QSlider::sliderReleased, this, [this]() {
            FlushWrite();
            ShowContent();
        });
    }

    void FlushWrite()
    {
        if (m_WriteTimer.isActive()) {
            m_WriteTimer.stop();
            WritePosition();
        }
    }

protected:
    bool Accepts(ValueType type) const override
    {
        return type == ValueType::Float || type == ValueType::Integer;
    }

    void ShowContent() override
    {
        if (!BoundValue())
            return;
        m_Showing = true;
        FitRange();
        if (!m_Slider->isSliderDown() && !m_WriteTimer.isActive()) {
            const int position = PositionOf(ValueHost::Content(*BoundValue()).toDouble());
            if (m_Slider->value() != position)
                m_Slider->setValue(position);
        }
        m_Showing = false;
    }

private:
    // At once where the last write is long enough ago, else the newest position a little later.
    void Moved()
    {
        if (m_Showing || Path().isEmpty() || m_WriteTimer.isActive())
            return;
        const qint64 since = m_LastWrite.isValid() ? m_LastWrite.elapsed() : writeIntervalMs;
        if (since >= writeIntervalMs)
            WritePosition();
        else
            m_WriteTimer.start(int(writeIntervalMs - since));
    }

    void WritePosition()
    {
        if (!CanWrite()) {
            ShowContent();
            return;
        }
        const double content = ContentAt(m_Slider->value());
        if (content == ValueHost::Content(*BoundValue()).toDouble())
            return;
        m_LastWrite.start();
        Write(content);
    }

    void FitRange()
    {
        const ValueDescription& description = ValueHost::Description(*BoundValue());
        const bool limited = description.hasLimits && description.maximum > description.minimum;
        m_Minimum = limited ? description.minimum : 0;
        m_Maximum = limited ? description.maximum : rangeWithoutLimits;
        const double range = m_Maximum - m_Minimum;
        double steps = finestPositions;
        const double step =
            description.type == ValueType::Integer ? qMax(1.0, description.step) : description.step;
        if (step > 0 && range / step <= mostPositions)
            steps = std::floor(range / step + 1e-9);
        m_Positions = qMax(1, int(steps));
        if (m_Slider->maximum() == m_Positions && m_Slider->minimum() == 0)
            return;
        m_Slider->setRange(0, m_Positions);
        m_Slider->setSingleStep(qMax(1, m_Positions / 100));
        m_Slider->setPageStep(qMax(1, m_Positions / 10));
    }

    // Both ends are met exactly; between them the number has no more digits than positions tell apart.
    double ContentAt(int position) const
    {
        if (position <= 0 || position >= m_Positions)
            return position <= 0 ? m_Minimum : m_Maximum;
        const double share = double(position) / m_Positions;
        const double content = m_Minimum * (1 - share) + m_Maximum * share;
        if (ValueHost::TypeOf(*BoundValue()) == ValueType::Integer)
            return std::round(content);
        const int digits = int(std::ceil(-std::log10((m_Maximum - m_Minimum) / m_Positions))) + 1;
        return NumberText::AddDecimal(content, 0, qBound(0, digits, 15));
    }

    int PositionOf(double content) const
    {
        const double share = (content - m_Minimum) / (m_Maximum - m_Minimum);
        return int(std::lround(qBound(0.0, share, 1.0) * m_Positions));
    }

    VCSlider* m_Slider;
    double m_Minimum = 0;
    double m_Maximum = rangeWithoutLimits;
    int m_Positions = finestPositions;
    bool m_Showing = false;  // the slider follows the value, not the operator
    QTimer m_WriteTimer;
    QElapsedTimer m_LastWrite;
};

VCSlider::VCSlider(QWidget* parent, const char* name) : QSlider(parent), d(new VCSliderPrivate(this))
{
    setFocusPolicy(Qt::StrongFocus);
    if (name) {
        setObjectName(QString::fromUtf8(name));
        setAccessibleName(QString::fromUtf8(name));
    }
}

VCSlider::~VCSlider()
{
    d->FlushWrite();
    delete d;
}

bool VCSlider::SetNumeric_ValuePath(const QString& path)
{
    d->FlushWrite();
    return d->Bind(path);
}

bool VCSlider::event(QEvent* event)
{
    return d->HandleEvent(event) || QSlider::event(event);
}

void VCSlider::wheelEvent(QWheelEvent* event)
{
    if (hasFocus())
        QSlider::wheelEvent(event);
    else
        event->ignore();
}

void VCSlider::keyPressEvent(QKeyEvent* event)
{
    d->CatchUp();
    QSlider::keyPressEvent(event);
}

void VCSlider::paintEvent(QPaintEvent* event)
{
    QSlider::paintEvent(event);
    QPainter painter(this);
    d->PaintState(painter);
}

void VCSlider::contextMenuEvent(QContextMenuEvent* event)
{
    d->ShowContextMenu(event, nullptr);
}
