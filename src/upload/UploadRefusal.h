#pragma once

#include "settings/UploadSettings.h"
#include "upload/UploadError.h"

#include <QString>

#include <optional>

/// Uploads that are not even begun, because a tool would take a name for something else, or because
/// what would arrive is not what the user sees.
namespace UploadRefusal {

/// Why the file must not be uploaded so; absent when it may. filePath is what the tool would be
/// told. Looks at the file, but does not open it.
std::optional<UploadError> of(const UploadSettings &settings, const QString &filePath,
                              const QString &remoteFileName);

} // namespace UploadRefusal
