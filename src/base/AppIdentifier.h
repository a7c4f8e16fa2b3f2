#pragma once

#include <QLatin1String>

/// The application's reverse-DNS identifier: D-Bus name, desktop id, service of the stored secret.
inline constexpr QLatin1String kAppIdentifier("org.tessery.Tessery");
