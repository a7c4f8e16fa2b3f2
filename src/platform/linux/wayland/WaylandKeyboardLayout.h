#pragma once

#include "platform/KeyboardLayout.h"

/// The layout that the compositor has given the keyboard. Absent on other displays.
class WaylandKeyboardLayout final : public KeyboardLayout {
public:
    std::optional<QString> plainCharacter(const QKeyEvent &event) const override;
};
