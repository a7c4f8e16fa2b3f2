#pragma once

#include "platform/linux/wayland/WaylandKeymap.h"

#include <QFuture>

#include <chrono>
#include <optional>

/// Reads the keyboard's layouts from the compositor, over a short connection of its own, which
/// takes a few milliseconds.
namespace WaylandKeymapReader {

/// The keymap of the first keyboard. Absent without a Wayland compositor, without a keyboard, or if
/// the compositor takes longer than the limit. Any thread, which it blocks.
std::optional<WaylandKeymap> read(std::chrono::milliseconds limit);

/// The same, beside the main thread.
QFuture<std::optional<WaylandKeymap>> readBesideTheMainThread(std::chrono::milliseconds limit);

} // namespace WaylandKeymapReader
