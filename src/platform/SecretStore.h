#pragma once

#include <QByteArray>
#include <QString>

#include <functional>
#include <optional>

/// Generic passwords by service and account, kept by the desktop under the user's login. Main
/// thread. Not available: a file that only the user can read takes over.
class SecretStore {
public:
    virtual ~SecretStore() = default;
    SecretStore() = default;
    SecretStore(const SecretStore &) = delete;
    SecretStore &operator=(const SecretStore &) = delete;

    /// The stored secret, which may be empty; absent when there is none, when it is locked, or when
    /// the store does not answer within two seconds. Never prompts.
    virtual std::optional<QByteArray> read(const QString &service, const QString &account) = 0;

    /// Whether the latest read() gave nothing because the store is locked or does not answer.
    virtual bool isLocked() const = 0;

    /// Stores secret, replacing any earlier one. True when it is stored. Never prompts before it
    /// returns: where the user must be asked first, it gives false and asks in the background. What
    /// it could not store it stores once it can, unless another secret is written before.
    virtual bool write(const QString &service, const QString &account,
                       const QByteArray &secret) = 0;

    /// Asks the user to unlock the store, if it is locked, without waiting. onChanged is called on
    /// the main thread whenever secrets have become readable or have changed since, as long as the
    /// store lives.
    virtual void unlock(std::function<void()> onChanged) = 0;
};
