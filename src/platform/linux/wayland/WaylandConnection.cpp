#include "platform/linux/wayland/WaylandConnection.h"

#include "base/UniqueFd.h"

#include <QTimer>

#include <wayland-client-protocol.h>

#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>

#include <algorithm>
#include <utility>

using namespace std::chrono_literals;

namespace {

/// The socket that the environment names; empty if it names none.
QByteArray socketPath()
{
    QByteArray name = qgetenv("WAYLAND_DISPLAY");
    // The name that compositors and clients agree on when nothing is said.
    if (name.isEmpty() && qgetenv("XDG_SESSION_TYPE") == "wayland")
        name = "wayland-0";
    if (name.isEmpty() || name.startsWith('/'))
        return name;
    const QByteArray folder = qgetenv("XDG_RUNTIME_DIR");
    return folder.isEmpty() ? QByteArray() : folder + '/' + name;
}

/// Not open if nobody listens there, or a compositor that hangs has no room for one more client.
UniqueFd connectTo(const QByteArray &path)
{
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    if (path.isEmpty() || path.size() >= qsizetype{sizeof address.sun_path})
        return {};
    std::copy(path.begin(), path.end(), std::begin(address.sun_path));
    UniqueFd socket(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
    if (!socket.isOpen()
        || ::connect(socket.get(), reinterpret_cast<const sockaddr *>(&address), sizeof address)
            != 0)
        return {};
    return socket;
}

/// A question that the compositor answers once it has dealt with all requests before it.
class SyncCallback {
public:
    SyncCallback(wl_display *display, OneShot *answered)
        : m_callback(wl_display_sync(display)), m_answered(answered)
    {
        wl_callback_add_listener(m_callback, &kListener, this);
    }
    ~SyncCallback() { wl_callback_destroy(m_callback); }
    SyncCallback(const SyncCallback &) = delete;
    SyncCallback &operator=(const SyncCallback &) = delete;

    bool isAnswered() const { return m_isAnswered; }

private:
    static void done(void *data, wl_callback *, std::uint32_t)
    {
        auto *const self = static_cast<SyncCallback *>(data);
        self->m_isAnswered = true;
        if (self->m_answered)
            self->m_answered->fire();
    }
    static constexpr wl_callback_listener kListener = {.done = done};

    wl_callback *m_callback;
    OneShot *m_answered; ///< May be null.
    bool m_isAnswered = false;
};

} // namespace

std::unique_ptr<WaylandConnection> WaylandConnection::open()
{
    // Not wl_display_connect(): it waits where a compositor hangs, and takes the connection that
    // WAYLAND_SOCKET hands to the toolkit.
    UniqueFd socket = connectTo(socketPath());
    if (!socket.isOpen())
        return nullptr;
    wl_display *const display = wl_display_connect_to_fd(socket.release());
    return display ? std::unique_ptr<WaylandConnection>(new WaylandConnection(display)) : nullptr;
}

WaylandConnection::WaylandConnection(wl_display *display) : m_display(display)
{
}

WaylandConnection::~WaylandConnection()
{
    // Before its descriptor is closed.
    m_readable.reset();
}

QCoro::Task<bool> WaylandConnection::sync(std::chrono::milliseconds limit)
{
    OneShot ended;
    const SyncCallback callback(get(), &ended);
    QTimer patience;
    patience.setSingleShot(true);
    patience.callOnTimeout(&patience, [&ended] { ended.fire(); });
    patience.start(limit);
    m_syncEnded = &ended;
    listen();
    flush();
    if (isLost())
        ended.fire();
    co_await ended;
    m_syncEnded = nullptr;
    co_return callback.isAnswered();
}

bool WaylandConnection::waitForSync(std::chrono::milliseconds limit)
{
    const SyncCallback callback(get(), nullptr);
    const auto end = std::chrono::steady_clock::now() + limit;
    while (!callback.isAnswered() && !isLost()) {
        const auto left =
            std::chrono::ceil<std::chrono::milliseconds>(end - std::chrono::steady_clock::now());
        if (left <= 0ms)
            return false;
        flush();
        readEvents(left);
    }
    return callback.isAnswered();
}

void WaylandConnection::listen()
{
    if (m_readable)
        return;
    m_readable = std::make_unique<QSocketNotifier>(wl_display_get_fd(get()), QSocketNotifier::Read);
    QObject::connect(m_readable.get(), &QSocketNotifier::activated, &m_context,
                     [this] { deliver(); });
}

void WaylandConnection::deliver()
{
    readEvents(0ms);
    if (!isLost()) {
        flush(); // What listeners have requested. Too little to fill the socket.
        return;
    }
    // The descriptor of a lost connection stays readable.
    m_readable->setEnabled(false);
    if (m_syncEnded)
        m_syncEnded->fire();
    if (const auto onLost = std::exchange(m_onLost, nullptr))
        onLost();
}

void WaylandConnection::readEvents(std::chrono::milliseconds limit)
{
    // Events that are in the queue already must be dealt with before more may be read.
    while (wl_display_prepare_read(get()) != 0) {
        if (wl_display_dispatch_pending(get()) < 0)
            return;
    }
    pollfd readable = {.fd = wl_display_get_fd(get()), .events = POLLIN, .revents = 0};
    if (::poll(&readable, 1, static_cast<int>(limit.count())) > 0)
        wl_display_read_events(get());
    else
        wl_display_cancel_read(get());
    wl_display_dispatch_pending(get());
}
