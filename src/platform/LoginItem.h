#pragma once

#include <QString>

/// Whether the desktop starts this program when the user logs in. Main thread. Not available:
/// the item is off, and registering gives the reason.
class LoginItem {
public:
    virtual ~LoginItem() = default;
    LoginItem() = default;
    LoginItem(const LoginItem &) = delete;
    LoginItem &operator=(const LoginItem &) = delete;

    /// Whether the next login would start this very program. Anything less counts as off.
    virtual bool isEnabled() const = 0;

    /// Has the program started at login from now on. Gives the reason of a failure, empty on
    /// success; registering what is registered is one.
    [[nodiscard]] virtual QString registerItem() = 0;

    /// Has it not started any more. Gives the reason of a failure, empty on success.
    [[nodiscard]] virtual QString unregisterItem() = 0;
};
