#include "valuecontrols/vccheckbox.h"

#include <QPainter>
#include <QStyleOptionButton>
#include <QStylePainter>

#include "valuecontrols/controllook.h"
#include "valuecontrols/valuebinding.h"

class VCCheckBoxPrivate : public ValueBinding
{
public:
    explicit VCCheckBoxPrivate(VCCheckBox* box) : ValueBinding(box), m_Box(box) {}

    QRect TextRect() const
    {
        QStyleOptionButton option;
        m_Box->initStyleOption(&option);
        return m_Box->style()->subElementRect(QStyle::SE_CheckBoxContents, &option, m_Box);
    }

    QString Elided() const
    {
        return ControlLook::Elided(m_Box->text(), m_Box->fontMetrics(), TextRect().width());
    }

    void Toggle()
    {
        const bool on = !m_Box->isChecked();
        m_Box->setChecked(on);
        Write(on);
        CatchUp();
    }

protected:
    bool Accepts(ValueType type) const override { return type == ValueType::Bool; }
    bool NeedsWholeText() const override { return Elided() != m_Box->text(); }
    QString WholeText() const override { return m_Box->text().remove(QLatin1Char('&')); }

    void ShowContent() override
    {
        if (BoundValue())
            m_Box->setChecked(ValueHost::Content(*BoundValue()).toBool());
    }

private:
    VCCheckBox* m_Box;
};

VCCheckBox::VCCheckBox(QWidget* parent, const char* name, int)
    : QCheckBox(parent), d(new VCCheckBoxPrivate(this))
{
    if (name) {
        setObjectName(QString::fromUtf8(name));
        setText(QString::fromUtf8(name));
    }
}

VCCheckBox::~VCCheckBox()
{
    delete d;
}

void VCCheckBox::SetText(const QString& text)
{
    setText(text);
}

bool VCCheckBox::Set_ValuePath(const QString& path)
{
    return d->Bind(path);
}

// The write comes before clicked(): who hears the click finds the value as the operator set it.
void VCCheckBox::nextCheckState()
{
    if (d->Path().isEmpty())
        QCheckBox::nextCheckState();
    else if (d->CanWrite())
        d->Toggle();
}

bool VCCheckBox::event(QEvent* event)
{
    return d->HandleEvent(event) || QCheckBox::event(event);
}

void VCCheckBox::paintEvent(QPaintEvent*)
{
    QStylePainter painter(this);
    QStyleOptionButton option;
    initStyleOption(&option);
    option.text = d->Elided();
    painter.drawControl(QStyle::CE_CheckBox, option);
    d->PaintState(painter);
}

void VCCheckBox::contextMenuEvent(QContextMenuEvent* event)
{
    d->ShowContextMenu(event, nullptr);
}
