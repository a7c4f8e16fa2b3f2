#pragma once

#include <QString>

#include <optional>

class QKeyEvent;

/// The keyboard layout in use. Main thread. Not available: the event is all there is to go by.
class KeyboardLayout {
public:
    virtual ~KeyboardLayout() = default;
    KeyboardLayout() = default;
    KeyboardLayout(const KeyboardLayout &) = delete;
    KeyboardLayout &operator=(const KeyboardLayout &) = delete;

    /// What the key of the event types with no modifier held, in the layout that was active when it
    /// was pressed. Empty if it types nothing; absent when the layout cannot be looked at.
    virtual std::optional<QString> plainCharacter(const QKeyEvent &event) const = 0;
};
