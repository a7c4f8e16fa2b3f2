#pragma once

#include <QString>

#include <optional>

/// What the program was built as.
class AppInfo {
public:
    virtual ~AppInfo() = default;
    AppInfo() = default;
    AppInfo(const AppInfo &) = delete;
    AppInfo &operator=(const AppInfo &) = delete;

    /// The version as people call it ("1.2.3"); absent when it is not known.
    virtual std::optional<QString> version() const = 0;

    /// The number of the build; absent when it is not known.
    virtual std::optional<QString> build() const = 0;
};
