#include "valuecontrols/vcbar.h"

#include <QAccessible>
#include <QAccessibleWidget>
#include <QElapsedTimer>
#include <QPainter>
#include <cmath>

#include "valuecontrols/barpicture.h"
#include "valuecontrols/controllook.h"
#include "valuecontrols/levelhistory.h"
#include "valuecontrols/numbertext.h"
#include "valuecontrols/valuebinding.h"

namespace {

const int usualPrecision = 1;  // digits after the point where the value tells none

}  // namespace

class VCBarPrivate : public ValueBinding
{
public:
    VCBarPrivate(VCBar* bar, const BarScale& scale) : ValueBinding(bar), m_Bar(bar), m_Scale(scale)
    {
        m_Clock.start();
        m_Expiry.setSingleShot(true);
        connect(&m_Expiry, &QTimer::timeout, this, [this]() { RequestRefresh(); });
    }

    static const VCBarPrivate* Of(const VCBar& bar) { return bar.d; }
    QString SpokenText() const { return TextOf(true); }

    void SetEnds(double start, double stop)
    {
        m_Start = start;
        m_Stop = stop;
        ShowContent();
    }
    double Start() const { return m_Start; }
    double Stop() const { return m_Stop; }

    void SetShown(bool extremes, bool text)
    {
        m_ShowExtremes = extremes;
        m_ShowText = text;
        ShowContent();
    }
    bool ShowsExtremes() const { return m_ShowExtremes; }
    bool ShowsText() const { return m_ShowText; }

    void Paint(QPainter& painter)
    {
        m_Painted = Picture();
        BarPainting::Paint(painter, m_Bar->rect(), m_Painted, m_Scale, m_Bar->palette());
        PaintState(painter);
    }

    QString WholeText() const override { return TextOf(m_ShowText); }
    bool NeedsWholeText() const override
    {
        return BoundValue() && m_Bar->fontMetrics().horizontalAdvance(TextOf(true)) >
                                   BarPainting::ScaleRect(m_Bar->rect()).width();
    }

protected:
    bool Accepts(ValueType type) const override
    {
        return type == ValueType::Float || type == ValueType::Integer;
    }
    bool BlocksEvents() const override { return false; }
    bool RefreshesWhileHidden() const override { return false; }

    void ContentChanged() override
    {
        if (GetPresence() != Presence::Usable) {
            m_History.Clear();  // what was before a gap says nothing about after
            return;
        }
        const double level = Level();
        if (std::isfinite(level))
            m_History.Add(level, m_Clock.elapsed());
    }

    void ShowContent() override
    {
        if (!m_Bar->isVisible())
            return;
        const BarPicture picture = Picture();
        if (picture != m_Painted)
            m_Bar->update(
                BarPainting::Difference(m_Bar->rect(), m_Painted, picture, m_Bar->devicePixelRatioF()));
    }

private:
    double Level() const { return ValueHost::Content(*BoundValue()).toDouble(); }

    QString TextOf(bool shown) const
    {
        if (!shown || Path().isEmpty())
            return QString();
        if (!BoundValue())
            return QStringLiteral("---");
        const ValueDescription& description = ValueHost::Description(*BoundValue());
        return NumberText::Show(Level(), description.precision >= 0 ? description.precision : usualPrecision,
                                description.unit);
    }

    int PixelOf(double level, int width) const
    {
        const double share = m_Stop == m_Start ? 0 : (level - m_Start) / (m_Stop - m_Start);
        return int(std::lround(qBound(0.0, share, 1.0) * width));
    }

    BarPicture Picture()
    {
        BarPicture picture;
        picture.usable = IsShownUsable();
        picture.text = TextOf(m_ShowText);
        const bool known = BoundValue() && std::isfinite(Level());
        picture.missing = !known;
        if (!known)
            return picture;
        const int width =
            int(std::lround(BarPainting::ScaleRect(m_Bar->rect()).width() * m_Bar->devicePixelRatioF()));
        const double level = Level();
        picture.level = PixelOf(level, width);
        if (level > qMax(m_Start, m_Stop))
            picture.beyond = BarPicture::Above;
        else if (level < qMin(m_Start, m_Stop))
            picture.beyond = BarPicture::Below;
        double lowest = level;
        double highest = level;
        const qint64 now = m_Clock.elapsed();
        // A level that stands still has no extremes worth a mark.
        if (m_ShowExtremes && picture.usable && m_History.Extremes(now, &lowest, &highest) &&
            lowest != highest) {
            picture.lowest = PixelOf(lowest, width);
            picture.highest = PixelOf(highest, width);
            if (m_Bar->isVisible())
                m_Expiry.start(int(m_History.NextChangeMs(now)) + 100);
        }
        return picture;
    }

    VCBar* m_Bar;
    BarScale m_Scale;
    BarPicture m_Painted;
    LevelHistory m_History;
    QElapsedTimer m_Clock;
    QTimer m_Expiry;  // runs while a mark will move without a new level
    double m_Start = 0;
    double m_Stop = 100;
    bool m_ShowExtremes = false;
    bool m_ShowText = false;
};

// A screen reader meets the bar as a level indicator with its number and unit.
class AccessibleBar : public QAccessibleWidget
{
public:
    AccessibleBar(VCBar* bar, const VCBarPrivate* d)
        : QAccessibleWidget(bar, QAccessible::ProgressBar), m_Private(d)
    {}

    QString text(QAccessible::Text kind) const override
    {
        return kind == QAccessible::Value ? m_Private->SpokenText() : QAccessibleWidget::text(kind);
    }

    static QAccessibleInterface* Make(const QString&, QObject* object)
    {
        auto* const bar = qobject_cast<VCBar*>(object);
        return bar ? new AccessibleBar(bar, VCBarPrivate::Of(*bar)) : nullptr;
    }

private:
    const VCBarPrivate* m_Private;
};

VCBar::VCBar(QWidget* parent, const char* name, unsigned parts, int marks, int)
    : QWidget(parent), d(new VCBarPrivate(this, BarScale{parts, marks}))
{
    setAttribute(Qt::WA_OpaquePaintEvent);
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
    static const bool installed = (QAccessible::installFactory(AccessibleBar::Make), true);
    Q_UNUSED(installed);
    if (name) {
        setObjectName(QString::fromUtf8(name));
        setAccessibleName(QString::fromUtf8(name));
    }
}

VCBar::~VCBar()
{
    delete d;
}

bool VCBar::SetPeak_ValuePath(const QString& path)
{
    return d->Bind(path);
}

void VCBar::SetStartValue(double value)
{
    d->SetEnds(value, d->Stop());
}

void VCBar::SetStopValue(double value)
{
    d->SetEnds(d->Start(), value);
}

void VCBar::SetShowMinMaxInside(bool show)
{
    d->SetShown(show, d->ShowsText());
}

void VCBar::SetShowTextValueInside(bool show)
{
    d->SetShown(d->ShowsExtremes(), show);
}

QSize VCBar::sizeHint() const
{
    return QSize(fontMetrics().horizontalAdvance(QStringLiteral("-100.0 dBµV/m")) * 2,
                 qMax(20, fontMetrics().height() + 4));
}

QSize VCBar::minimumSizeHint() const
{
    return QSize(fontMetrics().horizontalAdvance(QStringLiteral("-100.0 dBµV/m")) + 8,
                 qMax(16, fontMetrics().height() + 2));
}

bool VCBar::event(QEvent* event)
{
    return d->HandleEvent(event) || QWidget::event(event);
}

void VCBar::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    d->Paint(painter);
}

void VCBar::contextMenuEvent(QContextMenuEvent* event)
{
    d->ShowContextMenu(event, nullptr);
}
