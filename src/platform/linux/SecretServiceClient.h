#pragma once

#include <QByteArray>
#include <QString>

#include <memory>
#include <optional>

/// The desktop's Secret Service, asked synchronously through libsecret. No call takes more than two
/// seconds in all, whatever the service does, and none runs an event loop other than one of its
/// own. Connects to the session bus at the first call. Main thread.
class SecretServiceClient {
public:
    enum class Status {
        Done,
        NotUsable, ///< The item, or the default collection, is locked; or there is no collection.
        Failed, ///< The service refused, or did not answer in time.
        NoService, ///< There is none, and none can be started.
    };

    struct Answer {
        Status status = Status::Failed;
        std::optional<QByteArray> secret; ///< Absent if there is none, or if it is locked.
    };

    SecretServiceClient();
    ~SecretServiceClient();
    SecretServiceClient(const SecretServiceClient &) = delete;
    SecretServiceClient &operator=(const SecretServiceClient &) = delete;

    /// The secret with these two attributes. Unlocks nothing.
    Answer read(const QString &service, const QString &account);

    /// Stores secret in the default collection, in place of any with the same attributes. Asks for
    /// nothing to be unlocked.
    Status write(const QString &service, const QString &account, const QByteArray &secret);

private:
    class Call;
    struct Connection;

    std::unique_ptr<Connection> m_connection;
};
