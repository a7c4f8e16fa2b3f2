#include "platform/linux/x11/X11KeyboardLayout.h"

#include <QGuiApplication>
#include <QKeyEvent>

#include <xkbcommon/xkbcommon-x11.h>

#include <memory>

namespace {

template <typename T, void (*unref)(T *)>
struct Unref {
    void operator()(T *object) const { unref(object); }
};
using Context = std::unique_ptr<xkb_context, Unref<xkb_context, xkb_context_unref>>;
using Keymap = std::unique_ptr<xkb_keymap, Unref<xkb_keymap, xkb_keymap_unref>>;
using State = std::unique_ptr<xkb_state, Unref<xkb_state, xkb_state_unref>>;

Keymap serversKeymap(xcb_connection_t *connection, xkb_context *context)
{
    const int keyboard = xkb_x11_get_core_keyboard_device_id(connection);
    return Keymap(keyboard < 0 ? nullptr
                               : xkb_x11_keymap_new_from_device(context, connection, keyboard,
                                                                XKB_KEYMAP_COMPILE_NO_FLAGS));
}

/// The group of the layout in the state of an X key event, bits 13 and 14.
xkb_layout_index_t groupOf(quint32 eventState)
{
    return (eventState >> 13) & 3;
}

} // namespace

std::optional<QString> X11KeyboardLayout::plainCharacter(const QKeyEvent &event) const
{
    const auto *const x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    if (!x11 || !x11->connection() || event.nativeScanCode() == 0)
        return std::nullopt;
    // Fetched anew each time, a few milliseconds, rather than kept up to date: only the few keys
    // that are recorded ask for it.
    const Context context(xkb_context_new(XKB_CONTEXT_NO_FLAGS));
    const Keymap keymap = context ? serversKeymap(x11->connection(), context.get()) : nullptr;
    const State state(keymap ? xkb_state_new(keymap.get()) : nullptr);
    if (!state)
        return std::nullopt;

    // Num Lock is no key that is held, but says what the keypad types.
    const xkb_mod_index_t numLock = xkb_keymap_mod_get_index(keymap.get(), XKB_MOD_NAME_NUM);
    const xkb_mod_mask_t locked =
        numLock == XKB_MOD_INVALID ? 0 : event.nativeModifiers() & (1U << numLock);
    xkb_state_update_mask(state.get(), 0, 0, locked, 0, 0, groupOf(event.nativeModifiers()));
    const char32_t character = xkb_state_key_get_utf32(state.get(), event.nativeScanCode());
    return character == 0 ? QString() : QString::fromUcs4(&character, 1);
}
