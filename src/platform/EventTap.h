#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>

/// The modifiers that are held while a key is pressed. The left and the right key of a kind are the
/// same, and no other modifier counts.
struct KeyModifierFlags {
    bool command = false; ///< Super on a PC keyboard.
    bool shift = false;
    bool option = false; ///< Alt on a PC keyboard.
    bool control = false;

    bool operator==(const KeyModifierFlags &) const = default;
};

/// One press of a key.
struct KeyPress {
    std::int64_t keyCode = 0; ///< The key's position, as the code of keyCodeToChar().
    KeyModifierFlags modifiers;

    bool operator==(const KeyPress &) const = default;
};

/// Hears of key presses anywhere in the session, whatever program is in front. Hearing ends with
/// the object. Main thread. Not available: refused.
class EventTap {
public:
    /// Called for every press that arrives, repeats of a held key included. Gives whether the press
    /// is to be swallowed, where that is still open. Must be quick.
    using OnKeyDown = std::function<bool(const KeyPress &)>;

    /// Called exactly once, unless the tap is destroyed before: whether the desktop lets it hear
    /// the press wanted. That may be from inside the factory, or as late as the user has answered a
    /// question. May destroy the tap.
    using OnDecided = std::function<void(bool isHeard)>;

    /// Makes a tap that hears at least the press wanted, or no press at all where wanted is absent,
    /// which is never refused. Presses that it was made for never reach the program in front. Null
    /// only if the desktop has refused at once; a tap that is refused later hears nothing.
    using Factory = std::function<std::unique_ptr<EventTap>(
        const std::optional<KeyPress> &wanted, OnKeyDown onKeyDown, OnDecided onDecided)>;

    virtual ~EventTap() = default;
    EventTap() = default;
    EventTap(const EventTap &) = delete;
    EventTap &operator=(const EventTap &) = delete;
};
