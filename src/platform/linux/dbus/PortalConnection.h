#pragma once

#include "platform/linux/dbus/PortalRequest.h"

#include <QDBusConnection>
#include <QDBusPendingCall>
#include <QPointer>
#include <QString>

#include <functional>
#include <memory>
#include <optional>

/// A connection to the session bus for the shortcuts of the desktop portal alone: the portal takes
/// the first call on a connection for the one that says who is calling, and the toolkit calls it,
/// too. Made with the first use; the portal closes what is left open when the connection goes.
class PortalConnection {
public:
    /// What a portal calls the path of the session that it has made.
    static const QString kSessionHandle;

    PortalConnection() = default;
    ~PortalConnection();
    PortalConnection(const PortalConnection &) = delete;
    PortalConnection &operator=(const PortalConnection &) = delete;

    QDBusConnection bus();

    /// Closes a session of the portal.
    void closeSession(const QString &path);

    /// Closes the session that a request under way makes, as soon as it is there.
    void closeOnceMade(std::unique_ptr<PortalRequest> request);

    /// To be called when the portal has ended: it has no session, and makes none.
    void forgetSessions() { m_unwanted.reset(); }

    /// Calls done, from the event loop, once no session is being closed, or made only to be closed:
    /// there cannot be two of the same name. Never once the context is gone. Of several that wait,
    /// only the last one is called.
    void whenClosed(QObject *context, std::function<void()> done);

private:
    QString m_name; ///< As QDBusConnection knows it; empty before the first use.
    std::unique_ptr<PortalRequest> m_unwanted; ///< Makes a session that nobody wants. Null: none.
    std::function<void()> m_waiting; ///< To be called when that has ended.
    std::optional<QDBusPendingCall> m_closing; ///< The latest.
};
