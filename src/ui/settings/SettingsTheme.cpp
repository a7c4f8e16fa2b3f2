#include "ui/settings/SettingsTheme.h"

#include <QFontInfo>
#include <QGuiApplication>
#include <QPainter>
#include <QWidget>

#include <algorithm>
#include <cmath>

namespace {

constexpr double kTextContrast = 4.6;
constexpr double kUsualFontSize = 13;
constexpr double kLargestFontScale = 1.15;

double luminance(const QColor &color)
{
    const auto linear = [](float channel) {
        const double c = static_cast<double>(channel);
        return c <= 0.04045 ? c / 12.92 : std::pow((c + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF())
        + 0.0722 * linear(color.blueF());
}

/// amount of over on under, from 0 to 1.
QColor blend(const QColor &under, const QColor &over, double amount)
{
    const auto mix = [amount](int a, int b) {
        return static_cast<int>(a + (b - a) * amount);
    };
    return {mix(under.red(), over.red()), mix(under.green(), over.green()),
            mix(under.blue(), over.blue())};
}

/// wanted, moved towards towards until it can be read on background.
QColor legible(const QColor &wanted, const QColor &background, const QColor &towards)
{
    for (double amount = 0; amount < 1; amount += 0.05) {
        QColor color = blend(wanted, towards, amount);
        if (SettingsTheme::contrast(color, background) >= kTextContrast)
            return color;
    }
    return towards;
}

bool isDark(const QPalette &palette)
{
    return luminance(palette.color(QPalette::Window))
        < luminance(palette.color(QPalette::WindowText));
}

} // namespace

QPalette SettingsTheme::palette(const QPalette &desktop)
{
    QPalette palette = desktop;
    const QColor highlight = accent(desktop);
    for (const auto group : {QPalette::Active, QPalette::Inactive, QPalette::Disabled}) {
        palette.setColor(group, QPalette::PlaceholderText, color(Tint::Secondary, desktop));
        if (group == QPalette::Disabled)
            continue;
        palette.setColor(group, QPalette::Highlight, highlight);
        palette.setColor(group, QPalette::HighlightedText, Qt::white);
    }
    return palette;
}

QColor SettingsTheme::cardBackground(const QPalette &palette)
{
    const QColor window = palette.color(QPalette::Active, QPalette::Window);
    return isDark(palette) ? blend(window, Qt::white, 0.06)
                           : blend(window, palette.color(QPalette::Active, QPalette::Base), 0.85);
}

QColor SettingsTheme::inputBackground(const QPalette &palette)
{
    return palette.color(QPalette::Active, QPalette::Base);
}

QColor SettingsTheme::borderColor(const QPalette &palette)
{
    return blend(palette.color(QPalette::Active, QPalette::Window),
                 palette.color(QPalette::Active, QPalette::WindowText),
                 isDark(palette) ? 0.28 : 0.2);
}

QColor SettingsTheme::accent(const QPalette &palette)
{
    return legible(palette.color(QPalette::Active, QPalette::Highlight), Qt::white, Qt::black);
}

QColor SettingsTheme::color(Tint tint, const QPalette &palette)
{
    const QColor text = palette.color(QPalette::Active, QPalette::WindowText);
    const QColor card = cardBackground(palette);
    switch (tint) {
    case Tint::Text:
        return text;
    case Tint::Secondary:
        // Legible on the window as well, which is the darker of the two in the light.
        return legible(legible(blend(card, text, 0.62), card, text),
                       palette.color(QPalette::Active, QPalette::Window), text);
    case Tint::Accent:
        return legible(palette.color(QPalette::Active, QPalette::Highlight), card, text);
    case Tint::OnAccent:
        return Qt::white;
    case Tint::Green:
        return legible(QColor(0x2e, 0x9e, 0x4f), card, text);
    case Tint::Red:
        return legible(QColor(0xd7, 0x2c, 0x2c), card, text);
    case Tint::Orange:
        return legible(QColor(0xd9, 0x77, 0x06), card, text);
    }
    Q_UNREACHABLE();
}

double SettingsTheme::contrast(const QColor &one, const QColor &other)
{
    const auto [darker, lighter] = std::minmax({luminance(one), luminance(other)});
    return (lighter + 0.05) / (darker + 0.05);
}

QFont SettingsTheme::font(double size, QFont::Weight weight)
{
    QFont font = QGuiApplication::font();
    const double scale =
        std::clamp(QFontInfo(font).pixelSize() / kUsualFontSize, 1.0, kLargestFontScale);
    font.setPixelSize(static_cast<int>(std::round(size * scale)));
    font.setWeight(weight);
    return font;
}

void SettingsTheme::drawPlate(QPainter &painter, const QRectF &rect, double radius,
                              const QColor &fill, const QColor &outline, double outlineWidth)
{
    const double inset = outlineWidth / 2;
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setBrush(fill);
    painter.setPen(outline.alpha() == 0 ? QPen(Qt::NoPen) : QPen(outline, outlineWidth));
    painter.drawRoundedRect(rect.adjusted(inset, inset, -inset, -inset), radius - inset,
                            radius - inset);
}

bool SettingsTheme::showsFocus(const QWidget &widget)
{
    return widget.hasFocus() && widget.window()->testAttribute(Qt::WA_KeyboardFocusChange);
}

void SettingsTheme::drawFocusRing(QPainter &painter, const QRectF &rect, double radius,
                                  const QPalette &palette)
{
    drawPlate(painter, rect, radius, Qt::transparent, color(Tint::Accent, palette), 2);
}
