#include "platform/linux/wayland/WaylandKeyboardLayout.h"

#include "platform/linux/wayland/WaylandKeymapReader.h"

#include <QKeyEvent>

namespace {

/// A compositor that hangs has no keys to record either.
constexpr std::chrono::milliseconds kLimit(500);

} // namespace

std::optional<QString> WaylandKeyboardLayout::plainCharacter(const QKeyEvent &event) const
{
    if (event.nativeScanCode() == 0)
        return std::nullopt;
    // Fetched anew each time, a few milliseconds, rather than kept up to date: only the few keys
    // that are recorded ask for it.
    const auto keymap = WaylandKeymapReader::read(kLimit);
    return keymap ? keymap->plainCharacter(event.nativeScanCode(), event.nativeVirtualKey(),
                                           event.nativeModifiers())
                  : std::nullopt;
}
