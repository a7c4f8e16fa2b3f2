#pragma once

#include "platform/SystemSettings.h"

#include <QStringList>

/// Keeps the addresses that it was given.
class FakeSystemSettings final : public SystemSettings {
public:
    bool openPrivacySettings(const QString &address) override
    {
        opened << address;
        return isThere;
    }

    QStringList opened;
    bool isThere = true;
};
