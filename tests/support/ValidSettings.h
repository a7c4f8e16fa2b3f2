#pragma once

#include "settings/UploadSettings.h"

/// Settings that upload, once the password is stored, under the address https://x.org/shots.
inline UploadSettings validSettings()
{
    UploadSettings settings;
    settings.serverType = UploadSettings::ServerType::ftp;
    settings.hostname = QStringLiteral("127.0.0.1");
    settings.port = 21;
    settings.username = QStringLiteral("me");
    settings.publicURLBase = QStringLiteral("https://x.org/shots");
    return settings;
}
