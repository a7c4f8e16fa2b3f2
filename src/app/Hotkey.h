#pragma once

#include "platform/EventTap.h"
#include "settings/UploadSettings.h"

#include <QString>

#include <cstdint>
#include <optional>

/// Which key presses are the global shortcut.
namespace Hotkey {

/// The lower-case character on the key with that code on a US keyboard, whatever the layout in use.
/// Absent for keys that no shortcut can have. The codes are those of Apple's virtual keys
/// (kVK_ANSI_A and so on in HIToolbox/Events.h).
std::optional<QString> keyCodeToChar(std::int64_t keyCode);

/// The press that the shortcut stands for; absent when its key is on no key of the table.
std::optional<KeyPress> pressOf(const UploadSettings::KeyboardShortcut &shortcut);

/// Whether press is the shortcut: its key with its modifiers and no other one. A modifier that the
/// shortcut lists twice counts once; upper and lower case are the same.
bool matches(const KeyPress &press, const UploadSettings::KeyboardShortcut &shortcut);

} // namespace Hotkey
