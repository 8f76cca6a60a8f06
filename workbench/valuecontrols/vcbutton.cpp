#include "valuecontrols/vcbutton.h"

#include <QEvent>
#include <QMap>
#include <QStyleOptionToolButton>
#include <QStylePainter>

#include "valuecontrols/controllook.h"
#include "valuecontrols/valuebinding.h"

namespace {

struct Picture
{
    QPixmap given;
    QIcon icon;  // of the picture as given, fit for screen and palette
    bool active = false;
};

}  // namespace

class VCButtonPrivate : public ValueBinding
{
public:
    explicit VCButtonPrivate(VCButton* button) : ValueBinding(button), m_Button(button) {}

    void SetDefault(const QPixmap& picture)
    {
        m_Default = {picture, Icon(picture), false};
        FitIconSize(picture);
        ShowContent();
    }

    void SetSpecial(int key, const QPixmap& picture, bool active)
    {
        m_Special[key] = {picture, Icon(picture), active};
        FitIconSize(picture);
        if (active)
            m_Button->setCheckable(true);
        ShowContent();
    }

    void PaletteChanged()
    {
        m_Default.icon = Icon(m_Default.given);
        for (Picture& picture : m_Special)
            picture.icon = Icon(picture.given);
        ShowContent();
    }

    // The item after the current one; from the last to the first.
    void SelectNext()
    {
        CatchUp();
        if (CanWrite()) {
            const QVector<SelectionItem> items = ValueHost::Description(*BoundValue()).items;
            const int current = Selection()->GetCurrentIndex();
            if (!items.isEmpty())
                Write(items.at((current + 1) % items.size()).GetKey());
        }
        ShowContent();  // the click toggled the look; the value tells what it is
    }

protected:
    bool Accepts(ValueType type) const override { return type == ValueType::Selection; }

    void ShowContent() override
    {
        const ValueSelection* const selection = Selection();
        const auto special =
            selection ? m_Special.constFind(selection->GetCurrentKey()) : m_Special.constEnd();
        const bool found = special != m_Special.constEnd();
        const QIcon icon = found ? special->icon : FallBack();
        if (icon.cacheKey() != m_Button->icon().cacheKey())
            m_Button->setIcon(icon);
        if (m_Button->isCheckable() && !Path().isEmpty())
            m_Button->setChecked(found && special->active);
        if (!HasNote())
            m_Button->setAccessibleDescription(selection ? selection->GetText() : QString());
    }

private:
    ValueSelection* Selection() const { return dynamic_cast<ValueSelection*>(BoundValue()); }

    // Without a value and a picture for all keys, the picture of the switched-off state stands in.
    QIcon FallBack() const
    {
        if (!m_Default.given.isNull())
            return m_Default.icon;
        for (const Picture& picture : m_Special) {
            if (!picture.active && !BoundValue())
                return picture.icon;
        }
        return QIcon();
    }

    QIcon Icon(const QPixmap& picture) const { return ControlLook::CrispIcon(picture, m_Button->palette()); }

    void FitIconSize(const QPixmap& picture)
    {
        const QSize size = picture.deviceIndependentSize().toSize();
        if (size.width() > 0 && size.width() <= 64)
            m_Button->setIconSize(m_HasPicture ? m_Button->iconSize().expandedTo(size) : size);
        m_HasPicture = m_HasPicture || !picture.isNull();
    }

    VCButton* m_Button;
    Picture m_Default;
    QMap<int, Picture> m_Special;
    bool m_HasPicture = false;
};

VCButton::VCButton(QWidget* parent, const QString& text, bool autoRaise, int)
    : QToolButton(parent), d(new VCButtonPrivate(this))
{
    setObjectName(text);
    setText(text);
    setAutoRaise(autoRaise);
    setFocusPolicy(Qt::StrongFocus);
    setToolButtonStyle(Qt::ToolButtonIconOnly);
    connect(this, &QAbstractButton::clicked, d, [this]() {
        if (!d->Path().isEmpty())
            d->SelectNext();
    });
}

VCButton::~VCButton()
{
    delete d;
}

bool VCButton::SetValueSelection_ValuePath(const QString& path)
{
    return d->Bind(path);
}

void VCButton::SetDefaultPicture(const char* const* xpm)
{
    d->SetDefault(QPixmap(xpm));
}

void VCButton::SetSpecialPicture(int key, const char* const* xpm, bool active)
{
    d->SetSpecial(key, QPixmap(xpm), active);
}

void VCButton::SetSpecialPicture(int key, const QPixmap& picture, bool active)
{
    d->SetSpecial(key, picture, active);
}

bool VCButton::event(QEvent* event)
{
    if (d->HandleEvent(event))
        return true;
    if (event->type() == QEvent::PaletteChange)
        d->PaletteChanged();
    return QToolButton::event(event);
}

void VCButton::paintEvent(QPaintEvent* event)
{
    QToolButton::paintEvent(event);
    QPainter painter(this);
    d->PaintState(painter);
}

void VCButton::contextMenuEvent(QContextMenuEvent* event)
{
    d->ShowContextMenu(event, nullptr);
}
