#include "platform/linux/x11/X11Startup.h"

#include "platform/linux/x11/X11Connection.h"

#include <QGuiApplication>
#include <QWindow>

#include <algorithm>
#include <cstring>

using namespace Qt::StringLiterals;

namespace {

/// Longer than any that desktops make.
constexpr qsizetype kLongestId = 512;
/// What makes a window's message one of the program's own and not of a pager.
constexpr std::uint32_t kFromApplication = 1;

/// The toolkit's connection. Null if the display is another than X.
xcb_connection_t *toolkitConnection()
{
    const auto *const x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    return x11 ? x11->connection() : nullptr;
}

xcb_atom_t atom(xcb_connection_t *connection, QByteArrayView name)
{
    const auto cookie =
        xcb_intern_atom(connection, 0, static_cast<std::uint16_t>(name.size()), name.data());
    const XcbPointer<xcb_intern_atom_reply_t> reply(
        xcb_intern_atom_reply(connection, cookie, nullptr));
    return reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
}

/// The toolkit shows everything on the first screen of the display.
xcb_window_t root(xcb_connection_t *connection)
{
    return xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root;
}

void sendToRoot(xcb_connection_t *connection, const xcb_client_message_event_t &event,
                std::uint32_t mask)
{
    // As long as the protocol has every event.
    static_assert(sizeof event == 32);
    xcb_send_event(connection, 0, root(connection), mask, reinterpret_cast<const char *>(&event));
}

/// Sends a text of any length, piece by piece, in the name of a window that nobody else has.
void broadcast(xcb_connection_t *connection, const QByteArray &text)
{
    const xcb_window_t sender = xcb_generate_id(connection);
    xcb_create_window(connection, XCB_COPY_FROM_PARENT, sender, root(connection), -1, -1, 1, 1, 0,
                      XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, 0, nullptr);
    xcb_client_message_event_t event = {};
    event.response_type = XCB_CLIENT_MESSAGE;
    event.format = 8;
    event.window = sender;
    event.type = atom(connection, "_NET_STARTUP_INFO_BEGIN");
    const QByteArray terminated = text + '\0';
    constexpr qsizetype kPiece = sizeof event.data.data8;
    for (qsizetype at = 0; at < terminated.size(); at += kPiece) {
        const QByteArray piece = terminated.mid(at, kPiece);
        std::memset(event.data.data8, 0, sizeof event.data.data8);
        std::memcpy(event.data.data8, piece.constData(), static_cast<std::size_t>(piece.size()));
        sendToRoot(connection, event, XCB_EVENT_MASK_PROPERTY_CHANGE);
        event.type = atom(connection, "_NET_STARTUP_INFO");
    }
    xcb_destroy_window(connection, sender);
    xcb_flush(connection);
}

} // namespace

std::optional<std::uint32_t> X11Startup::timeOf(const QString &id)
{
    const qsizetype mark = id.lastIndexOf(u"_TIME"_s);
    if (mark < 0)
        return std::nullopt;
    bool isNumber = false;
    const std::uint32_t time = QStringView(id).sliced(mark + 5).toUInt(&isNumber);
    return isNumber ? std::optional(time) : std::nullopt;
}

QByteArray X11Startup::endMessage(const QString &id)
{
    const bool isId = !id.isEmpty() && id.size() <= kLongestId
        && std::ranges::all_of(id, [](QChar character) { return character.isPrint(); });
    if (!isId)
        return {};
    QByteArray quoted = id.toUtf8();
    quoted.replace('\\', "\\\\").replace('"', "\\\"");
    return "remove: ID=\"" + quoted + '"';
}

void X11Startup::end(const QString &id)
{
    const QByteArray message = endMessage(id);
    if (xcb_connection_t *const connection = toolkitConnection(); connection && !message.isEmpty())
        broadcast(connection, message);
}

void X11Startup::bringToFront(QWindow &window, const QString &id, const std::function<void()> &show)
{
    xcb_connection_t *const connection = toolkitConnection();
    const std::optional<std::uint32_t> time = timeOf(id);
    if (!connection || !time) {
        show();
        return;
    }
    const auto handle = static_cast<xcb_window_t>(window.winId());
    const QByteArray text = id.toUtf8();
    xcb_change_property(connection, XCB_PROP_MODE_REPLACE, handle,
                        atom(connection, "_NET_STARTUP_ID"), atom(connection, "UTF8_STRING"), 8,
                        static_cast<std::uint32_t>(text.size()), text.constData());
    xcb_change_property(connection, XCB_PROP_MODE_REPLACE, handle,
                        atom(connection, "_NET_WM_USER_TIME"), XCB_ATOM_CARDINAL, 32, 1, &*time);
    show();
    // What the toolkit asks for itself is as old as the last key that one of our windows got.
    xcb_client_message_event_t event = {};
    event.response_type = XCB_CLIENT_MESSAGE;
    event.format = 32;
    event.window = handle;
    event.type = atom(connection, "_NET_ACTIVE_WINDOW");
    event.data.data32[0] = kFromApplication;
    event.data.data32[1] = *time;
    sendToRoot(connection, event,
               XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT);
    xcb_flush(connection);
}
