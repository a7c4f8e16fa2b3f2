#include "ui/settings/SettingsCard.h"

#include "ui/settings/SettingsTheme.h"
#include "ui/settings/SymbolView.h"

#include <QLabel>
#include <QPainter>

SettingsCard::SettingsCard(const QString &title, const QString &icon, QWidget *parent)
    : QWidget(parent), m_body(new QVBoxLayout)
{
    setAccessibleName(title);
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Maximum);

    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(12, 9, 12, 11);
    layout->setSpacing(8);
    auto *header = new QHBoxLayout;
    header->setSpacing(8);
    auto *symbol = new SymbolView(icon, 13, SettingsTheme::Tint::Accent, this);
    symbol->setPlate(true);
    auto *label = new QLabel(title, this);
    label->setFont(SettingsTheme::font(13, QFont::DemiBold));
    header->addWidget(symbol);
    header->addWidget(label, 1);
    layout->addLayout(header);
    m_body->setSpacing(8);
    layout->addLayout(m_body);
}

void SettingsCard::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    QColor outline = SettingsTheme::borderColor(palette());
    outline.setAlphaF(0.6F);
    SettingsTheme::drawPlate(painter, rect(), 10, SettingsTheme::cardBackground(palette()),
                             outline);
}
