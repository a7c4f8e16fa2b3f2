#include "upload/LearnedServers.h"

void LearnedServers::noteKeysRefused(const UploadSettings &settings)
{
    // What another upload has learned meanwhile stays.
    m_keysRefused.try_emplace(accountOf(settings), false);
}

void LearnedServers::notePasswordTaken(const UploadSettings &settings)
{
    if (const auto account = m_keysRefused.find(accountOf(settings));
        account != m_keysRefused.end())
        account->second = true;
}

void LearnedServers::notePasswordRefused(const UploadSettings &settings)
{
    m_keysRefused.erase(accountOf(settings));
}

bool LearnedServers::wantsPassword(const UploadSettings &settings) const
{
    const auto account = m_keysRefused.find(accountOf(settings));
    return account != m_keysRefused.end() && account->second;
}

bool LearnedServers::wantsAuthTls(const UploadSettings &settings) const
{
    return m_authTlsWanted.contains(serverOf(settings));
}

void LearnedServers::setWantsAuthTls(const UploadSettings &settings, bool wants)
{
    if (wants)
        m_authTlsWanted.insert(serverOf(settings));
    else
        m_authTlsWanted.erase(serverOf(settings));
}

void LearnedServers::forgetAll()
{
    m_keysRefused.clear();
    m_authTlsWanted.clear();
}

LearnedServers::Server LearnedServers::serverOf(const UploadSettings &settings)
{
    return {settings.hostname, settings.port};
}

LearnedServers::Account LearnedServers::accountOf(const UploadSettings &settings)
{
    return {settings.hostname, settings.port, settings.username};
}
