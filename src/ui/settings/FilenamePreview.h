#pragma once

#include "settings/UploadSettings.h"

#include <QString>

/// What the page of the file names shows of the settings.
namespace FilenamePreview {

/// The remote name of a sample screenshot. Differs from call to call where the style draws one at
/// random.
QString name(const UploadSettings &settings, const Clock &clock, SecureRandom &random);

/// The name of a picture with a freshly drawn random name.
QString randomExample(const UploadSettings::RandomFilenameConfig &config, SecureRandom &random);

/// The first forty characters of pool, and "..." if there are more.
QString shownPool(const QString &pool);

} // namespace FilenamePreview
