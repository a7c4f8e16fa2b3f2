#pragma once

#include "platform/SystemSettings.h"

#include <QStringList>

#include <vector>

/// The settings program of the desktop that runs, at its page of privacy or permissions where it
/// has one. Programs are started on their own: they neither end with this one nor write to its
/// output.
class DesktopSystemSettings final : public SystemSettings {
public:
    bool openPrivacySettings(const QString &address) override;
};

/// The commands that open the settings of the desktops named by currentDesktop
/// (XDG_CURRENT_DESKTOP: names with colons between), the best first.
std::vector<QStringList> privacySettingsCommands(const QString &currentDesktop);
