#include "platform/linux/wayland/WaylandKeymap.h"

#include <xkbcommon/xkbcommon.h>

#include <utility>

namespace {

using State = std::unique_ptr<xkb_state, decltype(&xkb_state_unref)>;

/// The keyboard with these modifiers held in a layout.
State stateOf(xkb_keymap *keymap, xkb_layout_index_t layout, xkb_mod_mask_t modifiers)
{
    State state(xkb_state_new(keymap), &xkb_state_unref);
    xkb_state_update_mask(state.get(), modifiers, 0, 0, 0, 0, layout);
    return state;
}

xkb_mod_mask_t maskOf(xkb_keymap *keymap, const char *modifier)
{
    const xkb_mod_index_t index = xkb_keymap_mod_get_index(keymap, modifier);
    return index == XKB_MOD_INVALID ? 0 : 1U << index;
}

QString characterOf(const State &state, xkb_keycode_t key)
{
    const char32_t character = xkb_state_key_get_utf32(state.get(), key);
    return character == 0 ? QString() : QString::fromUcs4(&character, 1);
}

} // namespace

std::optional<WaylandKeymap> WaylandKeymap::fromText(const QByteArray &text)
{
    const std::unique_ptr<xkb_context, decltype(&xkb_context_unref)> context(
        xkb_context_new(XKB_CONTEXT_NO_FLAGS), &xkb_context_unref);
    if (!context)
        return std::nullopt;
    std::shared_ptr<xkb_keymap> keymap(
        xkb_keymap_new_from_buffer(context.get(), text.constData(),
                                   static_cast<std::size_t>(text.size()), XKB_KEYMAP_FORMAT_TEXT_V1,
                                   XKB_KEYMAP_COMPILE_NO_FLAGS),
        &xkb_keymap_unref);
    return keymap ? std::optional(WaylandKeymap(std::move(keymap))) : std::nullopt;
}

WaylandKeymap::WaylandKeymap(std::shared_ptr<xkb_keymap> keymap) : m_keymap(std::move(keymap))
{
}

std::optional<QString> WaylandKeymap::plainCharacter(std::uint32_t keycode, std::uint32_t keysym,
                                                     std::uint32_t modifiers) const
{
    xkb_keymap *const keymap = m_keymap.get();
    for (xkb_layout_index_t layout = 0; layout < xkb_keymap_num_layouts(keymap); ++layout) {
        if (xkb_state_key_get_one_sym(stateOf(keymap, layout, modifiers).get(), keycode) != keysym)
            continue;
        const xkb_mod_mask_t numLock = modifiers & maskOf(keymap, XKB_MOD_NAME_NUM);
        return characterOf(stateOf(keymap, layout, numLock), keycode);
    }
    return std::nullopt;
}

QString WaylandKeymap::shifted(QChar character) const
{
    xkb_keymap *const keymap = m_keymap.get();
    QString found;
    for (xkb_layout_index_t layout = 0; layout < xkb_keymap_num_layouts(keymap); ++layout) {
        const State plain = stateOf(keymap, layout, 0);
        const State shifted = stateOf(keymap, layout, maskOf(keymap, XKB_MOD_NAME_SHIFT));
        for (xkb_keycode_t key = xkb_keymap_min_keycode(keymap);
             key <= xkb_keymap_max_keycode(keymap); ++key) {
            const QString typed = characterOf(shifted, key);
            if (characterOf(plain, key) == character && typed != character
                && !found.contains(typed))
                found += typed;
        }
    }
    return found;
}
