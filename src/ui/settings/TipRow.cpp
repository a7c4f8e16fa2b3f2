#include "ui/settings/TipRow.h"

#include "ui/settings/SettingsLabel.h"
#include "ui/settings/SymbolView.h"

#include <QHBoxLayout>

TipRow::TipRow(const QString &icon, const QString &text, QWidget *parent) : QWidget(parent)
{
    auto *row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(8);
    row->addWidget(new SymbolView(icon, 14, SettingsTheme::Tint::Secondary, this));
    row->addWidget(new SettingsLabel(SettingsLabel::Kind::Text, text, this), 1);
}
