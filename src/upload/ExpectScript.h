#pragma once

#include "base/ChildProcess.h"
#include "settings/UploadSettings.h"
#include "upload/UploadError.h"
#include "upload/UploadLimits.h"

#include <QString>
#include <QStringList>

#include <optional>

/// The decisions of an upload through sftp with a password that expect types: the script, and what
/// its end means.
namespace ExpectScript {

/// The first of the paths at which a file is; absent when there is none.
std::optional<QString> findExpect(const QStringList &paths);

/// text for use between double quotes in a script.
QString escapeForExpect(const QString &text);

/// The script, whatever the place at which expect was found.
QString text(const UploadSettings &settings, const QString &batchPath, const QString &password,
             const UploadLimits &limits);

/// Why the upload failed; absent when it succeeded. outcome is of a process that ended by itself.
std::optional<UploadError> verdict(const ProcessOutcome &outcome);

} // namespace ExpectScript
