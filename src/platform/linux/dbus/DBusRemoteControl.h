#pragma once

#include "platform/RemoteControl.h"
#include "platform/linux/dbus/StartEnvironment.h"

#include <QDBusConnection>
#include <QObject>

#include <chrono>
#include <optional>
#include <vector>

class ApplicationInterface;

/// The program's name on the session bus, which one process of a session has, and the requests that
/// come to it. Made before the application object, so that a further start, which has its answer
/// from here, costs nothing and needs no display.
class DBusRemoteControl final : public RemoteControl {
public:
    explicit DBusRemoteControl(StartEnvironment environment);
    ~DBusRemoteControl() override;

    /// Makes this process the one that runs in this session; action, if given, is then its first
    /// request. Where one runs already, hands the start over to it. Gives the exit code if there is
    /// nothing left to do; problems have then been told on standard error.
    std::optional<int> begin(std::optional<RemoteAction> action,
                             std::chrono::milliseconds limit = std::chrono::seconds(10));

    void setHandlers(Handlers handlers) override;
    void close() override;
    void bringToFront(QWindow &window, const QString &activationToken,
                      const std::function<void()> &show) override;

private:
    /// A request without an action is one to show itself.
    struct Request {
        std::optional<RemoteAction> action;
        QString activationToken;
    };
    enum class Claim { Ours, Taken, Impossible };

    Claim claim();
    void receive(const Request &request);
    void deliver(const Request &request);

    QDBusConnection m_bus;
    StartEnvironment m_environment;
    QObject m_object; ///< What the bus knows as the application.
    ApplicationInterface *m_interface = nullptr; ///< Owned by m_object.
    bool m_awaitsReasonOfStart = false; ///< The bus has started us, and has yet to say why.
    bool m_isReady = false; ///< The handlers have been set and the event loop runs.
    Handlers m_handlers;
    std::vector<Request> m_early; ///< Those that came before.
};
