#pragma once

#include "platform/MenuBarExtra.h"
#include "platform/linux/XEmbedTray.h"

#include <QDBusConnection>
#include <QMenu>
#include <QSystemTrayIcon>
#include <QTimer>

#include <memory>

class DBusMenu;

/// A StatusNotifierItem, whenever and as often as the desktop brings up a host for it; where there
/// is none, an icon in an XEmbed tray.
class TrayMenuBarExtra final : public QObject, public MenuBarExtra {
    Q_OBJECT

public:
    TrayMenuBarExtra();
    ~TrayMenuBarExtra() override;

    void show(const QString &title, const QIcon &icon, std::function<void()> aboutToShow) override;
    void setMenu(std::vector<MenuItem> items) override;
    void setMenuWindow(std::function<void()> open) override { m_openMenuWindow = std::move(open); }
    std::optional<bool> isShown() const override;
    void whenKnown(std::function<void()> then) override;

private Q_SLOTS:
    void onHostRegistered();
    void onHostLost();

private:
    void exportItem();
    void registerItem();
    void lookForHost();
    void becomeKnown();
    void showInXEmbedTray();
    void fillMenu();
    void popUpMenu(QPoint position);

    QDBusConnection m_bus;
    bool m_isRegistered = false; ///< The watcher knows the item.
    bool m_hasHost = false; ///< A panel shows the StatusNotifierItem.
    bool m_isKnown = false; ///< It has turned out whether there is a host.
    std::vector<std::function<void()>> m_whenKnown;
    XEmbedTray m_xembedTray;
    QTimer m_xembedGrace;
    QString m_title;
    QIcon m_icon;
    std::function<void()> m_aboutToShow;
    std::function<void()> m_openMenuWindow;
    std::vector<MenuItem> m_items;
    QObject m_itemObject; ///< What the bus knows as the item.
    QObject m_menuObject; ///< What the bus knows as its menu.
    DBusMenu *m_panelMenu = nullptr; ///< Drawn by the panel. Owned by m_menuObject.
    std::unique_ptr<QMenu> m_ownMenu; ///< Drawn by us, once that is asked for.
    std::unique_ptr<QSystemTrayIcon> m_xembedIcon;
};
