// The look of a patcher.
#include "look.h"

#include <algorithm>
#include <cmath>

namespace {

double linear(double part) { return part <= 0.04045 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4); }

// Luminance and contrast as the Web Content Accessibility Guidelines define them.
double luminance(const QColor &color) {
    return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) + 0.0722 * linear(color.blueF());
}

double contrast(const QColor &one, const QColor &other) {
    const double a = luminance(one), b = luminance(other);
    return (std::max(a, b) + 0.05) / (std::min(a, b) + 0.05);
}

constexpr double least_contrast = 3;

Look light_look() {
    return {.canvas = "#eef0f3",
            .box = "#ffffff",
            .box_border = "#b4bcc8",
            .text = "#1d2430",
            .muted = "#6b7584",
            .message = "#dfe6ef",
            .message_border = "#aab6c6",
            .paper = "#ffffff",
            .paper_border = "#aab3c0",
            .accent = "#1b78d0",
            .pressed = "#b7d3f2",
            .cord = "#7d8a9c",
            .port = "#5c6a7e",
            .error = "#c62828"};
}

Look dark_look() {
    return {.canvas = "#23272e",
            .box = "#323842",
            .box_border = "#525c6b",
            .text = "#e6e9ee",
            .muted = "#9aa5b5",
            .message = "#414b5a",
            .message_border = "#616e81",
            .paper = "#1b1e24",
            .paper_border = "#525c6b",
            .accent = "#5aa9f5",
            .pressed = "#2c5f95",
            .cord = "#7f8da1",
            .port = "#a2afc2",
            .error = "#ff7b72"};
}

QPalette palette_of(const Look &look) {
    QPalette palette(look.canvas);
    palette.setColor(QPalette::Window, look.canvas);
    palette.setColor(QPalette::Base, look.paper);
    palette.setColor(QPalette::AlternateBase, look.box);
    palette.setColor(QPalette::Button, look.box);
    palette.setColor(QPalette::ToolTipBase, look.box);
    for (QPalette::ColorRole role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText, QPalette::ToolTipText})
        palette.setColor(role, look.text);
    palette.setColor(QPalette::PlaceholderText, look.muted);
    for (QPalette::ColorRole role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
        palette.setColor(QPalette::Disabled, role, look.muted);
    palette.setColor(QPalette::Highlight, look.accent);
    palette.setColor(QPalette::HighlightedText, readable_on(look.paper, look.accent));
    palette.setColor(QPalette::Link, look.accent);
    return palette;
}

} // namespace

bool is_dark(const QPalette &palette) {
    return luminance(palette.color(QPalette::Window)) < luminance(palette.color(QPalette::WindowText));
}

Look look_of(const QPalette &palette) { return is_dark(palette) ? dark_look() : light_look(); }

QString tab_style(const Look &look) {
    return QString("QTabBar { background: %1; }"
                   "QTabBar::tab { background: transparent; color: %2; border: none; padding: 6px 14px 4px 14px;"
                   " margin-left: 2px; border-bottom: 2px solid transparent; }"
                   "QTabBar::tab:hover { color: %3; }"
                   "QTabBar::tab:selected { color: %3; border-bottom: 2px solid %4; }"
                   "QTabBar::tab:focus { background: %5; }"
                   "QTabWidget::pane { border: none; }")
        .arg(look.canvas.name(), look.muted.name(), look.text.name(), look.accent.name(), look.message.name());
}

QPalette light_palette() { return palette_of(light_look()); }
QPalette dark_palette() { return palette_of(dark_look()); }

QColor readable_on(const QColor &color, const QColor &background) {
    const QColor opaque = QColor::fromRgbF(color.redF(), color.greenF(), color.blueF());
    if (contrast(opaque, background) >= least_contrast)
        return color;
    float hue, saturation, lightness, alpha;
    color.getHslF(&hue, &saturation, &lightness, &alpha);
    return QColor::fromHslF(std::max(hue, 0.0F), saturation, 1 - lightness, alpha);
}

QFont box_font(const QString &family, double size) {
    QFont font(family);
    font.setPixelSize(std::max(1, static_cast<int>(std::lround(size))));
    return font;
}
