#pragma once

#include "platform/EventTap.h"

#include <QDBusConnection>
#include <QObject>

#include <memory>

class PortalConnection;

/// EventTap by the service of the desktop that is found on the session bus: KDE's, else the
/// portal's. For Wayland sessions, in which no program hears the keys of others by itself.
class SessionBusEventTap final : public EventTap {
public:
    enum class Service { KGlobalAccel, Portal, None };

    /// What the bus tells: KDE's service is running, and so is the compositor that it belongs to;
    /// the portal is running or can be started.
    struct Found {
        bool kGlobalAccel = false;
        bool kdeCompositor = false;
        bool portal = false;
    };
    static Service choose(const Found &found);

    /// Never null; decides later. The connection is for the portal.
    static std::unique_ptr<EventTap> make(const std::shared_ptr<PortalConnection> &portal,
                                          const std::optional<KeyPress> &wanted,
                                          OnKeyDown onKeyDown, OnDecided onDecided);

private:
    SessionBusEventTap(std::shared_ptr<PortalConnection> portal, const KeyPress &wanted,
                       OnKeyDown onKeyDown, OnDecided onDecided);
    void lookForServices();
    void answered();
    void use(Service service);
    void useKGlobalAccelWithKeymap();
    void useKGlobalAccel(const QString &shifted);

    std::shared_ptr<PortalConnection> m_portal;
    KeyPress m_wanted;
    OnKeyDown m_onKeyDown;
    OnDecided m_onDecided;
    Found m_found;
    int m_openQuestions = 4;
    std::unique_ptr<EventTap> m_tap; ///< Null until the service has been found.
    QObject m_context; ///< Of the answers; goes first.
};
