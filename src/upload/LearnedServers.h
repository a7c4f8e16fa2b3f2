#pragma once

#include "settings/UploadSettings.h"

#include <cstdint>
#include <map>
#include <set>
#include <tuple>

/// What uploads have learned about the servers of their settings, so that later ones do not begin
/// with what was in vain. It is more than a matter of time: a server may lock out whoever has been
/// refused a few times.
class LearnedServers {
public:
    /// The server has refused every key of the user's.
    void noteKeysRefused(const UploadSettings &settings);
    void notePasswordTaken(const UploadSettings &settings);
    void notePasswordRefused(const UploadSettings &settings);
    /// Whether it has refused the keys and then taken the password.
    bool wantsPassword(const UploadSettings &settings) const;

    /// Whether the FTPS server begins in clear text, and in TLS only when it is told to.
    bool wantsAuthTls(const UploadSettings &settings) const;
    void setWantsAuthTls(const UploadSettings &settings, bool wants);

    void forgetAll();

private:
    using Server = std::tuple<QString, std::int64_t>; ///< Host and port.
    using Account = std::tuple<QString, std::int64_t, QString>; ///< Host, port and user.

    static Server serverOf(const UploadSettings &settings);
    static Account accountOf(const UploadSettings &settings);

    /// Those that have refused the keys, and whether they have taken the password since.
    std::map<Account, bool> m_keysRefused;
    std::set<Server> m_authTlsWanted;
};
