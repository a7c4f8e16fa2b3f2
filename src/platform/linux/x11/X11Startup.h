#pragma once

#include <QByteArray>
#include <QString>

#include <cstdint>
#include <functional>
#include <optional>

class QWindow;

/// The freedesktop protocol of startup notification, by which an X11 desktop follows a start from
/// the person's click to the window that comes of it. Nothing happens on other displays. Main
/// thread; the application object must exist.
namespace X11Startup {

/// Tells the desktop that the start with this id has had its effect, so that it stops showing that
/// something is under way. Nothing if the id is empty.
void end(const QString &id);

/// Calls show, which shows window, as the effect of the start with this id, which may be empty.
void bringToFront(QWindow &window, const QString &id, const std::function<void()> &show);

/// When the person did what began the start, in the display's milliseconds. Absent if the id does
/// not say.
std::optional<std::uint32_t> timeOf(const QString &id);

/// The text that ends the start with this id. Empty if that is no id.
QByteArray endMessage(const QString &id);

} // namespace X11Startup
