#pragma once

#include <QLatin1String>

/// The service of the desktop portals, and the object that all of them are on.
namespace PortalNames {

inline constexpr QLatin1String kService("org.freedesktop.portal.Desktop");
inline constexpr QLatin1String kPath("/org/freedesktop/portal/desktop");

} // namespace PortalNames
