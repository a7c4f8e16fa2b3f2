#pragma once

#include "base/ChildProcess.h"
#include "upload/UploadError.h"

#include <QByteArray>
#include <QString>

#include <optional>

/// What an ended curl has told of its work, and what that means.
class CurlReport {
public:
    /// outcome is of a curl that ended by itself. Output that is not UTF-8 counts as empty.
    explicit CurlReport(const ProcessOutcome &outcome);
    /// standardOutput and standardError as text, status curl's exit code.
    CurlReport(const QString &standardOutput, const QString &standardError, int status);

    /// All that curl wrote, without the credentials that it repeats when it sends them.
    QString text() const;

    /// Why an upload failed.
    struct Failure {
        UploadError error;
        QString words; ///< Those of the report that say so; empty if the exit code does.
    };
    /// Absent if the upload succeeded. host, the cleaned one, and username are those of the
    /// settings.
    std::optional<Failure> failure(const QString &host, const QString &username) const;

    /// Curl wanted to talk TLS from the first byte on, and the server did not.
    bool isServerInClearText() const;

    /// The server has said something in FTP.
    bool hasServerSpoken() const;

    /// Curl has ended without an error.
    bool isExitCodeZero() const { return m_status == 0; }

private:
    std::optional<Failure> failureByWords(const QString &host) const;
    std::optional<Failure> failureOfSuccess(const QString &username) const;

    QString m_standardOutput;
    QString m_standardError;
    QByteArray m_facts; ///< All of standard error, for what must not depend on its encoding.
    int m_status = 0; ///< The exit code, or the number of the signal that ended it.
};
