#pragma once

#include "base/ChildProcess.h"
#include "base/TemporaryFile.h"
#include "settings/UploadSettings.h"
#include "upload/CurlCommand.h"
#include "upload/CurlReport.h"
#include "upload/LearnedServers.h"
#include "upload/SecretMask.h"
#include "upload/UploadLimits.h"

#include <QCoro/QCoroTask>
#include <QStringList>
#include <QUrl>

#include <chrono>
#include <memory>
#include <optional>
#include <stop_token>

/// Moves one local file to the user's server by running a transfer tool. Calls are independent and
/// may overlap. Main thread. Must outlive its uploads.
class UploadService {
public:
    /// Where the tools are and where the service keeps its files.
    struct Environment {
        QString homeFolder; ///< A ".ssh" in it makes SFTP try the user's keys first.
        QString temporaryFolder; ///< Private to this process; no slash at the end.
        std::stop_token stop = {}; ///< Ends running uploads early.
        QString curl = QStringLiteral("/usr/bin/curl");
        QString sftp = QStringLiteral("/usr/bin/sftp");
        /// Where expect may be, the first choice first.
        QStringList expect = {QStringLiteral("/usr/bin/expect"),
                              QStringLiteral("/opt/homebrew/bin/expect"),
                              QStringLiteral("/usr/local/bin/expect")};
        UploadLimits limits = {};
        /// Shared by all services that work with the same servers.
        std::shared_ptr<LearnedServers> learned = std::make_shared<LearnedServers>();
    };

    explicit UploadService(Environment environment);

    /// Returns when the file is on the server under remoteFileName. The password is read at once
    /// and serves to the end. Throws UploadError, with no password in its text, or SystemError when
    /// a temporary file cannot be written or a tool not be started.
    [[nodiscard]] QCoro::Task<> upload(QUrl fileURL, UploadSettings settings,
                                       QString remoteFileName);

    /// Forgets what earlier uploads have learned about their servers.
    void forgetServers() { m_environment.learned->forgetAll(); }

private:
    /// All that one upload works with, from its start to its end.
    struct Upload {
        QString filePath;
        QString remoteFileName;
        UploadSettings settings;
        QString password;
        SecretMask mask; ///< For all that is logged or shown of it.
    };

    [[nodiscard]] QCoro::Task<> uploadFTPWithCurl(Upload upload);
    [[nodiscard]] QCoro::Task<CurlReport> runCurl(Upload upload, CurlCommand::TlsFrom tlsFrom);
    [[nodiscard]] QCoro::Task<> uploadSFTP(Upload upload);
    [[nodiscard]] QCoro::Task<> uploadSFTPWithKeys(Upload upload);
    [[nodiscard]] QCoro::Task<> uploadSFTPWithPassword(Upload upload);

    /// Runs a tool. Throws when it did not end by itself.
    [[nodiscard]] QCoro::Task<ProcessOutcome> run(ProcessCommand command);

    std::unique_ptr<TemporaryFile> createNetrcFile(const QString &hostname, const QString &username,
                                                   const QString &password) const;
    std::unique_ptr<TemporaryFile> createBatchFile(const Upload &upload) const;
    std::optional<QString> findExpect() const;

    /// A new file of that kind's path in the temporary folder.
    QString freshPath(QLatin1String prefix, QLatin1String suffix) const;

    Environment m_environment;
    /// The same for every creator, and read by no route: each has limits of its own.
    [[maybe_unused]] std::chrono::duration<double> m_uploadTimeout{60};
};
