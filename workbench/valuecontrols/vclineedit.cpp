#include "valuecontrols/vclineedit.h"

#include <QFocusEvent>
#include <QKeyEvent>
#include <QMenu>
#include <QStyleOptionFrame>
#include <QStylePainter>
#include <cmath>

#include "valuecontrols/controllook.h"
#include "valuecontrols/digitcursor.h"
#include "valuecontrols/numbertext.h"
#include "valuecontrols/valuebinding.h"

namespace {

const int textMargin = 2;  // that QLineEdit itself keeps on both sides of its text, in pixels

}  // namespace

class VCLineEditPrivate : public ValueBinding
{
public:
    VCLineEditPrivate(VCLineEdit* edit, VCLineEdit::LineEditType type)
        : ValueBinding(edit), m_Edit(edit), m_Type(type)
    {
        connect(edit, &QLineEdit::textEdited, this, [this]() { SetEditing(!m_Edit->isReadOnly()); });
        connect(edit, &QLineEdit::selectionChanged, this, [this]() { m_HasClickedPlace = false; });
    }

    bool Attach(const QString& path)
    {
        m_Editing = false;
        m_HasClickedPlace = false;
        const bool bound = Bind(path);
        if (IsNumber())
            m_Edit->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
        return bound;
    }

    bool IsNumber() const { return m_Type == VCLineEdit::NUMBER && IsNumeric(); }
    bool IsEditing() const { return m_Editing; }

    bool Apply()
    {
        if (Path().isEmpty() || !m_Editing)
            return false;
        if (BlocksInput()) {
            Tell(ControlNote::Refused, Text("Not written: the value is not available at present."));
            return true;
        }
        const QString entry = m_Edit->text();
        m_Editing = false;
        if (!WriteEntry(entry)) {
            m_Editing = true;
            return true;
        }
        ShowContent();
        m_Edit->selectAll();
        m_Edit->update();
        return true;
    }

    void Revert()
    {
        if (!m_Editing)
            return;
        SetEditing(false);
        DropNote();
        ShowContent();
        if (m_Edit->hasFocus())
            m_Edit->selectAll();
    }

    // One step of the digit under the cursor; an entry is stepped as it stands, else the value itself.
    bool Step(int direction)
    {
        if (!IsNumber() || m_Edit->isReadOnly() || BlocksInput())
            return false;
        if (m_Editing) {
            StepEntry(direction);
            return true;
        }
        CatchUp();
        const double value = ValueHost::Content(*BoundValue()).toDouble();
        const int precision = ValueHost::Description(*BoundValue()).precision;
        const DigitCursor digits = Digits();
        const bool whole = m_Edit->selectedText() == m_Edit->text() && !m_HasClickedPlace;
        const double told = ValueHost::Description(*BoundValue()).step;
        const int place = m_HasClickedPlace ? m_ClickedPlace : digits.PlaceAt(m_Edit->cursorPosition());
        const double step = direction * (whole && told > 0 ? told : std::pow(10.0, place));
        const int decimals = qMax(NumberText::Decimals(value, precision),
                                  whole && told > 0 ? NumberText::Decimals(told, -1) : -place);
        const double next = Stepped(value, step, decimals);
        if (next != value)
            Write(next);
        ShowContent();
        m_Edit->setCursorPosition(Digits().PositionOf(place));
        return true;
    }

    void FocusCame(Qt::FocusReason reason)
    {
        m_FocusByMouse = reason == Qt::MouseFocusReason;
        if (!Path().isEmpty() && !m_FocusByMouse && reason != Qt::PopupFocusReason)
            m_Edit->selectAll();
    }

    void FocusLeft(Qt::FocusReason reason)
    {
        if (reason == Qt::PopupFocusReason)
            return;
        m_HasClickedPlace = false;
        Revert();
        m_Edit->deselect();
    }

    // The click that brought the focus selects all, and yet points at the digit to step.
    void MouseReleased()
    {
        if (!m_FocusByMouse || Path().isEmpty() || m_Edit->hasSelectedText())
            return;
        m_FocusByMouse = false;
        const int place = Digits().PlaceAt(m_Edit->cursorPosition());
        m_Edit->selectAll();
        m_ClickedPlace = place;
        m_HasClickedPlace = IsNumber();
    }

    int TextRoom() const
    {
        QStyleOptionFrame option;
        m_Edit->initStyleOption(&option);
        const QRect contents = m_Edit->style()->subElementRect(QStyle::SE_LineEditContents, &option, m_Edit);
        const QMargins margins = m_Edit->textMargins();
        return contents.width() - margins.left() - margins.right() - 2 * textMargin;
    }

    bool NeedsWholeText() const override
    {
        return m_Edit->fontMetrics().horizontalAdvance(m_Edit->text()) > TextRoom();
    }

    void PaintElided()
    {
        QStylePainter painter(m_Edit);
        QStyleOptionFrame option;
        m_Edit->initStyleOption(&option);
        painter.drawPrimitive(QStyle::PE_PanelLineEdit, option);
        QRect room = m_Edit->style()->subElementRect(QStyle::SE_LineEditContents, &option, m_Edit);
        room = room.marginsRemoved(m_Edit->textMargins()).adjusted(textMargin, 0, -textMargin, 0);
        painter.setPen(option.palette.color(QPalette::Text));
        painter.drawText(room, int(m_Edit->alignment() | Qt::AlignVCenter),
                         m_Edit->fontMetrics().elidedText(m_Edit->text(), Qt::ElideRight, room.width()));
    }

    void PaintMarks()
    {
        QPainter painter(m_Edit);
        if (m_Editing)
            ControlLook::PaintEdited(painter, m_Edit->rect(), m_Edit->palette());
        else if (m_Edit->hasFocus() && IsNumber() && !m_Edit->hasSelectedText() && !m_Edit->isReadOnly())
            UnderlineDigit(painter);
        PaintState(painter);
    }

protected:
    bool Accepts(ValueType) const override { return true; }
    bool BlocksEvents() const override { return false; }  // read-only instead: the text can be copied
    bool HasEntry() const override { return m_Editing; }
    QString WholeText() const override { return m_Edit->text(); }

    void ShowContent() override
    {
        if (m_Editing || Path().isEmpty())
            return;
        if (BoundValue()) {
            m_WasBound = true;
            Show(IsNumber() ? DisplayText(*BoundValue(), false) : BoundValue()->GetText());
        } else if (m_WasBound) {
            Show(QStringLiteral("---"));
        }
    }

    void InputBlockChanged() override
    {
        if (BlocksInput()) {
            m_ReadOnlyBefore = m_Edit->isReadOnly();
            m_Edit->setReadOnly(true);
        } else {
            m_Edit->setReadOnly(m_ReadOnlyBefore);
        }
    }

private:
    DigitCursor Digits() const
    {
        return DigitCursor(m_Edit->text(), ValueHost::Description(*BoundValue()).unit);
    }

    // Keeps selection and cursor where the operator has them, counted from the right as digits are.
    void Show(const QString& text)
    {
        if (m_Edit->text() == text)
            return;
        const bool all = m_Edit->hasSelectedText() && m_Edit->selectedText() == m_Edit->text();
        const bool clicked = m_HasClickedPlace;
        const int fromEnd = int(m_Edit->text().size()) - m_Edit->cursorPosition();
        m_Edit->setText(text);
        if (!m_Edit->hasFocus()) {
            m_Edit->setCursorPosition(0);
        } else if (all) {
            m_Edit->selectAll();
            m_HasClickedPlace = clicked;
        } else {
            m_Edit->setCursorPosition(qMax(0, int(text.size()) - fromEnd));
        }
    }

    void StepEntry(int direction)
    {
        const ValueDescription description = ValueHost::Description(*BoundValue());
        const NumberText::Reading reading = NumberText::Read(m_Edit->text(), description.unit);
        if (!reading.ok) {
            Tell(ControlNote::Refused, reading.problem);
            return;
        }
        const int place = Digits().PlaceAt(m_Edit->cursorPosition()) + reading.power;
        const int decimals = qMax(NumberText::Decimals(reading.value, description.precision), -place);
        const double next = Stepped(reading.value, direction * std::pow(10.0, place), decimals);
        m_Edit->setText(NumberText::Show(next, description.precision, description.unit));
        m_Edit->setCursorPosition(Digits().PositionOf(place));
    }

    void SetEditing(bool editing)
    {
        if (editing && Path().isEmpty())
            return;
        m_HasClickedPlace = false;
        if (m_Editing != editing) {
            m_Editing = editing;
            m_Edit->update();
        }
    }

    void UnderlineDigit(QPainter& painter)
    {
        const DigitCursor digits = Digits();
        const int index = digits.DigitAt(m_Edit->cursorPosition());
        if (index < 0)
            return;
        const QFontMetrics metrics = m_Edit->fontMetrics();
        const QString text = m_Edit->text();
        const int cursor = m_Edit->cursorPosition();
        const QRect caret = m_Edit->cursorRect();
        const int between = index >= cursor ? metrics.horizontalAdvance(text.mid(cursor, index - cursor))
                                            : -metrics.horizontalAdvance(text.mid(index, cursor - index));
        const int x = caret.center().x() + between;
        painter.fillRect(QRect(x, caret.bottom() - 1, metrics.horizontalAdvance(text.at(index)), 2),
                         m_Edit->palette().color(QPalette::Highlight));
    }

    VCLineEdit* m_Edit;
    VCLineEdit::LineEditType m_Type;
    bool m_Editing = false;
    bool m_WasBound = false;
    bool m_ReadOnlyBefore = false;
    bool m_FocusByMouse = false;
    bool m_HasClickedPlace = false;
    int m_ClickedPlace = 0;  // power of ten of the digit that the focusing click met
};

VCLineEdit::VCLineEdit(QWidget* parent, const char* name, LineEditType type)
    : QLineEdit(parent), d(new VCLineEditPrivate(this, type))
{
    if (name) {
        setObjectName(QString::fromUtf8(name));
        setAccessibleName(QString::fromUtf8(name));
    }
}

VCLineEdit::~VCLineEdit()
{
    delete d;
}

bool VCLineEdit::SetText(const QString& text)
{
    if (text == this->text())
        return false;
    d->Revert();
    setText(text);
    if (!hasFocus())
        setCursorPosition(0);
    return true;
}

bool VCLineEdit::SetText_ValuePath(const QString& path)
{
    return d->Attach(path);
}

bool VCLineEdit::event(QEvent* event)
{
    if (d->HandleEvent(event))
        return true;
    const bool done = QLineEdit::event(event);
    if (event->type() == QEvent::MouseButtonRelease)
        d->MouseReleased();
    return done;
}

void VCLineEdit::keyPressEvent(QKeyEvent* event)
{
    switch (event->key()) {
        case Qt::Key_Return:
        case Qt::Key_Enter:
            if (d->Apply())
                return event->accept();
            break;
        case Qt::Key_Escape:
            if (d->IsEditing()) {
                d->Revert();
                return event->accept();
            }
            break;
        case Qt::Key_Up:
        case Qt::Key_Down:
            if (d->Step(event->key() == Qt::Key_Up ? 1 : -1))
                return event->accept();
            break;
        default:
            break;
    }
    QLineEdit::keyPressEvent(event);
}

void VCLineEdit::focusInEvent(QFocusEvent* event)
{
    QLineEdit::focusInEvent(event);
    d->FocusCame(event->reason());
}

void VCLineEdit::focusOutEvent(QFocusEvent* event)
{
    QLineEdit::focusOutEvent(event);
    d->FocusLeft(event->reason());
}

void VCLineEdit::paintEvent(QPaintEvent* event)
{
    if (!hasFocus() && d->NeedsWholeText())
        d->PaintElided();
    else
        QLineEdit::paintEvent(event);
    d->PaintMarks();
}

void VCLineEdit::contextMenuEvent(QContextMenuEvent* event)
{
    d->ShowContextMenu(event, createStandardContextMenu());
}
