#include "ui/settings/CharacterToggle.h"

#include "ui/settings/SettingsTheme.h"

#include <QPainter>

using SettingsTheme::Tint;

CharacterToggle::CharacterToggle(const QString &label, const QString &name, QWidget *parent)
    : QCheckBox(label, parent)
{
    setFont(SettingsTheme::font(11, QFont::Medium));
    setAccessibleName(name);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    setAttribute(Qt::WA_Hover);
}

QSize CharacterToggle::sizeHint() const
{
    return {fontMetrics().horizontalAdvance(text()) + 24, fontMetrics().height() + 12};
}

bool CharacterToggle::hitButton(const QPoint &position) const
{
    return rect().contains(position);
}

void CharacterToggle::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    QColor fill = SettingsTheme::accent(palette());
    if (!isChecked()) {
        fill = SettingsTheme::color(Tint::Text, palette());
        fill.setAlphaF(isDown() ? 0.12F : underMouse() ? 0.06F : 0);
    }
    SettingsTheme::drawPlate(painter, rect(), 6, fill,
                             isChecked() ? fill : SettingsTheme::borderColor(palette()));
    if (SettingsTheme::showsFocus(*this) && isChecked())
        SettingsTheme::drawPlate(painter, QRectF(rect()).adjusted(2, 2, -2, -2), 4, Qt::transparent,
                                 Qt::white, 1.5);
    else if (SettingsTheme::showsFocus(*this))
        SettingsTheme::drawFocusRing(painter, rect(), 6, palette());
    painter.setPen(SettingsTheme::color(isChecked() ? Tint::OnAccent : Tint::Text, palette()));
    painter.drawText(rect(), Qt::AlignCenter, text());
}
