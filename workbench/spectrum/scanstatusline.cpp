#include "spectrum/scanstatusline.h"

#include <QPainter>

namespace {

constexpr int marginPixels = 3;

}

ScanStatusLine::ScanStatusLine(QWidget* parent) : QWidget(parent)
{
    setObjectName(QStringLiteral("scanStatus"));
    setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
}

void ScanStatusLine::setText(const QString& text)
{
    if (text == m_text)
        return;
    m_text = text;
    const bool cut = fontMetrics().horizontalAdvance(text) > width() - 2 * marginPixels;
    setToolTip(cut ? text : QString());
    update();
}

QSize ScanStatusLine::sizeHint() const
{
    return QSize(200, fontMetrics().height() + 2);
}

QSize ScanStatusLine::minimumSizeHint() const
{
    return QSize(60, fontMetrics().height() + 2);
}

void ScanStatusLine::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.setPen(palette().color(foregroundRole()));
    const QRect place = rect().adjusted(marginPixels, 0, -marginPixels, 0);
    painter.drawText(place, Qt::AlignLeft | Qt::AlignVCenter,
                     fontMetrics().elidedText(m_text, Qt::ElideRight, place.width()));
}
