#pragma once

#include <QByteArray>
#include <QString>

#include <cstdint>
#include <memory>
#include <optional>

struct xkb_keymap;

/// What the keys of a Wayland session's keyboard type, in each of its layouts.
class WaylandKeymap {
public:
    /// The text is in XKB's own form, as a compositor hands it out. Absent if it is not.
    static std::optional<WaylandKeymap> fromText(const QByteArray &text);

    /// What the key types with no modifier held, in the layout in which it gave keysym with these
    /// modifiers; XKB's numbers of key, symbol and modifiers. Num Lock counts, since it says what
    /// the keypad types. Empty if it types nothing; absent if no layout gives keysym.
    std::optional<QString> plainCharacter(std::uint32_t keycode, std::uint32_t keysym,
                                          std::uint32_t modifiers) const;

    /// What keys that type the character without modifiers type with Shift, each once. Empty if
    /// there is no such key.
    QString shifted(QChar character) const;

private:
    explicit WaylandKeymap(std::shared_ptr<xkb_keymap> keymap);

    std::shared_ptr<xkb_keymap> m_keymap;
};
