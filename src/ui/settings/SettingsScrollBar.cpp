#include "ui/settings/SettingsScrollBar.h"

#include "ui/settings/SettingsTheme.h"

#include <QPainter>
#include <QStyle>
#include <QStyleOptionSlider>

namespace {

constexpr int kHandleInset = 2;

} // namespace

SettingsScrollBar::SettingsScrollBar(QWidget *parent) : QScrollBar(Qt::Vertical, parent)
{
    setAttribute(Qt::WA_Hover);
}

QSize SettingsScrollBar::sizeHint() const
{
    return {kWidth, QScrollBar::sizeHint().height()};
}

void SettingsScrollBar::paintEvent(QPaintEvent *)
{
    if (minimum() == maximum())
        return;
    QStyleOptionSlider option;
    initStyleOption(&option);
    const QRect handle =
        style()->subControlRect(QStyle::CC_ScrollBar, &option, QStyle::SC_ScrollBarSlider, this);
    QPainter painter(this);
    QColor color = SettingsTheme::color(SettingsTheme::Tint::Secondary, palette());
    color.setAlphaF(isSliderDown() ? 0.9F : underMouse() ? 0.7F : 0.45F);
    const QRectF bar = QRectF(handle).adjusted(kHandleInset, 2, -kHandleInset, -2);
    SettingsTheme::drawPlate(painter, bar, bar.width() / 2, color, Qt::transparent, 0);
}
