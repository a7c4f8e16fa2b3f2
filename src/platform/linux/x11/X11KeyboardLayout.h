#pragma once

#include "platform/KeyboardLayout.h"

/// The layout that the X server holds. Absent on other displays.
class X11KeyboardLayout final : public KeyboardLayout {
public:
    std::optional<QString> plainCharacter(const QKeyEvent &event) const override;
};
