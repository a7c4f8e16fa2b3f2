#include "ui/settings/ActionButton.h"

#include "ui/Symbol.h"
#include "ui/settings/SettingsTheme.h"
#include "ui/settings/Spinner.h"

#include <QPainter>

using SettingsTheme::Tint;

namespace {

constexpr int kHorizontalPadding = 16;
constexpr int kVerticalPadding = 6;
constexpr int kSymbolSize = 12;
constexpr int kGap = 5;
constexpr double kRadius = 6;

} // namespace

ActionButton::ActionButton(Kind kind, const QString &symbol, const QString &text, QWidget *parent)
    : QPushButton(text, parent)
    , m_kind(kind)
    , m_symbol(symbol)
    , m_spinner(new Spinner(kSymbolSize, Tint::Secondary, this))
{
    m_spinner->hide();
    setAccessibleName(text);
    setFont(SettingsTheme::font(11, kind == Kind::Prominent ? QFont::DemiBold : QFont::Medium));
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    setAttribute(Qt::WA_Hover);
}

void ActionButton::setBusy(bool isBusy)
{
    m_spinner->setVisible(isBusy);
    m_spinner->setGeometry(symbolRect());
    update();
}

QSize ActionButton::sizeHint() const
{
    const int symbolWidth = m_symbol.isEmpty() ? 0 : kSymbolSize + kGap;
    const int height = std::max(fontMetrics().height(), kSymbolSize) + 2 * kVerticalPadding;
    return {2 * kHorizontalPadding + symbolWidth + fontMetrics().horizontalAdvance(text()), height};
}

QRect ActionButton::symbolRect() const
{
    const int left = (width() - sizeHint().width()) / 2 + kHorizontalPadding;
    return {left, (height() - kSymbolSize) / 2, kSymbolSize, kSymbolSize};
}

void ActionButton::resizeEvent(QResizeEvent *event)
{
    m_spinner->setGeometry(symbolRect());
    QPushButton::resizeEvent(event);
}

void ActionButton::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    const bool isProminent = m_kind == Kind::Prominent;
    QColor text = SettingsTheme::color(Tint::Text, palette());
    QColor outline = SettingsTheme::borderColor(palette());
    QColor fill = SettingsTheme::cardBackground(palette());
    if (isProminent) {
        text = SettingsTheme::color(Tint::OnAccent, palette());
        fill = SettingsTheme::accent(palette());
        outline = Qt::transparent;
    }
    if (!isEnabled()) {
        // White on a paler accent could not be told from an enabled button by everybody.
        text = SettingsTheme::color(Tint::Secondary, palette());
        fill = SettingsTheme::cardBackground(palette());
        outline = SettingsTheme::borderColor(palette());
        painter.setOpacity(0.7);
    } else if (isDown()) {
        fill = fill.darker(118);
    } else if (underMouse()) {
        fill = fill.darker(106);
    }
    SettingsTheme::drawPlate(painter, rect(), kRadius, fill, outline, outline.alpha() == 0 ? 0 : 1);
    if (SettingsTheme::showsFocus(*this)) {
        if (isProminent)
            SettingsTheme::drawPlate(painter, QRectF(rect()).adjusted(2, 2, -2, -2), kRadius - 2,
                                     Qt::transparent, text, 1.5);
        else
            SettingsTheme::drawFocusRing(painter, rect(), kRadius, palette());
    }
    const QRect symbol = symbolRect();
    if (!m_symbol.isEmpty() && m_spinner->isHidden())
        Symbol::draw(painter, m_symbol, symbol, text);
    painter.setPen(text);
    const int textLeft = symbol.left() + (m_symbol.isEmpty() ? 0 : kSymbolSize + kGap);
    painter.drawText(QRect(textLeft, 0, width() - textLeft, height()),
                     Qt::AlignLeft | Qt::AlignVCenter, QPushButton::text());
}
