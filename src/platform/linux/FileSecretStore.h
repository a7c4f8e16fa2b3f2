#pragma once

#include "platform/SecretStore.h"

/// Secrets as files below the user's data folder, one per service and account, readable for the
/// user alone from their first instant. Nothing is ever locked.
class FileSecretStore final : public SecretStore {
public:
    std::optional<QByteArray> read(const QString &service, const QString &account) override;
    bool isLocked() const override { return false; }
    bool write(const QString &service, const QString &account, const QByteArray &secret) override;
    void unlock(std::function<void()> onChanged) override;

    /// Forgets the secret, if there is one.
    void remove(const QString &service, const QString &account);

    /// The file that holds the secret once it is stored.
    QString filePath(const QString &service, const QString &account) const;
};
