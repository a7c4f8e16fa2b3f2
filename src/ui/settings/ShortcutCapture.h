#pragma once

#include "settings/UploadSettings.h"

#include <optional>
#include <vector>

class KeyboardLayout;
class QKeyEvent;

/// The modifiers that are held, in the order command, shift, option, control: the Super, Shift, Alt
/// and Ctrl keys. Others are left out.
std::vector<UploadSettings::KeyboardShortcut::KeyModifier>
keyModifiers(Qt::KeyboardModifiers modifiers);

/// The shortcut that a key press stands for: the modifiers held, and what the key types without
/// them, in lower case. Absent without a modifier, and for keys that type nothing.
std::optional<UploadSettings::KeyboardShortcut> shortcutOf(const QKeyEvent &press,
                                                           const KeyboardLayout &layout);
