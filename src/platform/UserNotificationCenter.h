#pragma once

#include <QString>

#include <functional>

/// One notification to the user.
struct UserNotification {
    enum class Sound {
        Default,
        Critical, ///< The one for errors.
    };

    QString identifier; ///< Unique, so that no notification replaces another.
    QString title;
    QString body; ///< Plain text; may be empty.
    Sound sound = Sound::Default;

    bool operator==(const UserNotification &) const = default;
};

/// How a notification shows itself while the application is in front.
struct NotificationPresentation {
    bool banner = false;
    bool sound = false;

    bool operator==(const NotificationPresentation &) const = default;
};

/// Asked by the notification center before each delivery.
class UserNotificationCenterDelegate {
public:
    virtual ~UserNotificationCenterDelegate() = default;
    UserNotificationCenterDelegate() = default;
    UserNotificationCenterDelegate(const UserNotificationCenterDelegate &) = delete;
    UserNotificationCenterDelegate &operator=(const UserNotificationCenterDelegate &) = delete;

    virtual NotificationPresentation willPresent(const UserNotification &notification) = 0;
};

/// The desktop's notifications. Nothing waits: completions are called later, from the event loop.
/// Main thread. Not available: completions carry the error.
class UserNotificationCenter {
public:
    virtual ~UserNotificationCenter() = default;
    UserNotificationCenter() = default;
    UserNotificationCenter(const UserNotificationCenter &) = delete;
    UserNotificationCenter &operator=(const UserNotificationCenter &) = delete;

    /// The delegate is not owned and must outlive the center's use. Null: banner and sound.
    virtual void setDelegate(UserNotificationCenterDelegate *delegate) = 0;

    /// Asks whether notifications may be shown; error is empty if there was none.
    virtual void
    requestAuthorization(std::function<void(bool granted, const QString &error)> completion) = 0;

    /// Delivers in the order of the calls; error is empty on success.
    virtual void add(const UserNotification &notification,
                     std::function<void(const QString &error)> completion) = 0;
};
