#include "ui/settings/KeyboardShortcutView.h"

#include "ui/settings/KeyCap.h"
#include "ui/settings/KeyNames.h"
#include "ui/settings/SettingsTheme.h"

#include <QHBoxLayout>
#include <QPainter>

#include <algorithm>
#include <memory>

using KeyModifier = UploadSettings::KeyboardShortcut::KeyModifier;
using SettingsTheme::Tint;

namespace {

constexpr double kRadius = 6;
constexpr int kMargin = 4;

QStringList keysOf(const UploadSettings::KeyboardShortcut &shortcut)
{
    std::vector<KeyModifier> modifiers = shortcut.modifiers;
    std::stable_sort(modifiers.begin(), modifiers.end());
    QStringList keys;
    for (const KeyModifier modifier : modifiers)
        keys << storedText(modifier);
    return keys << shortcut.key;
}

} // namespace

KeyboardShortcutView::KeyboardShortcutView(const UploadSettings::KeyboardShortcut &shortcut,
                                           bool isHighlighted, QWidget *parent)
    : QWidget(parent)
    , m_shortcut(shortcut)
    , m_isHighlighted(isHighlighted)
    , m_row(new QHBoxLayout(this))
{
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    m_row->setContentsMargins(kMargin, kMargin, kMargin, kMargin);
    m_row->setSpacing(4);
    makeCaps();
}

void KeyboardShortcutView::setShortcut(const UploadSettings::KeyboardShortcut &shortcut,
                                       bool isHighlighted)
{
    const bool isAnother = shortcut != m_shortcut;
    m_shortcut = shortcut;
    m_isHighlighted = isHighlighted;
    if (isAnother)
        makeCaps();
    update();
}

void KeyboardShortcutView::makeCaps()
{
    while (const auto item = std::unique_ptr<QLayoutItem>(m_row->takeAt(0)))
        delete item->widget();
    const QStringList keys = keysOf(m_shortcut);
    for (const QString &key : keys)
        m_row->addWidget(new KeyCap(key, this));
    setAccessibleName(KeyNames::said(keys));
}

void KeyboardShortcutView::paintEvent(QPaintEvent *)
{
    if (!m_isHighlighted)
        return;
    QPainter painter(this);
    const QColor green = SettingsTheme::color(Tint::Green, palette());
    QColor fill = green;
    fill.setAlphaF(0.12F);
    SettingsTheme::drawPlate(painter, rect(), kRadius, fill, green);
}
