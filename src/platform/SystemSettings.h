#pragma once

#include <QString>

/// The desktop's own settings. Main thread.
class SystemSettings {
public:
    virtual ~SystemSettings() = default;
    SystemSettings() = default;
    SystemSettings(const SystemSettings &) = delete;
    SystemSettings &operator=(const SystemSettings &) = delete;

    /// Opens the desktop's settings of privacy and permissions, or where it has none of its own
    /// whatever handles address, and returns at once. True if something was started; not
    /// available: false.
    [[nodiscard]] virtual bool openPrivacySettings(const QString &address) = 0;
};
