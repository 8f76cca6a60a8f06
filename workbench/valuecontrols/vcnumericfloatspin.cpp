#include "valuecontrols/vcnumericfloatspin.h"

#include <QKeyEvent>
#include <QLineEdit>
#include <QMenu>
#include <QPainter>
#include <QStyleOptionSpinBox>
#include <QWheelEvent>
#include <cmath>

#include "valuecontrols/controllook.h"
#include "valuecontrols/numbertext.h"
#include "valuecontrols/valuebinding.h"

class VCNumericFloatSpinPrivate : public ValueBinding
{
public:
    VCNumericFloatSpinPrivate(VCNumericFloatSpin* spin, bool showUnit)
        : ValueBinding(spin), m_Spin(spin), m_ShowUnit(showUnit)
    {}

    void ConnectEdit()
    {
        connect(m_Spin->lineEdit(), &QLineEdit::textEdited, this, [this]() {
            if (!Path().isEmpty() && !m_Spin->isReadOnly()) {
                m_Editing = true;
                m_Spin->update();
            }
        });
    }

    bool Attach(const QString& path)
    {
        m_Editing = false;
        const bool bound = Bind(path);
        m_Spin->updateGeometry();
        return bound;
    }

    bool IsEditing() const { return m_Editing; }

    bool Apply()
    {
        if (!m_Editing)
            return false;
        if (BlocksInput()) {
            Tell(ControlNote::Refused, Text("Not written: the value is not available at present."));
            return true;
        }
        m_Editing = false;
        if (!WriteEntry(m_Spin->text())) {
            m_Editing = true;
            return true;
        }
        ShowContent();
        m_Spin->selectAll();
        m_Spin->update();
        return true;
    }

    void Revert()
    {
        if (!m_Editing)
            return;
        m_Editing = false;
        DropNote();
        ShowContent();
        m_Spin->update();
        if (m_Spin->hasFocus())
            m_Spin->selectAll();
    }

    void Step(int steps)
    {
        if (!CanWrite())
            return;
        CatchUp();
        double value = ValueHost::Content(*BoundValue()).toDouble();
        if (m_Editing) {  // from what stands in the field; an entry that is no number goes back first
            const NumberText::Reading reading =
                NumberText::Read(m_Spin->text(), ValueHost::Description(*BoundValue()).unit);
            if (reading.ok)
                value = reading.value;
            m_Editing = false;
        }
        const double step = StepWidth();
        const int precision = ValueHost::Description(*BoundValue()).precision;
        const int decimals = qMax(NumberText::Decimals(value, precision), NumberText::Decimals(step, -1));
        const double next = Stepped(value, steps * step, decimals);
        if (next != ValueHost::Content(*BoundValue()).toDouble())
            Write(next);
        ShowContent();
        m_Spin->selectAll();
    }

    QAbstractSpinBox::StepEnabled Enabled() const
    {
        if (!CanWrite() || m_Spin->isReadOnly())
            return QAbstractSpinBox::StepNone;
        const ValueDescription& description = ValueHost::Description(*BoundValue());
        const double value = ValueHost::Content(*BoundValue()).toDouble();
        QAbstractSpinBox::StepEnabled enabled;
        if (!description.hasLimits || value < description.maximum)
            enabled |= QAbstractSpinBox::StepUpEnabled;
        if (!description.hasLimits || value > description.minimum)
            enabled |= QAbstractSpinBox::StepDownEnabled;
        return enabled;
    }

    QSize Size() const
    {
        QStringList texts{QStringLiteral("-000")};
        if (BoundValue()) {
            const ValueDescription& description = ValueHost::Description(*BoundValue());
            const QString unit = m_ShowUnit ? description.unit : QString();
            const int decimals = qMax(description.precision, NumberText::Decimals(StepWidth(), -1));
            texts << DisplayText(*BoundValue(), false);
            if (description.hasLimits && std::fabs(description.maximum) < 1e12 &&
                std::fabs(description.minimum) < 1e12)
                texts << NumberText::Show(description.minimum, decimals, unit)
                      << NumberText::Show(description.maximum, decimals, unit);
        }
        int width = 0;
        for (const QString& text : texts)
            width = qMax(width, m_Spin->fontMetrics().horizontalAdvance(text));
        const int height = m_Spin->lineEdit()->sizeHint().height();
        QStyleOptionSpinBox option;
        m_Spin->initStyleOption(&option);
        const QSize inner(width + 6, height);
        return m_Spin->style()->sizeFromContents(QStyle::CT_SpinBox, &option, inner, m_Spin);
    }

    // Where the field is too narrow for number and unit, the unit gives way to the number.
    void FitUnit()
    {
        if (!m_Editing && !Path().isEmpty())
            ShowContent();
    }

    bool NeedsWholeText() const override
    {
        return BoundValue() && m_Spin->text() != DisplayText(*BoundValue(), false) && !m_Editing;
    }

    // The field within is a widget of its own and is greyed by its colours.
    void GreyText()
    {
        if (m_Greyed == !IsShownUsable())
            return;
        m_Greyed = !m_Greyed;
        QPalette palette;
        if (m_Greyed) {
            const QPalette from = m_Spin->palette();
            for (const QPalette::ColorRole role : {QPalette::Text, QPalette::Base})
                palette.setColor(role, ControlLook::Washed(from.color(role), from));
        }
        m_Spin->lineEdit()->setPalette(palette);
    }

protected:
    bool Accepts(ValueType type) const override
    {
        return type == ValueType::Float || type == ValueType::Integer;
    }
    bool BlocksEvents() const override { return false; }
    bool HasEntry() const override { return m_Editing; }
    QString WholeText() const override { return DisplayText(*BoundValue(), false); }

    void ShowContent() override
    {
        GreyText();
        if (m_Editing || Path().isEmpty())
            return;
        QLineEdit* const edit = m_Spin->lineEdit();
        const QString text = FittingText(edit->width());
        if (edit->text() == text)
            return;
        const bool all = edit->hasSelectedText() && edit->selectedText() == edit->text();
        edit->setText(text);
        if (all)
            edit->selectAll();
        else if (!m_Spin->hasFocus())
            edit->setCursorPosition(0);
        m_Spin->update();  // the step arrows depend on the limits
    }

    void InputBlockChanged() override
    {
        if (BlocksInput()) {
            m_ReadOnlyBefore = m_Spin->isReadOnly();
            m_Spin->setReadOnly(true);
        } else {
            m_Spin->setReadOnly(m_ReadOnlyBefore);
        }
    }

private:
    QString FittingText(int width) const
    {
        if (!BoundValue())
            return QStringLiteral("---");
        const QString whole = DisplayText(*BoundValue(), false);
        const ValueDescription& description = ValueHost::Description(*BoundValue());
        const QString bare =
            NumberText::Show(ValueHost::Content(*BoundValue()).toDouble(), description.precision, QString());
        const bool fits = m_Spin->fontMetrics().horizontalAdvance(whole) + 6 <= width;
        return m_ShowUnit && (fits || !m_Spin->isVisible()) ? whole : bare;
    }

    // As told; else one, or a hundredth of a small range.
    double StepWidth() const
    {
        const ValueDescription& description = ValueHost::Description(*BoundValue());
        if (description.step > 0)
            return description.step;
        const double range = description.maximum - description.minimum;
        if (description.type == ValueType::Integer || !description.hasLimits || range >= 20 || range <= 0)
            return 1;
        return std::pow(10.0, std::floor(std::log10(range / 10)));
    }

    VCNumericFloatSpin* m_Spin;
    bool m_ShowUnit;
    bool m_Editing = false;
    bool m_Greyed = false;
    bool m_ReadOnlyBefore = false;
};

VCNumericFloatSpin::VCNumericFloatSpin(QWidget* parent, const char* name, bool showUnit, int)
    : QAbstractSpinBox(parent), d(new VCNumericFloatSpinPrivate(this, showUnit))
{
    d->ConnectEdit();
    setFocusPolicy(Qt::StrongFocus);
    if (name) {
        setObjectName(QString::fromUtf8(name));
        setAccessibleName(QString::fromUtf8(name));
    }
}

VCNumericFloatSpin::~VCNumericFloatSpin()
{
    delete d;
}

void VCNumericFloatSpin::setObjectName(const QString& name)
{
    QAbstractSpinBox::setObjectName(name);
}

bool VCNumericFloatSpin::SetNumeric_ValuePath(const QString& path)
{
    return d->Attach(path);
}

void VCNumericFloatSpin::stepBy(int steps)
{
    d->Step(steps);
}

// Anything may be typed; what it is worth is told when it is applied, beside the control.
QValidator::State VCNumericFloatSpin::validate(QString&, int&) const
{
    return QValidator::Acceptable;
}

void VCNumericFloatSpin::fixup(QString&) const {}

QSize VCNumericFloatSpin::sizeHint() const
{
    ensurePolished();
    return d->Size();
}

QSize VCNumericFloatSpin::minimumSizeHint() const
{
    return sizeHint();
}

QAbstractSpinBox::StepEnabled VCNumericFloatSpin::stepEnabled() const
{
    return d->Enabled();
}

bool VCNumericFloatSpin::event(QEvent* event)
{
    if (d->HandleEvent(event))
        return true;
    const bool done = QAbstractSpinBox::event(event);
    if (event->type() == QEvent::Resize || event->type() == QEvent::FontChange)
        d->FitUnit();
    return done;
}

void VCNumericFloatSpin::keyPressEvent(QKeyEvent* event)
{
    const int key = event->key();
    if ((key == Qt::Key_Return || key == Qt::Key_Enter) && d->Apply())
        return event->accept();
    if (key == Qt::Key_Escape && d->IsEditing()) {
        d->Revert();
        return event->accept();
    }
    QAbstractSpinBox::keyPressEvent(event);
}

void VCNumericFloatSpin::focusOutEvent(QFocusEvent* event)
{
    if (event->reason() != Qt::PopupFocusReason)
        d->Revert();
    QAbstractSpinBox::focusOutEvent(event);
}

void VCNumericFloatSpin::wheelEvent(QWheelEvent* event)
{
    if (hasFocus())
        QAbstractSpinBox::wheelEvent(event);
    else
        event->ignore();
}

void VCNumericFloatSpin::paintEvent(QPaintEvent* event)
{
    QAbstractSpinBox::paintEvent(event);
    QPainter painter(this);
    d->PaintState(painter);
    if (d->IsEditing())
        ControlLook::PaintEdited(painter, rect(), palette());
}

void VCNumericFloatSpin::contextMenuEvent(QContextMenuEvent* event)
{
    d->ShowContextMenu(event, lineEdit()->createStandardContextMenu());
}
