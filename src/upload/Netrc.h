#pragma once

#include "upload/UploadError.h"

#include <QString>

#include <optional>

/// The file in which curl finds the credentials.
namespace Netrc {

/// The text of the file. host is as curl looks it up.
QString contents(const QString &host, const QString &username, const QString &password);

/// Why curl would not read them from the file as they are; absent when it would.
std::optional<UploadError> refusal(const QString &username, const QString &password);

} // namespace Netrc
