#include "platform/linux/LibsecretStore.h"

#include "base/Log.h"
#include "platform/linux/DefaultKeyring.h"
#include "platform/linux/FileSecretStore.h"
#include "platform/linux/SecretServiceClient.h"

#include <utility>

using namespace Qt::StringLiterals;

LibsecretStore::LibsecretStore(std::unique_ptr<FileSecretStore> fallback)
    : m_fallback(std::move(fallback))
{
}

LibsecretStore::~LibsecretStore() = default;

std::optional<QByteArray> LibsecretStore::read(const QString &service, const QString &account)
{
    using Status = SecretServiceClient::Status;
    SecretServiceClient::Answer answer = client().read(service, account);
    if (answer.status == Status::NoService)
        tellOfFallback(service, account);
    std::optional<QByteArray> secret =
        answer.secret ? std::move(answer.secret) : m_fallback->read(service, account);
    m_isLocked = !secret && (answer.status == Status::NotUsable || answer.status == Status::Failed);
    return secret;
}

bool LibsecretStore::write(const QString &service, const QString &account, const QByteArray &secret)
{
    m_waiting.reset();
    switch (client().write(service, account, secret)) {
    case SecretServiceClient::Status::Done:
        m_fallback->remove(service, account);
        return true;
    case SecretServiceClient::Status::NotUsable:
        m_waiting = Item{service, account, secret};
        keyring().ask(DefaultKeyring::IfMissing::Make, [this] { storeWaiting(); });
        return false;
    case SecretServiceClient::Status::Failed:
        m_waiting = Item{service, account, secret};
        Log::line(u"⚠️ The secret service does not store the server password, waiting for it"_s);
        return false;
    case SecretServiceClient::Status::NoService:
        tellOfFallback(service, account);
        return m_fallback->write(service, account, secret);
    }
    Q_UNREACHABLE();
}

void LibsecretStore::unlock(std::function<void()> onChanged)
{
    keyring().watch([this, onChanged = std::move(onChanged)] {
        // It may have been unlocked by somebody else.
        storeWaiting();
        onChanged();
    });
    // Something may be waiting to be stored since before this was called.
    keyring().ask(DefaultKeyring::IfMissing::Leave, [this] { storeWaiting(); });
}

SecretServiceClient &LibsecretStore::client()
{
    if (!m_client)
        m_client = std::make_unique<SecretServiceClient>();
    return *m_client;
}

DefaultKeyring &LibsecretStore::keyring()
{
    if (!m_keyring)
        m_keyring = std::make_unique<DefaultKeyring>();
    return *m_keyring;
}

void LibsecretStore::storeWaiting()
{
    if (!m_waiting)
        return;
    switch (client().write(m_waiting->service, m_waiting->account, m_waiting->secret)) {
    case SecretServiceClient::Status::Done:
        m_fallback->remove(m_waiting->service, m_waiting->account);
        m_waiting.reset();
        break;
    case SecretServiceClient::Status::NotUsable:
    case SecretServiceClient::Status::Failed:
    case SecretServiceClient::Status::NoService:
        break; // It waits for the next change.
    }
}

void LibsecretStore::tellOfFallback(const QString &service, const QString &account)
{
    if (std::exchange(m_toldOfFallback, true))
        return;
    Log::line(u"⚠️ No secret service is available, keeping the server password in a file: "_s
              + m_fallback->filePath(service, account));
}
