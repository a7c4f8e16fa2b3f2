#include "ui/settings/SettingsView.h"

SettingsView::SettingsView()
{
    setObjectName(QStringLiteral("settingsWindow"));
    setWindowTitle(QStringLiteral("Settings"));
    setFixedSize(480, 520);
}
