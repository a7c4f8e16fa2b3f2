#include "platform/linux/XEmbedTray.h"

#include <QCoreApplication>
#include <QGuiApplication>

#include <xcb/xcb.h>

#include <cstdlib>
#include <memory>
#include <utility>

namespace {

template <typename Reply>
using ReplyPointer = std::unique_ptr<Reply, decltype(&std::free)>;

xcb_connection_t *xConnection()
{
    const auto *const x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    return x11 ? x11->connection() : nullptr;
}

xcb_intern_atom_cookie_t askAtom(xcb_connection_t *connection, QByteArrayView name)
{
    return xcb_intern_atom(connection, 0, static_cast<std::uint16_t>(name.size()), name.data());
}

xcb_atom_t atom(xcb_connection_t *connection, xcb_intern_atom_cookie_t cookie)
{
    const ReplyPointer<xcb_intern_atom_reply_t> reply(
        xcb_intern_atom_reply(connection, cookie, nullptr), &std::free);
    return reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
}

} // namespace

XEmbedTray::XEmbedTray(std::function<void()> onAppeared) : m_onAppeared(std::move(onAppeared))
{
    if (xcb_connection_t *const connection = xConnection()) {
        // The toolkit shows everything on the first screen of the display.
        const auto selection = askAtom(connection, "_NET_SYSTEM_TRAY_S0");
        const auto manager = askAtom(connection, "MANAGER");
        m_selection = atom(connection, selection);
        m_manager = atom(connection, manager);
        QCoreApplication::instance()->installNativeEventFilter(this);
    }
}

XEmbedTray::~XEmbedTray()
{
    if (QCoreApplication::instance())
        QCoreApplication::instance()->removeNativeEventFilter(this);
}

bool XEmbedTray::isPresent() const
{
    xcb_connection_t *const connection = xConnection();
    if (!connection || m_selection == XCB_ATOM_NONE)
        return false;
    const ReplyPointer<xcb_get_selection_owner_reply_t> reply(
        xcb_get_selection_owner_reply(connection, xcb_get_selection_owner(connection, m_selection),
                                      nullptr),
        &std::free);
    return reply && reply->owner != XCB_WINDOW_NONE;
}

bool XEmbedTray::nativeEventFilter(const QByteArray &eventType, void *message, qintptr *)
{
    // The toolkit has asked the root window for these messages already, for its own tray icons.
    if (eventType != "xcb_generic_event_t")
        return false;
    const auto *const event = static_cast<xcb_generic_event_t *>(message);
    if ((event->response_type & 0x7f) == XCB_CLIENT_MESSAGE) {
        const auto *const told = static_cast<xcb_client_message_event_t *>(message);
        if (told->type == m_manager && told->data.data32[1] == m_selection)
            m_onAppeared();
    }
    return false;
}
