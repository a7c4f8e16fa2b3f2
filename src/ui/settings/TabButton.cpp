#include "ui/settings/TabButton.h"

#include "ui/Symbol.h"
#include "ui/settings/SettingsTheme.h"

#include <QPainter>

#include <utility>

using SettingsTheme::Tint;

namespace {

constexpr int kSymbolSize = 20;

} // namespace

TabButton::TabButton(const QString &title, const QString &icon, std::function<void()> action,
                     QWidget *parent)
    : QAbstractButton(parent), m_icon(icon)
{
    setText(title);
    setAccessibleName(title);
    setCheckable(true);
    setAutoExclusive(true);
    setFont(SettingsTheme::font(11, QFont::Medium));
    setFocusPolicy(Qt::StrongFocus);
    connect(this, &TabButton::clicked, this, [run = std::move(action)] { run(); });
}

QSize TabButton::sizeHint() const
{
    const int textWidth = fontMetrics().horizontalAdvance(text());
    return {std::max(84, textWidth + 24), kSymbolSize + fontMetrics().height() + 14};
}

void TabButton::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    const QColor color =
        SettingsTheme::color(isChecked() ? Tint::Accent : Tint::Secondary, palette());
    QColor plate = isChecked() ? color : SettingsTheme::color(Tint::Text, palette());
    plate.setAlphaF(isChecked() ? 0.13F : isDown() ? 0.12F : underMouse() ? 0.06F : 0);
    SettingsTheme::drawPlate(painter, rect(), 8, plate, Qt::transparent, 0);
    if (SettingsTheme::showsFocus(*this))
        SettingsTheme::drawFocusRing(painter, rect(), 8, palette());

    const QRectF symbol((width() - kSymbolSize) / 2.0, 6, kSymbolSize, kSymbolSize);
    Symbol::draw(painter, m_icon, symbol, color);
    painter.setPen(isChecked() ? color : SettingsTheme::color(Tint::Text, palette()));
    painter.setFont(font());
    painter.drawText(rect().adjusted(0, kSymbolSize + 7, 0, -3),
                     Qt::AlignHCenter | Qt::AlignVCenter, text());
}

void TabButton::enterEvent(QEnterEvent *event)
{
    update();
    QAbstractButton::enterEvent(event);
}

void TabButton::leaveEvent(QEvent *event)
{
    update();
    QAbstractButton::leaveEvent(event);
}
