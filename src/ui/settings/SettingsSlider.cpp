#include "ui/settings/SettingsSlider.h"

#include "ui/settings/SettingsTheme.h"

#include <QPainter>
#include <QStyle>
#include <QStyleOptionSlider>
#include <QWheelEvent>

namespace {

constexpr double kGrooveHeight = 4;
constexpr double kHandleSize = 16;
constexpr int kHeight = 20;

} // namespace

SettingsSlider::SettingsSlider(int minimum, int maximum, QWidget *parent)
    : QSlider(Qt::Horizontal, parent)
{
    setRange(minimum, maximum);
    setSingleStep(1);
    setPageStep(4);
    setAttribute(Qt::WA_Hover);
    setFixedHeight(kHeight); // The style's own handle is smaller.
}

void SettingsSlider::paintEvent(QPaintEvent *)
{
    QStyleOptionSlider option;
    initStyleOption(&option);
    const QRectF styleHandle(
        style()->subControlRect(QStyle::CC_Slider, &option, QStyle::SC_SliderHandle, this));
    const QPointF middle(styleHandle.center().x(), height() / 2.0);
    QPainter painter(this);
    const QColor accent = SettingsTheme::accent(palette());
    const QRectF groove(2, middle.y() - kGrooveHeight / 2, width() - 4, kGrooveHeight);
    SettingsTheme::drawPlate(painter, groove, kGrooveHeight / 2,
                             SettingsTheme::borderColor(palette()), Qt::transparent, 0);
    QRectF filled = groove;
    filled.setRight(middle.x());
    SettingsTheme::drawPlate(painter, filled, kGrooveHeight / 2, accent, Qt::transparent, 0);

    QRectF handle(0, 0, kHandleSize, kHandleSize);
    handle.moveCenter(middle);
    SettingsTheme::drawPlate(painter, handle, kHandleSize / 2, accent, Qt::transparent, 0);
    SettingsTheme::drawPlate(painter, handle.adjusted(2, 2, -2, -2), kHandleSize / 2 - 2,
                             isSliderDown() ? accent.lighter(170) : QColor(Qt::white),
                             Qt::transparent, 0);
    if (SettingsTheme::showsFocus(*this))
        SettingsTheme::drawFocusRing(painter, QRectF(rect()).adjusted(0, -0.5, 0, 0.5), 6,
                                     palette());
}

void SettingsSlider::wheelEvent(QWheelEvent *event)
{
    event->ignore();
}
