#pragma once

#include "platform/UserNotificationCenter.h"

#include <QDBusConnection>
#include <QObject>

#include <optional>
#include <vector>

/// org.freedesktop.Notifications on the session bus.
class FreedesktopNotificationCenter final : public QObject, public UserNotificationCenter {
    Q_OBJECT

public:
    FreedesktopNotificationCenter();
    /// Sends what is still to be sent.
    ~FreedesktopNotificationCenter() override;

    void setDelegate(UserNotificationCenterDelegate *delegate) override;
    void requestAuthorization(
        std::function<void(bool granted, const QString &error)> completion) override;
    void add(const UserNotification &notification,
             std::function<void(const QString &error)> completion) override;

private:
    struct Pending {
        UserNotification notification;
        std::function<void(const QString &error)> completion;
    };

    void askCapabilities(std::function<void(const QString &error)> completion);
    void deliver(const Pending &pending);
    void deliverWaiting();

    QDBusConnection m_bus;
    UserNotificationCenterDelegate *m_delegate = nullptr;
    /// What the server that runs now can do; absent when it is not known yet.
    std::optional<QStringList> m_capabilities;
    std::vector<Pending> m_waiting;
};
