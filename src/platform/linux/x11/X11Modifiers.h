#pragma once

#include "platform/EventTap.h"

#include <cstdint>
#include <optional>
#include <vector>

class X11Connection;

/// Which bits of the state of an X key event stand for the modifiers of a shortcut. Where a
/// modifier is on no key its mask is 0.
struct X11Modifiers {
    std::uint8_t command = 0;
    std::uint8_t option = 0;
    std::uint8_t numLock = 0;

    bool operator==(const X11Modifiers &) const = default;

    /// Those of the keyboard as it is mapped now. Absent if the display is gone.
    static std::optional<X11Modifiers> lookUp(X11Connection &connection);

    /// The modifiers held in a state.
    KeyModifierFlags flags(std::uint16_t state) const;

    /// The states in which exactly these modifiers are held, with Caps Lock and Num Lock on and
    /// off. Empty if the keyboard cannot hold them, or not tell them from others.
    std::vector<std::uint8_t> states(const KeyModifierFlags &wanted) const;
};
