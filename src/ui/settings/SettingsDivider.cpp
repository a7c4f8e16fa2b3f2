#include "ui/settings/SettingsDivider.h"

#include "ui/settings/SettingsTheme.h"

#include <QPainter>

SettingsDivider::SettingsDivider(QWidget *parent) : QWidget(parent)
{
    setFixedHeight(1);
}

void SettingsDivider::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.fillRect(rect(), SettingsTheme::borderColor(palette()));
}
