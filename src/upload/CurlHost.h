#pragma once

#include <QString>

#include <optional>

/// One host in the two forms that curl wants. It looks the credentials up under the name that it
/// connects to, which is not always the one in the URL, and logs in as "anonymous" where it finds
/// none.
struct CurlHost {
    QString inUrl;
    QString inNetrc;

    /// host is a cleaned one. Absent if it can be no host: other characters would begin another
    /// part of the URL.
    static std::optional<CurlHost> of(const QString &host);

    bool operator==(const CurlHost &) const = default;
};
