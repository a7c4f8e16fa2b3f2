#include "app/MenuEntry.h"

#include "platform/MenuBarExtra.h"
#include "ui/settings/SettingsTheme.h"

#include <QPainter>

#include <algorithm>

using namespace Qt::StringLiterals;
using SettingsTheme::Tint;

namespace {

constexpr int kHorizontalPadding = 8;
constexpr int kVerticalPadding = 6;
constexpr int kSymbolSize = 16;
constexpr int kGap = 6;
constexpr int kGapBeforeAside = 24;
constexpr double kRadius = 5;
constexpr double kDisabledOpacity = 0.6;

QFont asideFont()
{
    return SettingsTheme::font(11);
}

/// The keys in the signs that the settings write shortcuts with.
QString signsOf(const QKeySequence &keys)
{
    if (keys.isEmpty())
        return {};
    const QKeyCombination combination = keys[0];
    const Qt::KeyboardModifiers modifiers = combination.keyboardModifiers();
    QString signs;
    if (modifiers & Qt::ControlModifier)
        signs += u'⌃';
    if (modifiers & Qt::AltModifier)
        signs += u'⌥';
    if (modifiers & Qt::ShiftModifier)
        signs += u'⇧';
    if (modifiers & Qt::MetaModifier)
        signs += u'⌘';
    return signs + QKeySequence(combination.key()).toString(QKeySequence::NativeText);
}

QPixmap inOneColor(QPixmap symbol, const QColor &color)
{
    QPainter painter(&symbol);
    painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
    painter.fillRect(symbol.rect(), color);
    return symbol;
}

} // namespace

MenuEntry::MenuEntry(QWidget *parent) : QPushButton(parent)
{
    setAutoDefault(true); // Enter chooses.
    setFocusPolicy(Qt::StrongFocus);
    setMouseTracking(true);
    setFont(SettingsTheme::font(13));
}

void MenuEntry::setItem(const MenuItem &item)
{
    m_text = item.text;
    m_aside = item.caption.isEmpty() ? signsOf(item.shortcut) : item.caption;
    QString text = m_text;
    setText(text.replace(u'&', "&&"_L1)); // No character is a mnemonic.
    setIcon(item.icon);
    setShortcut(item.shortcut); // After the text, which would set one of its own.
    setEnabled(item.enabled);
    setAccessibleName(m_text);
    setAccessibleDescription(m_aside);
    updateGeometry();
    update();
}

QSize MenuEntry::sizeHint() const
{
    const int asideWidth =
        m_aside.isEmpty() ? 0 : QFontMetrics(asideFont()).horizontalAdvance(m_aside);
    const int textWidth = fontMetrics().horizontalAdvance(m_text);
    return {2 * kHorizontalPadding + kSymbolSize + kGap + textWidth + kGapBeforeAside + asideWidth,
            std::max(fontMetrics().height(), kSymbolSize) + 2 * kVerticalPadding};
}

void MenuEntry::mouseMoveEvent(QMouseEvent *event)
{
    // Not on entering: the window may have come up beneath a mouse that lies still.
    setFocus(Qt::MouseFocusReason);
    QPushButton::mouseMoveEvent(event);
}

void MenuEntry::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    const bool isHighlighted = hasFocus() && isEnabled();
    QColor text = SettingsTheme::color(Tint::Text, palette());
    QColor aside = SettingsTheme::color(Tint::Secondary, palette());
    if (isHighlighted) {
        QColor fill = SettingsTheme::accent(palette());
        if (isDown())
            fill = fill.darker(118);
        SettingsTheme::drawPlate(painter, rect(), kRadius, fill, Qt::transparent, 0);
        text = aside = SettingsTheme::color(Tint::OnAccent, palette());
    }
    if (!isEnabled()) {
        text = aside;
        painter.setOpacity(kDisabledOpacity);
    }
    const QRect inside = rect().adjusted(kHorizontalPadding, 0, -kHorizontalPadding, 0);
    if (!icon().isNull()) {
        const QSize size(kSymbolSize, kSymbolSize);
        const QPixmap symbol = icon().pixmap(size, devicePixelRatioF());
        const QPoint place(inside.left(), (height() - kSymbolSize) / 2);
        painter.drawPixmap(QRect(place, size), isHighlighted ? inOneColor(symbol, text) : symbol);
    }
    painter.setPen(text);
    painter.drawText(inside.adjusted(kSymbolSize + kGap, 0, 0, 0), Qt::AlignLeft | Qt::AlignVCenter,
                     m_text);
    painter.setPen(aside);
    painter.setFont(asideFont());
    painter.drawText(inside, Qt::AlignRight | Qt::AlignVCenter, m_aside);
}
