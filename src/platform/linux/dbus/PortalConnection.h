#pragma once

#include <QDBusConnection>
#include <QDBusPendingCall>
#include <QString>

#include <functional>
#include <optional>

class QObject;

/// A connection to the session bus for the shortcuts of the desktop portal alone: the portal takes
/// the first call on a connection for the one that says who is calling, and the toolkit calls it,
/// too. Made with the first use; the portal closes what is left open when the connection goes.
class PortalConnection {
public:
    PortalConnection() = default;
    ~PortalConnection();
    PortalConnection(const PortalConnection &) = delete;
    PortalConnection &operator=(const PortalConnection &) = delete;

    QDBusConnection bus();

    /// Closes a session of the portal.
    void closeSession(const QString &path);

    /// Calls done, from the event loop, once no session is being closed: there cannot be two of the
    /// same name. Never once the context is gone.
    void whenClosed(QObject *context, std::function<void()> done);

private:
    QString m_name; ///< As QDBusConnection knows it; empty before the first use.
    std::optional<QDBusPendingCall> m_closing; ///< The latest.
};
