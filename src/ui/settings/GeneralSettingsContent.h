#pragma once

#include "ui/settings/SettingsPage.h"

class AppInfo;
class LoginItem;
class SettingsToggle;
class SystemSettings;

/// The page of the application itself: starting at login, the permissions it needs, its version.
/// The switch acts at once and keeps what the user chose, whatever came of it.
class GeneralSettingsContent : public SettingsPage {
    Q_OBJECT

public:
    /// What the page works with. Nothing is owned; all must outlive it.
    struct Services {
        LoginItem &loginItem;
        SystemSettings &systemSettings;
        const AppInfo &appInfo;
    };

    GeneralSettingsContent(bool launchAtLogin, const Services &services, QWidget *parent = nullptr);

Q_SIGNALS:
    /// The user has switched starting at login, which has been acted on.
    void launchAtLoginChanged(bool launchAtLogin);

private:
    void buildStartup(bool launchAtLogin);
    void buildPermissions();
    void buildAbout();

    Services m_services;
};
