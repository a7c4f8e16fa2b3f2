#pragma once

#include <cstdint>
#include <optional>

/// The positions of the keys that a shortcut can have, as the kernel numbers them (KEY_... of
/// linux/input-event-codes.h) and as keyCodeToChar() does. Both name what a US keyboard has in the
/// place, whatever the layout in use makes of it.
namespace HardwareKeys {

/// The key code of a position. Absent for keys that no shortcut can have.
std::optional<std::int64_t> keyCode(std::uint32_t position);

/// The position of a key code. Absent for codes that no shortcut can have.
std::optional<std::uint32_t> position(std::int64_t keyCode);

/// What a US keyboard types with the key of a key code, without modifiers. Absent for codes that no
/// shortcut can have.
std::optional<char> symbol(std::int64_t keyCode);

} // namespace HardwareKeys
