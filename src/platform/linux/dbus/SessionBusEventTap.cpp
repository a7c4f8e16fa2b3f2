#include "platform/linux/dbus/SessionBusEventTap.h"

#include "base/Log.h"
#include "platform/linux/DeafEventTap.h"
#include "platform/linux/HardwareKeys.h"
#include "platform/linux/dbus/BusCall.h"
#include "platform/linux/dbus/KGlobalAccelEventTap.h"
#include "platform/linux/dbus/PortalEventTap.h"
#include "platform/linux/dbus/PortalNames.h"
#include "platform/linux/dbus/PressNames.h"
#include "platform/linux/wayland/WaylandKeymap.h"
#include "platform/linux/wayland/WaylandKeymapReader.h"

#include <QDBusMessage>
#include <QFutureWatcher>

#include <chrono>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

QDBusPendingCall askBus(const QString &method, const QVariantList &arguments = {})
{
    QDBusMessage call = QDBusMessage::createMethodCall(
        u"org.freedesktop.DBus"_s, u"/org/freedesktop/DBus"_s, u"org.freedesktop.DBus"_s, method);
    call.setArguments(arguments);
    return callBus(QDBusConnection::sessionBus(), call);
}

/// KDE's compositor, which is the one that hears keys for KDE's service. Elsewhere the bus may have
/// started the service for some KDE program: it grants every key then, and hears X programs alone.
constexpr QLatin1String kKdeCompositor("org.kde.KWin");

/// How long the compositor may take for its keymap: just after the login it is busy.
constexpr std::chrono::milliseconds kKeymapLimit(10000);

} // namespace

SessionBusEventTap::Service SessionBusEventTap::choose(const Found &found)
{
    // KDE's own service asks the user nothing, and tells truthfully what is taken.
    if (found.kGlobalAccel && found.kdeCompositor)
        return Service::KGlobalAccel;
    return found.portal ? Service::Portal : Service::None;
}

std::unique_ptr<EventTap> SessionBusEventTap::make(const std::shared_ptr<PortalConnection> &portal,
                                                   const std::optional<KeyPress> &wanted,
                                                   OnKeyDown onKeyDown, OnDecided onDecided)
{
    if (!wanted || !HardwareKeys::position(wanted->keyCode)) {
        onDecided(true);
        return std::make_unique<DeafEventTap>();
    }
    return std::unique_ptr<EventTap>(
        new SessionBusEventTap(portal, *wanted, std::move(onKeyDown), std::move(onDecided)));
}

SessionBusEventTap::SessionBusEventTap(std::shared_ptr<PortalConnection> portal,
                                       const KeyPress &wanted, OnKeyDown onKeyDown,
                                       OnDecided onDecided)
    : m_portal(std::move(portal))
    , m_wanted(wanted)
    , m_onKeyDown(std::move(onKeyDown))
    , m_onDecided(std::move(onDecided))
{
    lookForServices();
}

/// The questions are sent together, and answered in any order.
void SessionBusEventTap::lookForServices()
{
    const auto lookFor = [this](const QString &name, bool Found::*isThere) {
        whenAnswered<QDBusPendingReply<bool>>(
            askBus(u"NameHasOwner"_s, {name}), &m_context,
            [this, isThere](const QDBusPendingReply<bool> &reply) {
                m_found.*isThere |= !reply.isError() && reply.value();
                answered();
            });
    };
    lookFor(KGlobalAccelEventTap::kService, &Found::kGlobalAccel);
    lookFor(kKdeCompositor, &Found::kdeCompositor);
    lookFor(PortalNames::kService, &Found::portal);
    whenAnswered<QDBusPendingReply<QStringList>>(
        askBus(u"ListActivatableNames"_s), &m_context,
        [this](const QDBusPendingReply<QStringList> &reply) {
            m_found.portal |= !reply.isError() && reply.value().contains(PortalNames::kService);
            answered();
        });
}

void SessionBusEventTap::answered()
{
    if (--m_openQuestions == 0)
        use(choose(m_found));
}

void SessionBusEventTap::use(Service service)
{
    switch (service) {
    case Service::KGlobalAccel:
        if (PressNames::needsShifted(m_wanted))
            useKGlobalAccelWithKeymap();
        else
            useKGlobalAccel({});
        break;
    case Service::Portal:
        m_tap = std::make_unique<PortalEventTap>(m_portal, m_wanted, m_onKeyDown, m_onDecided);
        break;
    case Service::None:
        Log::line(u"⚠️ Global hotkey: this desktop offers programs no global shortcuts"_s);
        // From a copy, since the handler may destroy this object.
        const OnDecided onDecided = m_onDecided;
        onDecided(false);
        break;
    }
}

void SessionBusEventTap::useKGlobalAccelWithKeymap()
{
    using Watcher = QFutureWatcher<std::optional<WaylandKeymap>>;
    auto *const watcher = new Watcher(&m_context);
    QObject::connect(watcher, &Watcher::finished, &m_context, [this, watcher] {
        watcher->deleteLater();
        const std::optional<WaylandKeymap> keymap = watcher->result();
        const auto symbol = HardwareKeys::symbol(m_wanted.keyCode);
        if (!keymap)
            Log::line(u"⚠️ Global hotkey: the compositor does not tell its keyboard layout"_s);
        useKGlobalAccel(keymap && symbol ? keymap->shifted(QLatin1Char(*symbol)) : QString());
    });
    watcher->setFuture(WaylandKeymapReader::readBesideTheMainThread(kKeymapLimit));
}

void SessionBusEventTap::useKGlobalAccel(const QString &shifted)
{
    m_tap = std::make_unique<KGlobalAccelEventTap>(QDBusConnection::sessionBus(), m_wanted,
                                                   PressNames::kdeKeys(m_wanted, shifted),
                                                   m_onKeyDown, m_onDecided);
}
