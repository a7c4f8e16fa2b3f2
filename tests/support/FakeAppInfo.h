#pragma once

#include "platform/AppInfo.h"

/// A version and a build to choose.
class FakeAppInfo final : public AppInfo {
public:
    std::optional<QString> version() const override { return versionText; }
    std::optional<QString> build() const override { return buildText; }

    std::optional<QString> versionText = QStringLiteral("2.3.4");
    std::optional<QString> buildText = QStringLiteral("567");
};
