#pragma once

#include "settings/UploadSettings.h"
#include "upload/UploadLimits.h"

#include <QString>
#include <QStringList>

/// The decisions of an upload through curl: what it is told.
namespace CurlCommand {

/// The host in what the user typed as one: without blanks around it, and without the rest of a web
/// address if it is one.
QString cleanHost(const QString &hostname);

/// The server's folder: never empty, with a slash at the end.
QString remoteDirectory(const QString &remotePath);

/// text with all but the characters of a URL's path encoded as %XX.
QString percentEncoded(const QString &text);

/// From when on an FTPS connection is encrypted.
enum class TlsFrom {
    FirstByte, ///< As port 990 expects it.
    Command, ///< From the command AUTH on, as port 21 does.
};

/// Where the file goes. host is as curl wants it in a URL.
QString url(const UploadSettings &settings, const QString &host, const QString &remoteFileName,
            TlsFrom tlsFrom);

/// A local path as the value of "-T", in which curl would expand brackets and braces.
QString escapedForGlobbing(const QString &path);

/// Curl's arguments.
QStringList arguments(const UploadSettings &settings, const QString &filePath,
                      const QString &netrcPath, const QString &url, const UploadLimits &limits);

/// The arguments as one line for the log, without the place of the credentials file.
QString shownArguments(const QStringList &arguments);

} // namespace CurlCommand
