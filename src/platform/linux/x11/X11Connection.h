#pragma once

#include <QByteArrayView>
#include <QObject>
#include <QSocketNotifier>

#include <xcb/xcb.h>

#include <cstdlib>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

/// Frees what xcb has allocated.
struct XcbFree {
    void operator()(void *memory) const { std::free(memory); }
};

/// A reply, an event or an error of xcb's.
template <typename Type>
using XcbPointer = std::unique_ptr<Type, XcbFree>;

/// A connection of our own to the X display of the session, apart from the toolkit's. What its
/// client holds on the display (grabs, windows, selections) ends with the object. Main thread.
class X11Connection {
public:
    using OnEvent = std::function<void(const xcb_generic_event_t &event)>;

    /// Connects to $DISPLAY. Null if that cannot be opened.
    static std::unique_ptr<X11Connection> open();
    ~X11Connection();
    X11Connection(const X11Connection &) = delete;
    X11Connection &operator=(const X11Connection &) = delete;

    /// Called from the event loop for each event, and for each error of a request that was not
    /// checked (response type 0). May destroy the connection. Events before it is set are dropped.
    void setEventHandler(OnEvent onEvent) { m_onEvent = std::move(onEvent); }

    /// Called once from the event loop when the display is gone; no event follows. May destroy the
    /// connection.
    void setLostHandler(std::function<void()> onLost) { m_onLost = std::move(onLost); }

    /// For making requests. To wait for their results, use reply() and check(). Not null.
    xcb_connection_t *get() const { return m_connection.get(); }

    /// The display is gone: requests go nowhere, replies are null.
    bool isLost() const { return xcb_connection_has_error(get()) != 0; }

    /// The root window of the screen that $DISPLAY names.
    xcb_window_t root() const;
    /// The root windows of all screens.
    std::vector<xcb_window_t> roots() const;

    /// The number of a name, made if need be; XCB_ATOM_NONE only if the display is gone.
    xcb_atom_t atom(QByteArrayView name);

    /// Waits for the reply to a request: reply(xcb_get_geometry_reply, xcb_get_geometry(...)).
    /// Null if the request failed or the display is gone. Calls no handler meanwhile.
    template <typename Reply, typename Cookie>
    XcbPointer<Reply> reply(Reply *(*wait)(xcb_connection_t *, Cookie, xcb_generic_error_t **),
                            Cookie cookie)
    {
        deliverSoon();
        return XcbPointer<Reply>(wait(get(), cookie, nullptr));
    }

    /// Waits until a checked request without a reply is done, and gives whether it was carried out.
    bool check(xcb_void_cookie_t cookie);

    /// Sends what has been requested so far, without waiting.
    void flush() { xcb_flush(get()); }

private:
    struct Disconnect {
        void operator()(xcb_connection_t *connection) const { xcb_disconnect(connection); }
    };
    using Handle = std::unique_ptr<xcb_connection_t, Disconnect>;

    X11Connection(Handle connection, int screen);
    void deliverSoon();
    void deliver();

    Handle m_connection;
    int m_screen = 0;
    OnEvent m_onEvent;
    std::function<void()> m_onLost;
    std::unique_ptr<QSocketNotifier> m_readable;
    bool m_isDeliverySoon = false;
    QObject m_context; ///< Of the calls that come from the event loop.
};
