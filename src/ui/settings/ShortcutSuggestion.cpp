#include "ui/settings/ShortcutSuggestion.h"

#include "ui/settings/KeyCap.h"
#include "ui/settings/KeyNames.h"
#include "ui/settings/SettingsTheme.h"

#include <QFontDatabase>
#include <QPainter>

#include <utility>

using SettingsTheme::Tint;

namespace {

constexpr int kPadding = 12;
constexpr int kHeight = 27;

} // namespace

ShortcutSuggestion::ShortcutSuggestion(const QString &keys, std::function<void()> action,
                                       QWidget *parent)
    : QAbstractButton(parent)
{
    setText(keys);
    QFont font = SettingsTheme::font(13, QFont::Medium);
    font.setFamilies(QFontDatabase::systemFont(QFontDatabase::FixedFont).families());
    font.setLetterSpacing(QFont::AbsoluteSpacing, 1);
    setFont(font);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    setFocusPolicy(Qt::StrongFocus);
    setAttribute(Qt::WA_Hover);
    const QStringList single = keys.split(QString(), Qt::SkipEmptyParts);
    setAccessibleName(KeyNames::said(single));
    setToolTip(KeyNames::explanation(single));
    connect(this, &ShortcutSuggestion::clicked, this, [run = std::move(action)] { run(); });
}

QSize ShortcutSuggestion::sizeHint() const
{
    return {fontMetrics().horizontalAdvance(text()) + 2 * kPadding, kHeight};
}

void ShortcutSuggestion::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    QColor fill = KeyCap::fill(palette());
    if (isDown())
        fill = fill.darker(118);
    else if (underMouse())
        fill = fill.darker(106);
    KeyCap::drawPlate(painter, rect(), fill, palette());
    if (hasFocus())
        SettingsTheme::drawFocusRing(painter, QRectF(rect()).adjusted(0, 0, 0, -1), 4, palette());
    painter.setPen(SettingsTheme::color(Tint::Text, palette()));
    painter.drawText(rect().adjusted(0, 0, 0, -1), Qt::AlignCenter, text());
}
