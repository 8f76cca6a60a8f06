#include "valuecontrols/vclabel.h"

#include <QEvent>
#include <QPainter>
#include <QStyle>
#include <QStyleOptionFrame>

#include "valuecontrols/controllook.h"
#include "valuecontrols/valuebinding.h"

class VCLabelPrivate : public ValueBinding
{
public:
    explicit VCLabelPrivate(VCLabel* label) : ValueBinding(label), m_Label(label) {}

    void SetTranslate(bool translate) { m_Translate = translate; }

    QRect TextRect() const
    {
        const int margin = m_Label->margin();
        return m_Label->contentsRect().adjusted(margin, margin, -margin, -margin);
    }

    bool IsPlain() const
    {
        return m_Label->pixmap(Qt::ReturnByValue).isNull() && !m_Label->wordWrap() &&
               !Qt::mightBeRichText(m_Label->text());
    }

    bool NeedsWholeText() const override
    {
        return IsPlain() && m_Label->fontMetrics().size(0, m_Label->text()).width() > TextRect().width();
    }

    void PaintElided()
    {
        QPainter painter(m_Label);
        m_Label->drawFrame(&painter);
        const QString text =
            m_Label->fontMetrics().elidedText(m_Label->text(), Qt::ElideRight, TextRect().width());
        m_Label->style()->drawItemText(&painter, TextRect(), int(m_Label->alignment()), m_Label->palette(),
                                       m_Label->isEnabled(), text, m_Label->foregroundRole());
    }

protected:
    bool Accepts(ValueType) const override { return true; }
    QString WholeText() const override { return m_Label->text(); }

    void ShowContent() override
    {
        if (BoundValue()) {
            m_WasBound = true;
            Show(DisplayText(*BoundValue(), m_Translate));
        } else if (m_WasBound && !Path().isEmpty()) {
            Show(QStringLiteral("---"));
        }
    }

private:
    void Show(const QString& text)
    {
        if (m_Label->text() != text)
            m_Label->setText(text);
    }

    VCLabel* m_Label;
    bool m_Translate = false;
    bool m_WasBound = false;  // what stands in the label came from a value
};

VCLabel::VCLabel(QWidget* parent, const char* name, unsigned) : QLabel(parent), d(new VCLabelPrivate(this))
{
    setTextFormat(Qt::PlainText);
    if (name) {
        setObjectName(QString::fromUtf8(name));
        setText(QString::fromUtf8(name));
    }
}

VCLabel::~VCLabel()
{
    delete d;
}

void VCLabel::SetText(const QString& text)
{
    if (text != this->text())
        setText(text);
}

bool VCLabel::SetText_ValuePath(const QString& path, bool translate)
{
    d->SetTranslate(translate);
    return d->Bind(path);
}

bool VCLabel::event(QEvent* event)
{
    if (d->HandleEvent(event))
        return true;
    if (event->type() != QEvent::Paint)
        return QLabel::event(event);
    bool done = true;
    if (d->NeedsWholeText())
        d->PaintElided();
    else
        done = QLabel::event(event);
    QPainter painter(this);
    d->PaintState(painter);
    return done;
}

void VCLabel::resizeEvent(QResizeEvent* event)
{
    QLabel::resizeEvent(event);
    update();  // where the text is cut depends on the width
}

void VCLabel::contextMenuEvent(QContextMenuEvent* event)
{
    if (d->Path().isEmpty())
        QLabel::contextMenuEvent(event);
    else
        d->ShowContextMenu(event, nullptr);
}
