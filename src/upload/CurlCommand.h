#pragma once

#include "base/ChildProcess.h"
#include "settings/UploadSettings.h"
#include "upload/UploadError.h"
#include "upload/UploadLimits.h"

#include <QString>
#include <QStringList>

#include <optional>

/// The decisions of an upload through curl: what it is told, and what its end means.
namespace CurlCommand {

/// The host in what the user typed as one: without blanks around it, and without the rest of a web
/// address if it is one.
QString cleanHost(const QString &hostname);

/// The server's folder: never empty, with a slash at the end.
QString remoteDirectory(const QString &remotePath);

/// text with all but the characters of a URL's path encoded as %XX.
QString percentEncoded(const QString &text);

/// Where the file goes.
QString url(const UploadSettings &settings, const QString &remoteFileName);

/// The text of the credentials file. host is a cleaned one.
QString netrcContents(const QString &host, const QString &username, const QString &password);

/// A local path as the value of "-T", in which curl would expand brackets and braces.
QString escapedForGlobbing(const QString &path);

/// Curl's arguments.
QStringList arguments(const UploadSettings &settings, const QString &filePath,
                      const QString &netrcPath, const QString &url, const UploadLimits &limits);

/// The arguments as one line for the log, without the place of the credentials file.
QString shownArguments(const QStringList &arguments);

/// Curl's verbose output without the password, which it repeats when it sends it.
QString withoutPassword(const QString &output);

/// What an ended curl wrote, as text: empty where it is not UTF-8, and without the password.
struct Output {
    QString standardOutput;
    QString standardError;

    /// Both, one after the other.
    QString combined() const;
};
Output output(const ProcessOutcome &outcome);

/// Why the upload failed; absent when it succeeded. status is curl's exit code, or the number of
/// the signal that ended it. host is the cleaned one.
std::optional<UploadError> verdict(const Output &output, int status, const QString &host);

} // namespace CurlCommand
