#pragma once

#include "base/OneShot.h"

#include <QCoro/QCoroTask>
#include <QObject>
#include <QSocketNotifier>

#include <wayland-client-core.h>

#include <chrono>
#include <functional>
#include <memory>

/// A connection of our own to the Wayland compositor of the session, apart from the toolkit's. What
/// its client holds there ends with the object. Must not be destroyed by a listener, since
/// libwayland goes on with what it was reading. For one thread, whose event loop sync() needs.
class WaylandConnection {
public:
    /// Connects to the compositor that the environment names. Null if there is none. Never waits.
    static std::unique_ptr<WaylandConnection> open();
    ~WaylandConnection();
    WaylandConnection(const WaylandConnection &) = delete;
    WaylandConnection &operator=(const WaylandConnection &) = delete;

    /// For making requests. Not null.
    wl_display *get() const { return m_display.get(); }

    /// The compositor is gone, or does not like what we have requested; nothing more is heard of
    /// it.
    bool isLost() const { return wl_display_get_error(get()) != 0; }

    /// Sends what has been requested so far, without waiting.
    void flush() { wl_display_flush(get()); }

    /// Sends it and completes once the compositor has dealt with it and the listeners were called.
    /// False if the compositor does not answer within limit, or is lost. One at a time. From then
    /// on the event loop calls the listeners. Must outlive its tasks.
    [[nodiscard]] QCoro::Task<bool> sync(std::chrono::milliseconds limit);

    /// The same for a program that has no event loop yet: waits, and calls the listeners meanwhile.
    bool waitForSync(std::chrono::milliseconds limit);

    /// Called once from the event loop when the compositor is lost. May destroy the connection.
    void setLostHandler(std::function<void()> onLost) { m_onLost = std::move(onLost); }

private:
    struct Disconnect {
        void operator()(wl_display *display) const { wl_display_disconnect(display); }
    };

    explicit WaylandConnection(wl_display *display);
    void listen();
    void deliver();
    /// Reads what has arrived, at least once after waiting for as long as limit, and calls the
    /// listeners.
    void readEvents(std::chrono::milliseconds limit);

    std::unique_ptr<wl_display, Disconnect> m_display;
    std::unique_ptr<QSocketNotifier> m_readable; ///< Null until the event loop is to be used.
    OneShot *m_syncEnded = nullptr; ///< Null while nobody waits.
    std::function<void()> m_onLost;
    QObject m_context; ///< Of the calls that come from the event loop.
};
