#pragma once

#include "base/ChildProcess.h"
#include "settings/UploadSettings.h"
#include "upload/UploadError.h"
#include "upload/UploadLimits.h"

#include <QString>
#include <QStringList>

#include <optional>

/// The decisions of an upload through sftp with the user's keys: what it is told, and what its end
/// means.
namespace SftpCommand {

/// The commands that upload the file. Quotes are escaped in the folder alone, and the folder stands
/// without quotes.
QString batchText(const QString &remotePath, const QString &filePath,
                  const QString &remoteFileName);

/// Sftp's arguments. It accepts any host key, remembers none and never asks for anything.
QStringList arguments(const UploadSettings &settings, const QString &batchPath,
                      const UploadLimits &limits);

/// Whether the server has refused every key that it was offered. outcome as below.
bool areKeysRefused(const ProcessOutcome &outcome);

/// Why the upload failed; absent when it succeeded. outcome is of a process that ended by itself.
std::optional<UploadError> verdict(const ProcessOutcome &outcome);

} // namespace SftpCommand
