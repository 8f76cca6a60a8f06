#include "spectrum/scantheme.h"

QColor ScanTheme::mixed(const QColor& under, const QColor& over, double share)
{
    return QColor::fromRgbF(static_cast<float>(under.redF() + (over.redF() - under.redF()) * share),
                            static_cast<float>(under.greenF() + (over.greenF() - under.greenF()) * share),
                            static_cast<float>(under.blueF() + (over.blueF() - under.blueF()) * share));
}

ScanTheme ScanTheme::of(const QPalette& palette, bool stale)
{
    ScanTheme theme;
    theme.background = palette.color(QPalette::Base);
    theme.text = palette.color(QPalette::Text);
    const bool dark = qGray(theme.background.rgb()) < qGray(theme.text.rgb());
    theme.grid = mixed(theme.background, theme.text, dark ? 0.17 : 0.14);
    theme.focus = palette.color(QPalette::Highlight);
    theme.marker = theme.text;
    theme.cursor = mixed(theme.background, theme.text, 0.75);
    theme.box = theme.background;
    theme.box.setAlpha(215);
    if (dark) {
        theme.trace = QColor(0x8f, 0xdc, 0xff);
        theme.maximumHold = QColor(0xff, 0xb0, 0x3a);
        theme.minimumHold = QColor(0xa9, 0x8b, 0xff);
        theme.threshold = QColor(0xff, 0x7b, 0x6b);
    } else {
        theme.trace = QColor(0x00, 0x4f, 0x8a);
        theme.maximumHold = QColor(0xb4, 0x5a, 0x00);
        theme.minimumHold = QColor(0x7a, 0x4f, 0xd0);
        theme.threshold = QColor(0xbb, 0x1e, 0x1e);
    }
    if (stale) {
        const QColor grey = mixed(theme.background, theme.text, 0.45);
        theme.trace = grey;
        theme.maximumHold = theme.minimumHold = mixed(theme.background, theme.text, 0.35);
        theme.threshold = mixed(theme.background, theme.text, 0.6);
    }
    theme.maximum = mixed(theme.background, theme.trace, 0.48);
    theme.tint = theme.trace;
    theme.tint.setAlpha(dark ? 46 : 38);
    return theme;
}
