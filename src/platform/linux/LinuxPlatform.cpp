#include "platform/linux/LinuxPlatform.h"

#include "platform/linux/AutostartEntry.h"
#include "platform/linux/DesktopSystemSettings.h"
#include "platform/linux/FileSecretStore.h"
#include "platform/linux/FreedesktopNotificationCenter.h"
#include "platform/linux/InotifyFolderWatcher.h"
#include "platform/linux/LibsecretStore.h"
#include "platform/linux/QtAppInfo.h"
#include "platform/linux/QtFolderAccessPanel.h"
#include "platform/linux/QtStandardFolders.h"
#include "platform/linux/SettingsFileStore.h"
#include "platform/linux/TrayMenuBarExtra.h"
#include "platform/linux/x11/X11KeyboardLayout.h"
#include "platform/linux/x11/X11EventTap.h"
#include "platform/linux/x11/X11Pasteboard.h"

#include <QGuiApplication>

#include <utility>

LinuxPlatform::LinuxPlatform(std::unique_ptr<DBusRemoteControl> dbusRemoteControl)
{
    remoteControl = std::move(dbusRemoteControl);
    folders = std::make_unique<QtStandardFolders>();
    preferences = std::make_unique<SettingsFileStore>();
    secrets = std::make_unique<LibsecretStore>(std::make_unique<FileSecretStore>());
    notifications = std::make_unique<FreedesktopNotificationCenter>();
    pasteboard = std::make_unique<X11Pasteboard>();
    menuBarExtra = std::make_unique<TrayMenuBarExtra>();
    folderAccessPanel = std::make_unique<QtFolderAccessPanel>();
    keyboardLayout = std::make_unique<X11KeyboardLayout>();
    auto autostart = std::make_unique<AutostartEntry>(QCoreApplication::applicationFilePath());
    autostart->followMovedProgram();
    loginItem = std::move(autostart);
    systemSettings = std::make_unique<DesktopSystemSettings>();
    appInfo = std::make_unique<QtAppInfo>(QStringLiteral(TESSERY_BUILD));
    makeEventTap = [](const std::optional<KeyPress> &wanted,
                      EventTap::OnKeyDown onKeyDown) -> std::unique_ptr<EventTap> {
        // The X display of a Wayland session hears only the keys for its own windows.
        if (!qGuiApp->nativeInterface<QNativeInterface::QX11Application>())
            return nullptr;
        return X11EventTap::make(wanted, std::move(onKeyDown));
    };
    makeFolderWatcher = [] {
        return std::make_unique<InotifyFolderWatcher>();
    };
}
