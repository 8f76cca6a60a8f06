#include "startup/splash.h"

#include <QCoreApplication>
#include <QGuiApplication>
#include <QLinearGradient>
#include <QPainter>
#include <QPainterPath>
#include <QPixmap>
#include <QRandomGenerator>
#include <cmath>

namespace {

const QSize splashSize(480, 260);
const int marginPixels = 28;
const QColor backgroundTop(16, 34, 54);
const QColor backgroundBottom(8, 16, 28);
const QColor traceColour(90, 200, 160);
const QColor textColour(240, 245, 250);
const QColor dimTextColour(160, 180, 200);
const char productName[] = "RX Workbench";

QString VersionText()
{
    const QString version = QCoreApplication::applicationVersion();
    return version.isEmpty() ? QString() : Splash::tr("Version %1").arg(version);
}

// A spectrum: noise with three carriers. The seed is fixed, the picture is always the same.
QPainterPath Spectrum(const QRectF& area)
{
    struct Carrier
    {
        double place, width, height;
    };
    const Carrier carriers[] = {{0.22, 0.012, 0.55}, {0.5, 0.05, 0.85}, {0.81, 0.02, 0.65}};
    const double noiseFloor = 0.12;
    QRandomGenerator random(7);
    QPainterPath path;
    for (int x = 0; x <= int(area.width()); ++x) {
        double level = noiseFloor + 0.05 * random.generateDouble();
        for (const Carrier& carrier : carriers) {
            const double distance = (x / area.width() - carrier.place) / carrier.width;
            level += (carrier.height - noiseFloor) * std::exp(-distance * distance);
        }
        const QPointF point(area.left() + x, area.bottom() - level * area.height());
        x == 0 ? path.moveTo(point) : path.lineTo(point);
    }
    return path;
}

QPixmap DrawBackground()
{
    const qreal ratio = qGuiApp->devicePixelRatio();
    QPixmap pixmap(splashSize * ratio);
    pixmap.setDevicePixelRatio(ratio);
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF area(QPointF(0, 0), QSizeF(splashSize));
    QLinearGradient gradient(area.topLeft(), area.bottomLeft());
    gradient.setColorAt(0, backgroundTop);
    gradient.setColorAt(1, backgroundBottom);
    painter.fillRect(area, gradient);
    painter.setPen(QPen(traceColour, 1.5));
    painter.drawPath(Spectrum(area.adjusted(0, area.height() * 0.45, 0, -50)));
    return pixmap;
}

}  // namespace

Splash::Splash() : QSplashScreen(DrawBackground()), m_Text(tr("Starting…"))
{
    setObjectName(QStringLiteral("Splash"));
    setWindowTitle(QLatin1String(productName));
    setAccessibleName(QLatin1String(productName));
    setAccessibleDescription(m_Text);
}

void Splash::SetText(const QString& text)
{
    m_Text = text;
    setAccessibleDescription(text);
    repaint();
}

void Splash::drawContents(QPainter* painter)
{
    const QRect area =
        QRect(QPoint(0, 0), splashSize).adjusted(marginPixels, marginPixels, -marginPixels, -18);
    QFont font = painter->font();
    const qreal textPoints = 10;
    font.setPointSizeF(textPoints * 2.4);
    font.setBold(true);
    painter->setFont(font);
    painter->setPen(textColour);
    painter->drawText(area, Qt::AlignLeft | Qt::AlignTop, QLatin1String(productName));
    const int titleHeight = QFontMetrics(font).height();

    font.setPointSizeF(textPoints);
    font.setBold(false);
    painter->setFont(font);
    painter->setPen(dimTextColour);
    painter->drawText(area.adjusted(0, titleHeight + 4, 0, 0), Qt::AlignLeft | Qt::AlignTop, VersionText());
    const QString text = QFontMetrics(font).elidedText(m_Text, Qt::ElideRight, area.width());
    painter->setPen(textColour);
    painter->drawText(area, Qt::AlignLeft | Qt::AlignBottom, text);
}
