#pragma once

#include "platform/SecretStore.h"

#include <map>
#include <utility>

/// Secrets in memory.
class FakeSecretStore final : public SecretStore {
public:
    std::optional<QByteArray> read(const QString &service, const QString &account) override
    {
        ++reads;
        if (isShut)
            return std::nullopt;
        const auto found = items.find({service, account});
        return found == items.end() ? std::nullopt : std::optional(found->second);
    }
    bool isLocked() const override { return isShut; }
    bool write(const QString &service, const QString &account, const QByteArray &secret) override
    {
        ++writes;
        if (isWritable)
            items[{service, account}] = secret;
        return isWritable;
    }
    void unlock(std::function<void()> newOnChanged) override
    {
        ++unlocksAsked;
        onChanged = std::move(newOnChanged);
    }

    std::map<std::pair<QString, QString>, QByteArray> items; ///< By service and account.
    bool isShut = false; ///< Nothing can be read.
    bool isWritable = true;
    int reads = 0;
    int writes = 0;
    int unlocksAsked = 0;
    std::function<void()> onChanged;
};
