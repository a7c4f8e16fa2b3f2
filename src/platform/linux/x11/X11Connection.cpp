#include "platform/linux/x11/X11Connection.h"

#include <utility>

std::unique_ptr<X11Connection> X11Connection::open()
{
    int screen = 0;
    // Never null; a connection that could not be made is one in which an error has occurred.
    Handle connection(xcb_connect(nullptr, &screen));
    if (xcb_connection_has_error(connection.get()))
        return nullptr;
    return std::unique_ptr<X11Connection>(new X11Connection(std::move(connection), screen));
}

X11Connection::X11Connection(Handle connection, int screen)
    : m_connection(std::move(connection))
    , m_screen(screen)
    , m_readable(std::make_unique<QSocketNotifier>(xcb_get_file_descriptor(m_connection.get()),
                                                   QSocketNotifier::Read))
{
    QObject::connect(m_readable.get(), &QSocketNotifier::activated, &m_context,
                     [this] { deliver(); });
}

X11Connection::~X11Connection()
{
    // Before its descriptor is closed.
    m_readable.reset();
}

xcb_window_t X11Connection::root() const
{
    const std::vector<xcb_window_t> all = roots();
    return all.at(static_cast<std::size_t>(m_screen));
}

std::vector<xcb_window_t> X11Connection::roots() const
{
    std::vector<xcb_window_t> roots;
    for (auto screen = xcb_setup_roots_iterator(xcb_get_setup(get())); screen.rem > 0;
         xcb_screen_next(&screen))
        roots.push_back(screen.data->root);
    return roots;
}

xcb_atom_t X11Connection::atom(QByteArrayView name)
{
    const auto answer =
        reply(xcb_intern_atom_reply,
              xcb_intern_atom(get(), 0, static_cast<std::uint16_t>(name.size()), name.data()));
    return answer ? answer->atom : xcb_atom_t{XCB_ATOM_NONE};
}

bool X11Connection::check(xcb_void_cookie_t cookie)
{
    deliverSoon();
    const XcbPointer<xcb_generic_error_t> error(xcb_request_check(get(), cookie));
    return !error && !isLost();
}

/// Whoever waits for a reply reads the events before it into xcb's queue. The descriptor does not
/// tell of these any more.
void X11Connection::deliverSoon()
{
    if (std::exchange(m_isDeliverySoon, true))
        return;
    QMetaObject::invokeMethod(
        &m_context, [this] { deliver(); }, Qt::QueuedConnection);
}

void X11Connection::deliver()
{
    m_isDeliverySoon = false;
    if (const XcbPointer<xcb_generic_event_t> event{xcb_poll_for_event(get())}) {
        // One in each turn of the event loop, since to handle one may bring about the next: a large
        // selection comes in many pieces, and whoever else waits for the loop has its turn too.
        deliverSoon();
        // From a copy, since the handler may destroy this object.
        if (const OnEvent onEvent = m_onEvent)
            onEvent(*event);
        return;
    }
    if (!isLost()) {
        flush();
        return;
    }
    // The descriptor of a lost connection stays readable.
    m_readable->setEnabled(false);
    if (const auto onLost = std::exchange(m_onLost, nullptr))
        onLost();
}
