#pragma once

#include "platform/EventTap.h"
#include "platform/linux/x11/X11Connection.h"
#include "platform/linux/x11/X11Modifiers.h"

#include <QObject>

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

/// EventTap on an X display: the wanted press, and no other, is grabbed from all programs. The key
/// is the one in its place on a US keyboard, in every layout.
class X11EventTap final : public EventTap {
public:
    /// Hears at least the press wanted, or none where it is absent. Null without an X display, if
    /// another program has grabbed the press, or if the keyboard has no key of its own for one of
    /// the modifiers; the last two are logged.
    static std::unique_ptr<EventTap> make(const std::optional<KeyPress> &wanted,
                                          OnKeyDown onKeyDown);
    ~X11EventTap() override;

private:
    X11EventTap(std::unique_ptr<X11Connection> connection, xcb_keycode_t keycode,
                KeyModifierFlags wanted, OnKeyDown onKeyDown);
    void handle(const xcb_generic_event_t &event);
    void renewSoon();
    void renew();
    void grab();
    void ungrab();

    std::unique_ptr<X11Connection> m_connection;
    xcb_keycode_t m_keycode = 0;
    KeyModifierFlags m_wanted;
    OnKeyDown m_onKeyDown;
    std::optional<X11Modifiers> m_modifiers; ///< Absent until they have been looked up.
    std::vector<std::uint8_t> m_states; ///< With which the key is grabbed, or was refused.
    bool m_isGrabbed = false;
    bool m_isRenewalSoon = false;
    QObject m_context; ///< Of the renewal that comes from the event loop.
};
