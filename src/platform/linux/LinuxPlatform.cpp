#include "platform/linux/LinuxPlatform.h"

#include "platform/linux/FileSecretStore.h"
#include "platform/linux/FreedesktopNotificationCenter.h"
#include "platform/linux/InotifyFolderWatcher.h"
#include "platform/linux/LibsecretStore.h"
#include "platform/linux/QtFolderAccessPanel.h"
#include "platform/linux/QtPasteboard.h"
#include "platform/linux/QtStandardFolders.h"
#include "platform/linux/SettingsFileStore.h"
#include "platform/linux/TrayMenuBarExtra.h"

LinuxPlatform::LinuxPlatform()
{
    folders = std::make_unique<QtStandardFolders>();
    preferences = std::make_unique<SettingsFileStore>();
    secrets = std::make_unique<LibsecretStore>(std::make_unique<FileSecretStore>());
    notifications = std::make_unique<FreedesktopNotificationCenter>();
    pasteboard = std::make_unique<QtPasteboard>();
    menuBarExtra = std::make_unique<TrayMenuBarExtra>();
    folderAccessPanel = std::make_unique<QtFolderAccessPanel>();
    makeFolderWatcher = [] {
        return std::make_unique<InotifyFolderWatcher>();
    };
}
