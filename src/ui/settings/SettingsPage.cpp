#include "ui/settings/SettingsPage.h"

#include "ui/settings/SettingsCard.h"
#include "ui/settings/SettingsScrollBar.h"

SettingsPage::SettingsPage(QWidget *parent) : QWidget(parent)
{
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(16, 12, 16 - SettingsScrollBar::kWidth, 12);
    m_stack = new QVBoxLayout;
    m_stack->setSpacing(10);
    layout->addLayout(m_stack);
    layout->addStretch();
}

SettingsCard *SettingsPage::addCard(const QString &title, const QString &icon)
{
    auto *card = new SettingsCard(title, icon, this);
    m_stack->addWidget(card);
    return card;
}
