#pragma once

#include "platform/KeyboardLayout.h"

#include <QKeyEvent>

#include <map>

/// A layout that knows the keys it is told; at first it cannot be looked at.
class FakeKeyboardLayout final : public KeyboardLayout {
public:
    std::optional<QString> plainCharacter(const QKeyEvent &event) const override
    {
        if (!isThere)
            return std::nullopt;
        const auto found = characters.find(event.key());
        return found == characters.end() ? QString() : found->second;
    }

    bool isThere = false;
    std::map<int, QString> characters; ///< By Qt::Key; any other types nothing.
};
