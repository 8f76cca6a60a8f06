#include "app/appearance.h"

#include <QApplication>
#include <QFont>
#include <QFontDatabase>
#include <QPalette>
#include <QStyleFactory>

namespace {

const char faceName[] = "Roboto Condensed";
constexpr int facePoints = 9;

struct Shade
{
    QPalette::ColorRole role;
    QRgb dark;
    QRgb light;
};

const Shade shades[] = {
    {QPalette::Window, 0xff2b2d30, 0xfff0f0f0},
    {QPalette::WindowText, 0xffe3e5e8, 0xff16181a},
    {QPalette::Base, 0xff1c1e20, 0xffffffff},
    {QPalette::AlternateBase, 0xff26282b, 0xfff5f6f8},
    {QPalette::Text, 0xffe3e5e8, 0xff16181a},
    {QPalette::PlaceholderText, 0xff9aa0a6, 0xff5f6368},
    {QPalette::Button, 0xff3a3d41, 0xffe6e6e6},
    {QPalette::ButtonText, 0xffe3e5e8, 0xff16181a},
    {QPalette::BrightText, 0xffffffff, 0xffffffff},
    {QPalette::ToolTipBase, 0xff3a3d41, 0xfffffbe6},
    {QPalette::ToolTipText, 0xffe3e5e8, 0xff16181a},
    {QPalette::Highlight, 0xff2f6fb4, 0xff2a64a8},
    {QPalette::HighlightedText, 0xffffffff, 0xffffffff},
    {QPalette::Link, 0xff7db7f2, 0xff1a5fb4},
    {QPalette::Light, 0xff55595f, 0xffffffff},
    {QPalette::Midlight, 0xff474b50, 0xfff7f7f7},
    {QPalette::Mid, 0xff303236, 0xffb8b8b8},
    {QPalette::Dark, 0xff17181a, 0xff9a9a9a},
    {QPalette::Shadow, 0xff0b0c0d, 0xff6a6a6a},
};

const Shade disabledShades[] = {
    {QPalette::WindowText, 0xff8b9096, 0xff8a8d90},
    {QPalette::Text, 0xff8b9096, 0xff8a8d90},
    {QPalette::ButtonText, 0xff8b9096, 0xff8a8d90},
    {QPalette::Highlight, 0xff4a4e54, 0xffb5bac0},
};

QPalette paletteOf(bool dark)
{
    QPalette palette;
    for (const Shade& shade : shades) {
        palette.setColor(shade.role, QColor::fromRgba(dark ? shade.dark : shade.light));
    }
    for (const Shade& shade : disabledShades) {
        palette.setColor(QPalette::Disabled, shade.role, QColor::fromRgba(dark ? shade.dark : shade.light));
    }
    return palette;
}

}  // namespace

QString Appearance::apply(QApplication* application, const QString& theme)
{
    // One style everywhere: the fixed widths were measured with its margins.
    application->setStyle(QStyleFactory::create("Fusion"));
    if (!theme.isEmpty()) {
        application->setPalette(paletteOf(theme == "dark"));
    }

    QFont face(faceName, facePoints);
    application->setFont(face);
    if (!QFontDatabase::families().contains(QLatin1String(faceName))) {
        return QString(
                   "the face \"%1\" is not installed, texts may not fit their fields; "
                   "install the package fonts-roboto-unhinted")
            .arg(faceName);
    }
    return QString();
}
