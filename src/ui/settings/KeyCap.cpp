#include "ui/settings/KeyCap.h"

#include "ui/settings/KeyNames.h"
#include "ui/settings/SettingsTheme.h"

#include <QPainter>

namespace {

constexpr int kMinimumWidth = 22;
constexpr int kHeight = 23;
constexpr int kPadding = 6;
constexpr double kRadius = 4;
constexpr double kShadow = 1;

} // namespace

KeyCap::KeyCap(const QString &key, QWidget *parent)
    : QLabel(KeyNames::drawn(key), parent), m_key(key)
{
    setObjectName(QStringLiteral("keyCap"));
    setTextFormat(Qt::PlainText);
    setFont(SettingsTheme::font(12, QFont::Medium));
    setAlignment(Qt::AlignCenter);
    setMinimumWidth(kMinimumWidth);
    setFixedHeight(kHeight);
    setContentsMargins(kPadding, 0, kPadding, static_cast<int>(kShadow));
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    setAccessibleName(KeyNames::said(key));
    setToolTip(KeyNames::explanation({key}));
}

QColor KeyCap::fill(const QPalette &palette)
{
    const QColor card = SettingsTheme::cardBackground(palette);
    const QColor input = SettingsTheme::inputBackground(palette);
    return input.lightness() >= card.lightness() ? input : card.lighter(135);
}

void KeyCap::drawPlate(QPainter &painter, const QRectF &rect, const QColor &fill,
                       const QPalette &palette)
{
    const QRectF plate = rect.adjusted(0, 0, 0, -kShadow);
    QColor shadow = Qt::black;
    shadow.setAlphaF(0.18F);
    SettingsTheme::drawPlate(painter, plate.translated(0, kShadow), kRadius, shadow,
                             Qt::transparent, 0);
    SettingsTheme::drawPlate(painter, plate, kRadius, fill, Qt::transparent, 0);
    QColor outline = SettingsTheme::color(SettingsTheme::Tint::Text, palette);
    outline.setAlphaF(0.15F);
    SettingsTheme::drawPlate(painter, plate, kRadius, Qt::transparent, outline);
}

void KeyCap::paintEvent(QPaintEvent *event)
{
    {
        QPainter painter(this);
        drawPlate(painter, rect(), fill(palette()), palette());
    }
    QLabel::paintEvent(event);
}
