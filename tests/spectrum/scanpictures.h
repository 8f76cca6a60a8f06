#pragma once

#include <QDir>
#include <QFileInfo>
#include <QFont>
#include <QImage>
#include <QPainter>
#include <QPalette>
#include <cmath>
#include <cstdlib>
#include <random>

#include "spectrum/scanframe.h"

// What the tests of the scan's pictures share: traces with known signals, palettes, and the
// comparison with the pictures under references/.
namespace ScanPictures {

// The face of the workbench, in pixels: the same on every screen.
inline QFont face()
{
    QFont font(QStringLiteral("Roboto Condensed"));
    font.setPixelSize(12);
    return font;
}

inline QPalette lightPalette()
{
    QPalette palette;
    palette.setColor(QPalette::Window, QColor(0xf0, 0xf0, 0xf0));
    palette.setColor(QPalette::WindowText, Qt::black);
    palette.setColor(QPalette::Base, Qt::white);
    palette.setColor(QPalette::Text, Qt::black);
    palette.setColor(QPalette::Highlight, QColor(0x30, 0x6f, 0xc8));
    return palette;
}

inline QPalette darkPalette()
{
    QPalette palette;
    palette.setColor(QPalette::Window, QColor(0x2b, 0x2e, 0x33));
    palette.setColor(QPalette::WindowText, QColor(0xe6, 0xe6, 0xe6));
    palette.setColor(QPalette::Base, QColor(0x14, 0x16, 0x1a));
    palette.setColor(QPalette::Text, QColor(0xe6, 0xe6, 0xe6));
    palette.setColor(QPalette::Highlight, QColor(0x4d, 0x9d, 0xf2));
    return palette;
}

// `count` bins around 98.5 MHz over 2 MHz.
inline ScanFrame emptyFrame(int count, float level = 0)
{
    ScanFrame frame;
    frame.sequence = 1;
    frame.time = 1700000000000000;
    frame.step = 2e6 / count;
    frame.start = 97.5e6 + frame.step / 2;
    frame.resolutionBandwidth = frame.step * 1.5;
    frame.levels = QVector<float>(count, level);
    return frame;
}

// The same noise on every machine, with signals on it: narrow ones, a wide one, and one of one bin.
inline ScanFrame noisyFrame(int count, unsigned seed = 1)
{
    ScanFrame frame = emptyFrame(count);
    std::mt19937 random(seed);
    const auto addSignal = [](double level, double distance, double width) {
        return level - 3 * (distance / width) * (distance / width);
    };
    for (int i = 0; i < count; ++i) {
        const double uniform = (static_cast<double>(random()) + 1) / 4294967297.0;
        const double noise = 2 + 10 * std::log10(-std::log(uniform));
        const double hertz = frame.start + i * frame.step;
        double power = std::pow(10.0, noise / 10);
        power += std::pow(10.0, addSignal(58, hertz - 98.1e6, 3e3) / 10);
        power += std::pow(10.0, addSignal(42, hertz - 98.62e6, 2e3) / 10);
        const double inside = std::abs(hertz - 98.5e6) < 60e3 ? 0 : (std::abs(hertz - 98.5e6) - 60e3) / 1e3;
        power += std::pow(10.0, (36 + noise - inside) / 10);
        frame.levels[i] = static_cast<float>(10 * std::log10(power));
    }
    frame.levels[count * 7 / 8] = 30;
    frame.sequence = seed;
    frame.time += static_cast<qint64>(seed) * 33333;
    return frame;
}

// An image of `size` in the painter's pixels.
inline QImage canvas(const QSize& size, double scale)
{
    QImage image((QSizeF(size) * scale).toSize(), QImage::Format_RGB32);
    image.setDevicePixelRatio(scale);
    image.fill(Qt::magenta);
    return image;
}

inline bool alike(QRgb a, QRgb b)
{
    constexpr int tolerance = 40;  // of a channel: faces are smoothed differently from machine to machine
    return std::abs(qRed(a) - qRed(b)) <= tolerance && std::abs(qGreen(a) - qGreen(b)) <= tolerance &&
           std::abs(qBlue(a) - qBlue(b)) <= tolerance;
}

// A pixel is in the other picture when it, or a neighbour, shows the same there: texts may lie a
// pixel aside, but nothing may be missing.
inline bool isIn(const QImage& other, int x, int y, QRgb color)
{
    for (int dy = -1; dy <= 1; ++dy) {
        for (int dx = -1; dx <= 1; ++dx) {
            const QPoint at(x + dx, y + dy);
            if (other.valid(at) && alike(other.pixel(at), color))
                return true;
        }
    }
    return false;
}

// Pixels of either picture that the other does not have; they are red in `shown`.
inline int differences(const QImage& picture, const QImage& reference, QImage* shown)
{
    *shown = picture.convertToFormat(QImage::Format_Grayscale8).convertToFormat(QImage::Format_RGB32);
    int found = 0;
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            if (isIn(reference, x, y, picture.pixel(x, y)) && isIn(picture, x, y, reference.pixel(x, y)))
                continue;
            shown->setPixel(x, y, qRgb(255, 0, 0));
            ++found;
        }
    }
    return found;
}

// Empty when the picture is that of references/NAME.png; else what is wrong. The picture and its
// differences are then saved in the build folder, for tests/spectrum/accept and for the eye.
inline QString fault(const QImage& picture, const QString& name)
{
    const QString reference = QStringLiteral(RX_REFERENCE_DIR "/") + name + QStringLiteral(".png");
    if (qEnvironmentVariableIsSet("RX_ACCEPT_PICTURES"))
        return picture.save(reference) ? QString() : QStringLiteral("cannot write ") + reference;
    const QString folder = QStringLiteral(RX_PICTURE_DIR "/spectrum/");
    QDir().mkpath(folder);
    const QString saved = folder + name + QStringLiteral(".png");
    const QImage expected = QImage(reference).convertToFormat(QImage::Format_RGB32);
    const QImage plain = picture.convertToFormat(QImage::Format_RGB32);
    if (expected.size() != plain.size()) {
        picture.save(saved);
        return QStringLiteral("%1 is missing or of another size; the picture is %2").arg(reference, saved);
    }
    QImage shown;
    const int found = differences(plain, expected, &shown);
    // Three pixels in ten thousand, for the smoothing of texts.
    if (found <= plain.width() * plain.height() * 3 / 10000)
        return {};
    picture.save(saved);
    const QString difference = folder + name + QStringLiteral("-differences.png");
    shown.save(difference);
    return QStringLiteral("%1 pixels differ, see %2 and %3").arg(found).arg(saved, difference);
}

}  // namespace ScanPictures
