#include "platform/linux/x11/X11EventTap.h"

#include "base/Log.h"
#include "platform/linux/DeafEventTap.h"
#include "platform/linux/HardwareKeys.h"

#include <utility>

using namespace Qt::StringLiterals;

namespace {

/// X numbers the positions of keys from here on, since its first eight numbers are not for keys.
constexpr unsigned kFirstKeycode = 8;

bool hasKey(const X11Connection &connection, unsigned keycode)
{
    const xcb_setup_t *const setup = xcb_get_setup(connection.get());
    return keycode >= setup->min_keycode && keycode <= setup->max_keycode;
}

} // namespace

std::unique_ptr<EventTap> X11EventTap::make(const std::optional<KeyPress> &wanted,
                                            OnKeyDown onKeyDown)
{
    auto connection = X11Connection::open();
    if (!connection)
        return nullptr;
    const auto position = wanted ? HardwareKeys::position(wanted->keyCode) : std::nullopt;
    if (!position)
        return std::make_unique<DeafEventTap>();
    const unsigned keycode = *position + kFirstKeycode;
    if (!hasKey(*connection, keycode))
        return nullptr;
    std::unique_ptr<X11EventTap> tap(new X11EventTap(std::move(connection),
                                                     static_cast<xcb_keycode_t>(keycode),
                                                     wanted->modifiers, std::move(onKeyDown)));
    tap->renew();
    return tap->m_isGrabbed ? std::move(tap) : nullptr;
}

X11EventTap::X11EventTap(std::unique_ptr<X11Connection> connection, xcb_keycode_t keycode,
                         KeyModifierFlags wanted, OnKeyDown onKeyDown)
    : m_connection(std::move(connection))
    , m_keycode(keycode)
    , m_wanted(wanted)
    , m_onKeyDown(std::move(onKeyDown))
{
    m_connection->setEventHandler([this](const xcb_generic_event_t &event) { handle(event); });
}

X11EventTap::~X11EventTap()
{
    // The display notices a closed connection some time later; until then it would refuse the same
    // press to the next tap.
    ungrab();
}

void X11EventTap::handle(const xcb_generic_event_t &event)
{
    if (event.response_type == XCB_MAPPING_NOTIFY) {
        renewSoon();
    } else if (event.response_type == XCB_KEY_PRESS) {
        const auto &press = reinterpret_cast<const xcb_key_press_event_t &>(event);
        if (const auto keyCode = HardwareKeys::keyCode(press.detail - kFirstKeycode)) {
            // From a copy, since the handler may destroy this object.
            const OnKeyDown onKeyDown = m_onKeyDown;
            onKeyDown({.keyCode = *keyCode, .modifiers = m_modifiers->flags(press.state)});
        }
    }
}

/// One change of the layout arrives as many events.
void X11EventTap::renewSoon()
{
    if (std::exchange(m_isRenewalSoon, true))
        return;
    QMetaObject::invokeMethod(
        &m_context,
        [this] {
            m_isRenewalSoon = false;
            renew();
        },
        Qt::QueuedConnection);
}

/// Grabs the press anew if the keyboard in use makes it in another way than the one before. What
/// was refused once is not tried again until then.
void X11EventTap::renew()
{
    const auto modifiers = X11Modifiers::lookUp(*m_connection);
    if (!modifiers || modifiers == m_modifiers)
        return;
    m_modifiers = modifiers;
    ungrab();
    m_states = modifiers->states(m_wanted);
    grab();
}

void X11EventTap::grab()
{
    if (m_states.empty()) {
        Log::line(
            u"⚠️ Global hotkey: the keyboard has no key of its own for one of the modifiers"_s);
        return;
    }
    std::vector<xcb_void_cookie_t> requests;
    for (const xcb_window_t root : m_connection->roots()) {
        for (const std::uint8_t state : m_states)
            requests.push_back(xcb_grab_key_checked(m_connection->get(), 0, root, state, m_keycode,
                                                    XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC));
    }
    m_isGrabbed = true;
    for (const xcb_void_cookie_t request : requests)
        m_isGrabbed &= m_connection->check(request);
    if (!m_isGrabbed) {
        ungrab();
        Log::line(u"⚠️ Global hotkey: another program has grabbed the key"_s);
    }
}

/// Gives all grabs back, also those of which only some were granted.
void X11EventTap::ungrab()
{
    m_isGrabbed = false;
    std::vector<xcb_void_cookie_t> requests;
    for (const xcb_window_t root : m_connection->roots()) {
        for (const std::uint8_t state : m_states)
            requests.push_back(xcb_ungrab_key_checked(m_connection->get(), m_keycode, root, state));
    }
    for (const xcb_void_cookie_t request : requests)
        m_connection->check(request);
}
