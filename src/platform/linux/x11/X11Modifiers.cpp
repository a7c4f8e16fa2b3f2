#include "platform/linux/x11/X11Modifiers.h"

#include "platform/linux/x11/X11Connection.h"

#include <X11/keysym.h>

#include <algorithm>
#include <limits>
#include <span>

namespace {

/// Adds what a key stands for to the modifiers, given that it sets mask and has these symbols.
void addKey(std::span<const xcb_keysym_t> symbols, std::uint8_t mask, X11Modifiers &modifiers)
{
    if (std::ranges::find(symbols, xcb_keysym_t{XK_Num_Lock}) != symbols.end())
        modifiers.numLock |= mask;
    // A key may have Meta or Hyper beside Alt or Super, or Alt in a second layout only; what it is
    // without Shift and in the first layout decides.
    const auto first =
        std::ranges::find_if(symbols, [](xcb_keysym_t symbol) { return symbol != XCB_NO_SYMBOL; });
    if (first == symbols.end())
        return;
    switch (*first) {
    case XK_Super_L:
    case XK_Super_R:
        modifiers.command |= mask;
        break;
    case XK_Alt_L:
    case XK_Alt_R:
        modifiers.option |= mask;
        break;
    default:
        break;
    }
}

} // namespace

std::optional<X11Modifiers> X11Modifiers::lookUp(X11Connection &connection)
{
    const xcb_setup_t *const setup = xcb_get_setup(connection.get());
    const auto firstKey = setup->min_keycode;
    const auto keys = static_cast<std::uint8_t>(setup->max_keycode - firstKey + 1);
    // Both are asked for before either is waited for.
    const auto askedMapping = xcb_get_modifier_mapping(connection.get());
    const auto askedSymbols = xcb_get_keyboard_mapping(connection.get(), firstKey, keys);
    const auto mapping = connection.reply(xcb_get_modifier_mapping_reply, askedMapping);
    const auto symbols = connection.reply(xcb_get_keyboard_mapping_reply, askedSymbols);
    if (!mapping || !symbols)
        return std::nullopt;

    const std::size_t perKey = symbols->keysyms_per_keycode;
    const std::span allSymbols(xcb_get_keyboard_mapping_keysyms(symbols.get()), keys * perKey);
    const std::size_t perModifier = mapping->keycodes_per_modifier;
    const auto *const keycodes = xcb_get_modifier_mapping_keycodes(mapping.get());
    X11Modifiers modifiers;
    for (std::size_t modifier = XCB_MAP_INDEX_1; modifier <= XCB_MAP_INDEX_5; ++modifier) {
        for (std::size_t index = 0; index < perModifier; ++index) {
            // Unused places of the table hold 0.
            const xcb_keycode_t keycode = keycodes[modifier * perModifier + index];
            if (keycode >= firstKey)
                addKey(allSymbols.subspan((keycode - firstKey) * perKey, perKey),
                       static_cast<std::uint8_t>(1U << modifier), modifiers);
        }
    }
    return modifiers;
}

KeyModifierFlags X11Modifiers::flags(std::uint16_t state) const
{
    return {.command = (state & command) != 0,
            .shift = (state & XCB_MOD_MASK_SHIFT) != 0,
            .option = (state & option) != 0,
            .control = (state & XCB_MOD_MASK_CONTROL) != 0};
}

std::vector<std::uint8_t> X11Modifiers::states(const KeyModifierFlags &wanted) const
{
    const unsigned counted =
        XCB_MOD_MASK_SHIFT | XCB_MOD_MASK_CONTROL | XCB_MOD_MASK_LOCK | command | option | numLock;
    std::vector<std::uint8_t> states;
    for (unsigned state = 0; state <= std::numeric_limits<std::uint8_t>::max(); ++state) {
        if ((state & ~counted) == 0 && flags(static_cast<std::uint16_t>(state)) == wanted)
            states.push_back(static_cast<std::uint8_t>(state));
    }
    return states;
}
