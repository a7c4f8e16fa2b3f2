#include "ui/settings/SettingsPicker.h"

#include "ui/Symbol.h"
#include "ui/settings/SettingsTheme.h"

#include <QPainter>
#include <QWheelEvent>

using namespace Qt::StringLiterals;
using SettingsTheme::Tint;

namespace {

constexpr int kPadding = 9;
constexpr int kSymbolSize = 10;

} // namespace

SettingsPicker::SettingsPicker(QWidget *parent) : QComboBox(parent)
{
    setFont(SettingsTheme::font(12));
    setFixedHeight(fontMetrics().height() + 10);
    setAttribute(Qt::WA_Hover);
}

void SettingsPicker::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    SettingsTheme::drawPlate(painter, rect(), 6, SettingsTheme::inputBackground(palette()),
                             SettingsTheme::borderColor(palette()));
    if (SettingsTheme::showsFocus(*this))
        SettingsTheme::drawFocusRing(painter, rect(), 6, palette());
    painter.setPen(SettingsTheme::color(Tint::Text, palette()));
    painter.drawText(rect().adjusted(kPadding, 0, -kPadding - kSymbolSize, 0),
                     Qt::AlignLeft | Qt::AlignVCenter, currentText());
    const QRectF symbol(width() - kPadding - kSymbolSize, (height() - kSymbolSize) / 2.0,
                        kSymbolSize, kSymbolSize);
    Symbol::draw(painter, u"chevron.down"_s, symbol,
                 SettingsTheme::color(Tint::Secondary, palette()));
}

void SettingsPicker::wheelEvent(QWheelEvent *event)
{
    event->ignore();
}
