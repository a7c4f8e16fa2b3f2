#pragma once

#include "platform/AppInfo.h"
#include "platform/EventTap.h"
#include "platform/FolderAccessPanel.h"
#include "platform/FolderWatcher.h"
#include "platform/KeyboardLayout.h"
#include "platform/LoginItem.h"
#include "platform/MenuBarExtra.h"
#include "platform/Pasteboard.h"
#include "platform/PreferencesStore.h"
#include "platform/RemoteControl.h"
#include "platform/SecretStore.h"
#include "platform/StandardFolders.h"
#include "platform/SystemSettings.h"
#include "platform/UserNotificationCenter.h"

#include <functional>
#include <memory>

/// The services of the desktop, as one bundle. No member is null once a back end has filled it.
struct Platform {
    std::unique_ptr<StandardFolders> folders;
    std::unique_ptr<PreferencesStore> preferences;
    std::unique_ptr<SecretStore> secrets;
    std::unique_ptr<UserNotificationCenter> notifications;
    std::unique_ptr<Pasteboard> pasteboard;
    std::unique_ptr<MenuBarExtra> menuBarExtra;
    std::unique_ptr<FolderAccessPanel> folderAccessPanel;
    std::unique_ptr<KeyboardLayout> keyboardLayout;
    std::unique_ptr<LoginItem> loginItem;
    std::unique_ptr<SystemSettings> systemSettings;
    std::unique_ptr<AppInfo> appInfo;
    std::unique_ptr<RemoteControl> remoteControl;
    std::function<std::unique_ptr<FolderWatcher>()> makeFolderWatcher;
    EventTap::Factory makeEventTap;

    /// The platform in use, for the operations of the settings record that are static by nature;
    /// everybody else is given what it needs. Must have been set.
    static Platform &current();

    /// Not owned; must outlive its use. Null to forget it.
    static void setCurrent(Platform *platform);
};
