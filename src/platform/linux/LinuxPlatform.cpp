#include "platform/linux/LinuxPlatform.h"

#include "platform/linux/AutostartEntry.h"
#include "platform/linux/DesktopSystemSettings.h"
#include "platform/linux/FileSecretStore.h"
#include "platform/linux/FreedesktopNotificationCenter.h"
#include "platform/linux/InotifyFolderWatcher.h"
#include "platform/linux/LibsecretStore.h"
#include "platform/linux/NoPasteboard.h"
#include "platform/linux/QtAppInfo.h"
#include "platform/linux/QtFolderAccessPanel.h"
#include "platform/linux/QtStandardFolders.h"
#include "platform/linux/SettingsFileStore.h"
#include "platform/linux/TrayMenuBarExtra.h"
#include "platform/linux/dbus/PortalConnection.h"
#include "platform/linux/dbus/SessionBusEventTap.h"
#include "platform/linux/wayland/WaylandKeyboardLayout.h"
#include "platform/linux/wayland/WaylandPasteboard.h"
#include "platform/linux/x11/X11KeyboardLayout.h"
#include "platform/linux/x11/X11EventTap.h"
#include "platform/linux/x11/X11Pasteboard.h"

#include <QGuiApplication>

#include <utility>

namespace {

/// Whether the toolkit shows our windows on an X display.
bool isOnXDisplay()
{
    return qGuiApp->nativeInterface<QNativeInterface::QX11Application>() != nullptr;
}

std::unique_ptr<Pasteboard> makePasteboard(const Surroundings &surroundings)
{
    // Whatever the windows are shown on: what X programs see of it may be much less.
    if (surroundings.offersDataControl)
        return std::make_unique<WaylandPasteboard>();
    // Compositors that do not share their clipboard keep that of the X display in step with it.
    if (isOnXDisplay())
        return std::make_unique<X11Pasteboard>();
    return std::make_unique<NoPasteboard>();
}

} // namespace

LinuxPlatform::LinuxPlatform(const Surroundings &surroundings,
                             std::unique_ptr<DBusRemoteControl> dbusRemoteControl)
{
    remoteControl = std::move(dbusRemoteControl);
    folders = std::make_unique<QtStandardFolders>();
    preferences = std::make_unique<SettingsFileStore>();
    secrets = std::make_unique<LibsecretStore>(std::make_unique<FileSecretStore>());
    notifications = std::make_unique<FreedesktopNotificationCenter>();
    pasteboard = makePasteboard(surroundings);
    menuBarExtra = std::make_unique<TrayMenuBarExtra>();
    folderAccessPanel = std::make_unique<QtFolderAccessPanel>();
    if (isOnXDisplay())
        keyboardLayout = std::make_unique<X11KeyboardLayout>();
    else
        keyboardLayout = std::make_unique<WaylandKeyboardLayout>();
    auto autostart = std::make_unique<AutostartEntry>(QCoreApplication::applicationFilePath());
    autostart->followMovedProgram();
    loginItem = std::move(autostart);
    systemSettings = std::make_unique<DesktopSystemSettings>();
    appInfo = std::make_unique<QtAppInfo>(QStringLiteral(TESSERY_BUILD));
    if (surroundings.isWaylandSession) {
        makeEventTap = [portal = std::make_shared<PortalConnection>()](
                           const std::optional<KeyPress> &wanted, EventTap::OnKeyDown onKeyDown,
                           EventTap::OnDecided onDecided) {
            return SessionBusEventTap::make(portal, wanted, std::move(onKeyDown),
                                            std::move(onDecided));
        };
    } else {
        makeEventTap = [](const std::optional<KeyPress> &wanted, EventTap::OnKeyDown onKeyDown,
                          const EventTap::OnDecided &onDecided) -> std::unique_ptr<EventTap> {
            auto tap = isOnXDisplay() ? X11EventTap::make(wanted, std::move(onKeyDown)) : nullptr;
            onDecided(tap != nullptr);
            return tap;
        };
    }
    makeFolderWatcher = InotifyFolderWatcher::factory();
}
