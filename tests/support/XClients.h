#pragma once

#include "platform/linux/x11/X11Connection.h"

#include <QList>

#include <xcb/xtest.h>

#include <cstdint>
#include <memory>

/// The keys that tests press, by the numbers that X gives them.
namespace XKey {
constexpr xcb_keycode_t kDigit1 = 10;
constexpr xcb_keycode_t kQ = 24;
constexpr xcb_keycode_t kU = 30;
constexpr xcb_keycode_t kA = 38;
constexpr xcb_keycode_t kSlash = 61;
constexpr xcb_keycode_t kSpace = 65;
constexpr xcb_keycode_t kCapsLock = 66;
constexpr xcb_keycode_t kNumLock = 77;
constexpr xcb_keycode_t kMenu = 135;
constexpr xcb_keycode_t kLeftShift = 50;
constexpr xcb_keycode_t kRightShift = 62;
constexpr xcb_keycode_t kLeftControl = 37;
constexpr xcb_keycode_t kRightControl = 105;
constexpr xcb_keycode_t kLeftAlt = 64;
constexpr xcb_keycode_t kRightAlt = 108;
constexpr xcb_keycode_t kLeftSuper = 133;
constexpr xcb_keycode_t kRightSuper = 134;
} // namespace XKey

/// Presses keys as a keyboard does. When a call returns, the display has dealt with the keys and
/// has sent every client what it gets of them.
class XKeyboard {
public:
    void press(xcb_keycode_t key) { fake(XCB_KEY_PRESS, key); }
    void release(xcb_keycode_t key) { fake(XCB_KEY_RELEASE, key); }

    /// Presses and releases a key while others are held.
    void tap(xcb_keycode_t key, const QList<xcb_keycode_t> &held = {})
    {
        for (const xcb_keycode_t other : held)
            press(other);
        press(key);
        release(key);
        for (auto other = held.rbegin(); other != held.rend(); ++other)
            release(*other);
    }

private:
    void fake(std::uint8_t type, xcb_keycode_t key)
    {
        m_connection->check(xcb_test_fake_input_checked(m_connection->get(), type, key, 0,
                                                        XCB_WINDOW_NONE, 0, 0, 0));
    }

    std::unique_ptr<X11Connection> m_connection = X11Connection::open();
};

/// A window that has the keyboard, and writes down the keys that reach it.
class XWindow {
public:
    struct Key {
        bool isPress = false;
        xcb_keycode_t key = 0;

        bool operator==(const Key &) const = default;
    };

    explicit XWindow(std::size_t screen = 0) : m_window(xcb_generate_id(m_connection->get()))
    {
        const std::uint32_t wanted = XCB_EVENT_MASK_KEY_PRESS | XCB_EVENT_MASK_KEY_RELEASE;
        m_connection->setEventHandler([this](const xcb_generic_event_t &event) { note(event); });
        xcb_create_window(m_connection->get(), XCB_COPY_FROM_PARENT, m_window,
                          m_connection->roots().at(screen), 0, 0, 10, 10, 0,
                          XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, XCB_CW_EVENT_MASK,
                          &wanted);
        xcb_map_window(m_connection->get(), m_window);
        m_connection->check(xcb_set_input_focus_checked(m_connection->get(), XCB_INPUT_FOCUS_PARENT,
                                                        m_window, XCB_CURRENT_TIME));
    }

    QList<Key> keys;
    std::uint16_t lastState = 0; ///< Of the modifiers, as the display tells it with a key.

private:
    void note(const xcb_generic_event_t &event)
    {
        if (event.response_type != XCB_KEY_PRESS && event.response_type != XCB_KEY_RELEASE)
            return;
        // A release has the same shape.
        const auto &key = reinterpret_cast<const xcb_key_press_event_t &>(event);
        keys.append({.isPress = event.response_type == XCB_KEY_PRESS, .key = key.detail});
        lastState = key.state;
    }

    std::unique_ptr<X11Connection> m_connection = X11Connection::open();
    xcb_window_t m_window = XCB_WINDOW_NONE;
};

/// Another program with keys of its own, which it has given back once it is gone.
class XGrabber {
public:
    XGrabber() = default;
    ~XGrabber()
    {
        for (const xcb_window_t root : m_connection->roots())
            m_connection->check(
                xcb_ungrab_key_checked(m_connection->get(), XCB_GRAB_ANY, root, XCB_MOD_MASK_ANY));
    }
    XGrabber(const XGrabber &) = delete;
    XGrabber &operator=(const XGrabber &) = delete;

    /// Whether the display grants the key in that state of the modifiers.
    bool grab(xcb_keycode_t key, std::uint16_t state, std::size_t screen = 0)
    {
        return m_connection->check(
            xcb_grab_key_checked(m_connection->get(), 0, m_connection->roots().at(screen), state,
                                 key, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC));
    }

private:
    std::unique_ptr<X11Connection> m_connection = X11Connection::open();
};

/// Those of the 256 states of the modifiers in which somebody has grabbed the key.
inline QList<int> takenStates(xcb_keycode_t key, std::size_t screen = 0)
{
    XGrabber grabber;
    QList<int> states;
    for (int state = 0; state < 256; ++state) {
        if (!grabber.grab(key, static_cast<std::uint16_t>(state), screen))
            states.append(state);
    }
    return states;
}
