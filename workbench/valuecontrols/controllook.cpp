#include "valuecontrols/controllook.h"

#include <QFontMetrics>
#include <QPainter>
#include <QPainterPath>
#include <QPixmap>
#include <cmath>

namespace ControlLook {

namespace {

const float washOpacity = 0.53f;

double Luminance(const QColor& color)
{
    const auto linear = [](double part) {
        return part <= 0.03928 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) + 0.0722 * linear(color.blueF());
}

QPixmap OnPlate(const QPixmap& picture)
{
    QPixmap plate(picture.size());
    plate.setDevicePixelRatio(picture.devicePixelRatio());
    plate.fill(Qt::transparent);
    QPainter painter(&plate);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(222, 222, 222));
    painter.drawRoundedRect(QRectF(QPointF(0, 0), picture.deviceIndependentSize()), 2, 2);
    painter.drawPixmap(0, 0, picture);
    return plate;
}

}  // namespace

bool IsDark(const QPalette& palette)
{
    return palette.color(QPalette::Window).lightness() < 128;
}

void PaintWash(QPainter& painter, const QRect& rect, const QPalette& palette)
{
    QColor wash = palette.color(QPalette::Window);
    wash.setAlphaF(washOpacity);
    painter.fillRect(rect, wash);
}

QColor Washed(const QColor& color, const QPalette& palette)
{
    const QColor wash = palette.color(QPalette::Window);
    const auto mix = [](int one, int other) { return int(one * (1 - washOpacity) + other * washOpacity); };
    return QColor(mix(color.red(), wash.red()), mix(color.green(), wash.green()),
                  mix(color.blue(), wash.blue()));
}

QColor PendingColor(const QPalette& palette)
{
    return IsDark(palette) ? QColor(255, 190, 60) : QColor(176, 104, 0);
}

QColor RefusedColor(const QPalette& palette)
{
    return IsDark(palette) ? QColor(255, 128, 118) : QColor(190, 24, 24);
}

void PaintPending(QPainter& painter, const QRect& rect, const QPalette& palette)
{
    painter.setPen(Qt::NoPen);
    painter.setBrush(PendingColor(palette));
    const int dash = 4;
    const int gap = 3;
    for (int x = rect.left() + 2; x < rect.right() - 2; x += dash + gap)
        painter.drawRect(QRect(x, rect.bottom() - 1, qMin(dash, rect.right() - 1 - x), 2));
}

void PaintEdited(QPainter& painter, const QRect& rect, const QPalette& palette)
{
    painter.fillRect(QRect(rect.left(), rect.top() + 1, 3, rect.height() - 2), PendingColor(palette));
}

void PaintTold(QPainter& painter, const QRect& rect, const QPalette& palette, bool refused)
{
    const QColor color = refused ? RefusedColor(palette) : PendingColor(palette);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(color, 1.5, refused ? Qt::SolidLine : Qt::DashLine));
    painter.drawRoundedRect(QRectF(rect).adjusted(0.75, 0.75, -0.75, -0.75), 2, 2);
    QPainterPath corner;
    corner.moveTo(rect.right() - 6, rect.top());
    corner.lineTo(rect.right() + 1, rect.top());
    corner.lineTo(rect.right() + 1, rect.top() + 7);
    corner.closeSubpath();
    painter.fillPath(corner, color);
}

double Contrast(const QColor& one, const QColor& other)
{
    const double a = Luminance(one);
    const double b = Luminance(other);
    return (qMax(a, b) + 0.05) / (qMin(a, b) + 0.05);
}

QColor ReadableOn(const QColor& background)
{
    return Contrast(background, Qt::black) >= Contrast(background, Qt::white) ? QColor(Qt::black)
                                                                              : QColor(Qt::white);
}

QIcon CrispIcon(const QPixmap& picture, const QPalette& palette)
{
    const bool dark = IsDark(palette);
    QIcon icon(dark && !picture.isNull() ? OnPlate(picture) : picture);
    if (picture.isNull() || picture.width() > 64)
        return icon;
    for (int factor = 2; factor <= 4; ++factor) {
        const QPixmap larger =
            picture.scaled(picture.size() * factor, Qt::KeepAspectRatio, Qt::FastTransformation);
        icon.addPixmap(dark ? OnPlate(larger) : larger);
    }
    return icon;
}

QString Elided(const QString& text, const QFontMetrics& metrics, int width)
{
    return metrics.elidedText(text, Qt::ElideRight, width, Qt::TextShowMnemonic);
}

}  // namespace ControlLook
