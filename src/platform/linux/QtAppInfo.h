#pragma once

#include "platform/AppInfo.h"

/// The version that the application object was given, and a build number.
class QtAppInfo final : public AppInfo {
public:
    /// build may be empty, which counts as not known.
    explicit QtAppInfo(const QString &build);

    std::optional<QString> version() const override;
    std::optional<QString> build() const override;

private:
    QString m_build;
};
