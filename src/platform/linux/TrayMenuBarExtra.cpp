#include "platform/linux/TrayMenuBarExtra.h"

#include "platform/linux/DBusMenu.h"
#include "platform/linux/MenuLabel.h"
#include "platform/linux/StatusNotifierItem.h"
#include "platform/linux/dbus/BusCall.h"

#include <QCursor>
#include <QDBusMessage>
#include <QDBusServiceWatcher>
#include <QDBusVariant>
#include <QGuiApplication>

#include <chrono>
#include <utility>

using namespace std::chrono_literals;
using namespace Qt::StringLiterals;

namespace {

constexpr QLatin1String kWatcher("org.kde.StatusNotifierWatcher");
constexpr QLatin1String kWatcherPath("/StatusNotifierWatcher");
// The paths at which panels look, since what they are told is only who the item is.
constexpr QLatin1String kItemPath("/StatusNotifierItem");
constexpr QLatin1String kMenuPath("/MenuBar");

/// At login the XEmbed tray of a panel may be up before its StatusNotifier host, which is the
/// better one of the two.
constexpr auto kXembedGrace = 2s;

} // namespace

TrayMenuBarExtra::TrayMenuBarExtra()
    : m_bus(QDBusConnection::sessionBus()), m_xembedTray([this] { m_xembedGrace.start(); })
{
    m_xembedGrace.setSingleShot(true);
    m_xembedGrace.setInterval(kXembedGrace);
    connect(&m_xembedGrace, &QTimer::timeout, this, [this] {
        if (!m_hasHost && m_xembedTray.isPresent())
            showInXEmbedTray();
    });
}

TrayMenuBarExtra::~TrayMenuBarExtra()
{
    m_bus.unregisterObject(kItemPath);
    m_bus.unregisterObject(kMenuPath);
}

void TrayMenuBarExtra::show(const QString &title, const QIcon &icon,
                            std::function<void()> aboutToShow)
{
    m_title = title;
    m_icon = icon;
    m_aboutToShow = std::move(aboutToShow);
    exportItem();

    auto *const watcher =
        new QDBusServiceWatcher(kWatcher, m_bus, QDBusServiceWatcher::WatchForOwnerChange, this);
    connect(watcher, &QDBusServiceWatcher::serviceRegistered, this,
            &TrayMenuBarExtra::registerItem);
    connect(watcher, &QDBusServiceWatcher::serviceUnregistered, this,
            &TrayMenuBarExtra::onHostLost);
    // Signals of a service that may come and go can only be connected to by name.
    m_bus.connect(kWatcher, kWatcherPath, kWatcher, u"StatusNotifierHostRegistered"_s, this,
                  SLOT(onHostRegistered()));
    m_bus.connect(kWatcher, kWatcherPath, kWatcher, u"StatusNotifierHostUnregistered"_s, this,
                  SLOT(onHostLost()));
    registerItem();
}

void TrayMenuBarExtra::exportItem()
{
    new StatusNotifierItem(&m_itemObject, m_title, m_icon, kMenuPath,
                           [this](int x, int y) { popUpMenu(QPoint(x, y)); });
    m_panelMenu = new DBusMenu(&m_menuObject, [this] { m_aboutToShow(); });
    m_panelMenu->setItems(m_items);
    m_bus.registerObject(kItemPath, &m_itemObject, QDBusConnection::ExportAdaptors);
    m_bus.registerObject(kMenuPath, &m_menuObject, QDBusConnection::ExportAdaptors);
}

void TrayMenuBarExtra::registerItem()
{
    m_isRegistered = false;
    QDBusMessage call = QDBusMessage::createMethodCall(kWatcher, kWatcherPath, kWatcher,
                                                       u"RegisterStatusNotifierItem"_s);
    call.setArguments({m_bus.baseService()});
    whenAnswered(callBus(m_bus, call), this, [this](const QDBusPendingReply<> &reply) {
        m_isRegistered = !reply.isError();
        if (m_isRegistered)
            lookForHost();
        else
            onHostLost();
    });
}

/// A watcher may run without a panel that shows what it knows.
void TrayMenuBarExtra::lookForHost()
{
    QDBusMessage call = QDBusMessage::createMethodCall(
        kWatcher, kWatcherPath, u"org.freedesktop.DBus.Properties"_s, u"Get"_s);
    call.setArguments({QString(kWatcher), u"IsStatusNotifierHostRegistered"_s});
    whenAnswered<QDBusPendingReply<QDBusVariant>>(
        callBus(m_bus, call), this, [this](const QDBusPendingReply<QDBusVariant> &reply) {
            if (!reply.isError() && reply.value().variant().toBool())
                onHostRegistered();
            else
                onHostLost();
        });
}

void TrayMenuBarExtra::onHostRegistered()
{
    // Watchers have their name before they can be asked, and a host only after that.
    if (!m_isRegistered) {
        registerItem();
        return;
    }
    m_hasHost = true;
    m_xembedGrace.stop();
    m_xembedIcon.reset();
    becomeKnown();
}

void TrayMenuBarExtra::onHostLost()
{
    m_hasHost = false;
    m_xembedGrace.start();
    becomeKnown();
}

void TrayMenuBarExtra::becomeKnown()
{
    m_isKnown = true;
    for (const auto &then : std::exchange(m_whenKnown, {}))
        then();
}

std::optional<bool> TrayMenuBarExtra::isShown() const
{
    if (!m_isKnown)
        return std::nullopt;
    return m_hasHost || m_xembedTray.isPresent();
}

void TrayMenuBarExtra::whenKnown(std::function<void()> then)
{
    if (m_isKnown)
        then();
    else
        m_whenKnown.push_back(std::move(then));
}

void TrayMenuBarExtra::showInXEmbedTray()
{
    if (m_xembedIcon)
        return;
    fillMenu();
    m_xembedIcon = std::make_unique<QSystemTrayIcon>(m_icon);
    m_xembedIcon->setToolTip(m_title);
    m_xembedIcon->setContextMenu(m_ownMenu.get());
    connect(m_xembedIcon.get(), &QSystemTrayIcon::activated, this,
            [this](QSystemTrayIcon::ActivationReason reason) {
                if (reason == QSystemTrayIcon::Trigger)
                    popUpMenu(QCursor::pos());
            });
    m_xembedIcon->show();
}

void TrayMenuBarExtra::setMenu(std::vector<MenuItem> items)
{
    m_items = std::move(items);
    if (m_panelMenu)
        m_panelMenu->setItems(m_items);
    if (m_ownMenu)
        fillMenu();
}

void TrayMenuBarExtra::popUpMenu(QPoint position)
{
    // There the toolkit makes a window as large as the screen of it.
    if (m_openMenuWindow && QGuiApplication::platformName().startsWith(u"wayland")) {
        m_openMenuWindow();
        return;
    }
    fillMenu();
    m_ownMenu->popup(position);
}

void TrayMenuBarExtra::fillMenu()
{
    if (!m_ownMenu) {
        m_ownMenu = std::make_unique<QMenu>();
        connect(m_ownMenu.get(), &QMenu::aboutToShow, this, [this] { m_aboutToShow(); });
        connect(m_ownMenu.get(), &QMenu::triggered, this, [this](const QAction *action) {
            // A copy, since acting may replace the items.
            const qsizetype index = m_ownMenu->actions().indexOf(action);
            if (const auto act = m_items.at(static_cast<std::size_t>(index)).action)
                act();
        });
    }
    // Entries are changed in place, so that an open menu stays as it is under the pointer.
    for (std::size_t index = 0; index < m_items.size(); ++index) {
        const MenuItem &item = m_items[index];
        const QList<QAction *> actions = m_ownMenu->actions();
        const auto position = static_cast<qsizetype>(index);
        QAction *const action =
            position < actions.size() ? actions.at(position) : m_ownMenu->addAction(QString());
        action->setSeparator(item.kind == MenuItem::Kind::Separator);
        action->setText(MenuLabel::forMenu(item.text, item.caption));
        action->setIcon(item.icon);
        action->setShortcut(item.shortcut);
        action->setEnabled(item.enabled); // Texts too, to be legible.
    }
    const QList<QAction *> actions = m_ownMenu->actions();
    for (auto index = static_cast<qsizetype>(m_items.size()); index < actions.size(); ++index)
        delete actions.at(index);
}
