#pragma once

#include "platform/SecretStore.h"

#include <memory>
#include <optional>

class DefaultKeyring;
class FileSecretStore;
class SecretServiceClient;

/// Secrets in the desktop's Secret Service. Where there is none, a file store takes over; what it
/// holds is read until the service holds something, and removed once the service has stored
/// something. Connects to nothing before the first call.
class LibsecretStore final : public SecretStore {
public:
    explicit LibsecretStore(std::unique_ptr<FileSecretStore> fallback);
    ~LibsecretStore() override;

    std::optional<QByteArray> read(const QString &service, const QString &account) override;
    bool isLocked() const override { return m_isLocked; }
    bool write(const QString &service, const QString &account, const QByteArray &secret) override;
    void unlock(std::function<void()> onChanged) override;

private:
    struct Item {
        QString service;
        QString account;
        QByteArray secret;
    };

    SecretServiceClient &client();
    DefaultKeyring &keyring();
    void storeWaiting();
    void tellOfFallback(const QString &service, const QString &account);

    std::unique_ptr<FileSecretStore> m_fallback;
    std::unique_ptr<SecretServiceClient> m_client;
    std::unique_ptr<DefaultKeyring> m_keyring;
    std::optional<Item> m_waiting; ///< To be stored once the user has unlocked the keyring.
    bool m_isLocked = false;
    bool m_toldOfFallback = false;
};
