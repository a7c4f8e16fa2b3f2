#include "ui/settings/SettingsToggle.h"

#include "ui/Symbol.h"
#include "ui/settings/SettingsTheme.h"

#include <QPainter>

using namespace Qt::StringLiterals;
using SettingsTheme::Tint;

namespace {

constexpr int kBoxSize = 16;
constexpr int kGap = 8;
constexpr int kMargin = 3;

} // namespace

SettingsToggle::SettingsToggle(const QString &text, QWidget *parent) : QCheckBox(text, parent)
{
    setFont(SettingsTheme::font(12));
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    setAccessibleName(text);
    setAttribute(Qt::WA_Hover);
}

int SettingsToggle::textIndent()
{
    return kMargin + kBoxSize + kGap;
}

QSize SettingsToggle::sizeHint() const
{
    return {kMargin + kBoxSize + kGap + fontMetrics().horizontalAdvance(text()) + 2 * kMargin,
            std::max(kBoxSize, fontMetrics().height()) + 2 * kMargin};
}

bool SettingsToggle::hitButton(const QPoint &position) const
{
    return rect().contains(position);
}

void SettingsToggle::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    const QRectF box(kMargin, (height() - kBoxSize) / 2.0, kBoxSize, kBoxSize);
    const QColor fill =
        isChecked() ? SettingsTheme::accent(palette()) : SettingsTheme::inputBackground(palette());
    SettingsTheme::drawPlate(painter, box, 4, isDown() ? fill.darker(112) : fill,
                             isChecked() ? fill : SettingsTheme::color(Tint::Secondary, palette()));
    if (isChecked())
        Symbol::draw(painter, u"checkmark"_s, box.adjusted(2, 2, -2, -2),
                     SettingsTheme::color(Tint::OnAccent, palette()));
    if (SettingsTheme::showsFocus(*this))
        SettingsTheme::drawFocusRing(painter, rect(), 5, palette());
    painter.setPen(SettingsTheme::color(Tint::Text, palette()));
    painter.drawText(rect().adjusted(kMargin + kBoxSize + kGap, 0, 0, 0),
                     Qt::AlignLeft | Qt::AlignVCenter, text());
}
